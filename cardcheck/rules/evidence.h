#pragma once

#include "cardcheck/rules/cardfiles.h"
#include "files/proof.h"
#include "ledger/ledgerrecords.h"
#include "net/orderfiles.h"

#include <QByteArray>
#include <QSet>
#include <QString>
#include <QVector>

/// What is known of one file of a card, and what follows from it. Whatever nothing was said of is
/// unproved: a value as it begins never speaks for formatting. Pure functions.
namespace evidence {

/// What came of reading a file in this check.
struct Reading
{
    enum class Outcome {
        NotRead,
        Read, ///< whole
        Missing,
        Unreadable,
        Changed, ///< written to, or replaced, meanwhile
        OnCard,  ///< a target that lies on the card itself, and goes with it
    };

    Outcome outcome = Outcome::NotRead;
    qint64 bytes = -1;
    QByteArray hash; ///< empty as well when the size said enough
    Proof proof = Proof::None;
    /// Of a target with other bytes: a picture that looks like the card's, made upright.
    bool looksUpright = false;
};

/// Where a file of the card may stand.
struct Place
{
    ledger::OrderKey order;
    QString target;          ///< whole path, wire form
    ledger::CopyId copy = 0; ///< 0: found in the order's folder, and not in the ledger
    bool isUpright = false;
    QByteArray sourceHash; ///< of an upright copy: what was turned, and what was written
    QByteArray targetHash;
};

/// What the service has on its books of one order.
struct ServiceList
{
    enum class State {
        NotAsked,
        Answered,
        Failed,
        OtherBranch, ///< the order is not asked for in another branch's name
    };

    OrderIdentity order;
    State state = State::NotAsked;
    QSet<QString> paths; ///< wirePathKey()
    QSet<QString> names; ///< in small letters, of those that were listed without a path
    QVector<orderfiles::ListedFile> files;

    bool lists(const QString &target) const;
};

enum class State {
    // From the best to the worst: of several places of a file the best one counts.
    Verified,          ///< same bytes now, and the service lists it
    VerifiedOnStorage, ///< same bytes now; no request lists files of its kind
    Unregistered,      ///< same bytes, but the service does not list it
    CacheOnly,         ///< same bytes, perhaps read from memory alone
    ServiceUnknown,    ///< same bytes; the service has not answered
    Upright,           ///< turned when it was imported: the camera's bytes are gone with the card
    LooksUpright,      ///< the same by its looks; another machine has turned it
    Unproved,          ///< turned, and nothing tells what was written
    Waiting,           ///< not looked at yet
    Unreadable,
    Changed, ///< during the check
    ContentDiffers,
    TargetMissing,
    OnlyOnCard,
    NotImported,
};
constexpr int stateCount = int(State::NotImported) + 1;

/// How the service learns of a file that stands under a path.
enum class Registered {
    Never,         ///< not announced, or listed by no request
    AmongImported, ///< listed with the order's imported photos and raw files
    AmongVideos,   ///< listed with the order itself
};
Registered registeredAs(const QString &target);

/// What \a place, read as \a target, says of a file read as \a card. \a list may be null.
State stateOf(const Reading &card, const Place &place, const Reading &target,
              const ServiceList *list);

/// Whether the bytes of the card stand there, whoever knows of it.
bool isOnStorage(State state);

/// Text, colour (QRgb) and a sign that tells it without a colour.
QString stateText(State state);
unsigned int stateColour(State state);
QString stateSign(State state);

/// One file of the card with all that the check has found.
struct CheckedFile
{
    cardfiles::CardFile file;
    State state = State::Waiting;
    Place place; ///< that the state is about; without an order when there is none
    Reading card;
    Reading target;
    bool isReduced = false; ///< an upright copy with fewer pixels than the camera's
};

/// How the two sides were read: "卡: 介质 · 存储: 服务器"; empty when nothing was.
QString proofText(const CheckedFile &file);

} // namespace evidence
