#pragma once

#include "cardcheck/rules/places.h"
#include "cardcheck/rules/verdict.h"
#include "cardcheck/run/filereadings.h"
#include "cardcheck/run/servicelists.h"
#include "files/transferprogress.h"
#include "tasks/latest.h"
#include "tasks/workerpool.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <memory>

/// Checks a card: lists it, asks the ledger where its files went, reads the files and their targets
/// side by side past the system's memory, asks the service, and looks at the card once more.
/// Threads of its own read, at most two on one volume. Interface thread.
class CardCheckRun : public QObject
{
    Q_OBJECT

public:
    /// \a read: for tests; otherwise the files as they are.
    explicit CardCheckRun(filereadings::Reader read = filereadings::readAsItIs,
                          QObject *parent = nullptr);
    ~CardCheckRun() override;

    struct Request
    {
        QString root; ///< of the card, as this machine writes it
        orderqueries::Identity who;
        /// Where files are looked for that the ledger does not know.
        QVector<places::SoughtOrder> orders;
    };
    /// An earlier check is cancelled.
    void start(const Request &request);
    /// Ends the check at once; what reads still ends by itself.
    void cancel();
    bool isRunning() const { return running_; }

    /// What is known so far.
    const verdict::Findings &findings() const { return findings_; }
    TransferProgress progress() const;

signals:
    /// The card's files are there, none of them checked.
    void listed();
    void fileChanged(int index);
    /// The check has come to its end, or was cancelled.
    void finished();

private:
    struct Flight
    {
        int place = 0; ///< among those of the file
        bool cardIsRead = false;
        bool targetIsRead = false;
        evidence::Reading card;
        filereadings::TargetReading target;
    };
    struct Target
    {
        bool isRead = false;
        filereadings::TargetReading reading;
        QVector<int> waiting; ///< files that are compared with it
    };

    void onListed(const cardfiles::CardListing &card, const cardlister::CardPlace &place);
    void askLedger();
    void lookInto(const places::SoughtOrder &order);
    void preparationEnded();
    void planReading();
    void deal();
    void begin(int index);
    void readSource(int index);
    void readTarget(int index);
    void compare(int index);
    void settle(int index, const evidence::CheckedFile &checked);
    void onAnswered(const OrderIdentity &order);
    void endWhenDone();
    void end();
    const evidence::ServiceList *listOf(const evidence::Place &place) const;

    const filereadings::Reader read_;
    Request request_;
    filereadings::Ways ways_;
    verdict::Findings findings_;
    QVector<QVector<evidence::Place>> places_; ///< by file
    QVector<QVector<evidence::Place>> known_;  ///< to the ledger, by file
    places::FolderIndex folders_;
    QHash<int, Flight> flights_;
    QHash<QString, Target> targets_; ///< by wirePathKey()
    ServiceLists lists_;
    std::unique_ptr<WorkerPool> pool_;
    Latest round_;
    Latest::Token current_ = round_.next();
    bool running_ = false;
    bool isEnding_ = false;
    int preparing_ = 0; ///< answers that are awaited before reading begins
    int next_ = 0;      ///< file to be dealt
    int settled_ = 0;
    qint64 bytesTotal_ = 0;
};
