#include "cardcheck/run/cardcheckrun.h"

#include "files/pathgate.h"
#include "files/paths.h"
#include "ledger/ledger.h"
#include "platform/pathform.h"
#include "tasks/background.h"

#include <algorithm>
#include <utility>

using cardfiles::CardListing;
using evidence::CheckedFile;
using evidence::Place;
using evidence::Reading;
using evidence::State;
using filereadings::TargetReading;

namespace {

constexpr int mostThreads = 8;
constexpr int mostForOneVolume = 2;
/// Files under way: enough that neither side waits for the other.
constexpr int mostFlights = 6;

std::unique_ptr<WorkerPool> makePool()
{
    auto pool = std::make_unique<WorkerPool>(QStringLiteral("card check"), mostThreads);
    pool->setMostForOneVolume(mostForOneVolume);
    return pool;
}

} // namespace

CardCheckRun::CardCheckRun(filereadings::Reader read, QObject *parent)
    : QObject(parent), read_(std::move(read)), pool_(makePool())
{
    connect(&lists_, &ServiceLists::answered, this, &CardCheckRun::onAnswered);
}

CardCheckRun::~CardCheckRun()
{
    ways_.stop.raise();
    WorkerPool::retire(std::move(pool_));
}

void CardCheckRun::start(const Request &request)
{
    cancel();
    current_ = round_.next();
    request_ = request;
    findings_ = {};
    findings_.card.root = request.root;
    findings_.branch = request.who.shopId;
    ways_ = {read_, StopFlag(), {}, std::make_shared<std::atomic<qint64>>(0)};
    places_.clear();
    known_.clear();
    folders_ = {};
    flights_.clear();
    targets_.clear();
    lists_.reset(request.who);
    running_ = true;
    isEnding_ = false;
    preparing_ = next_ = settled_ = 0;
    bytesTotal_ = 0;
    struct Listed
    {
        CardListing card;
        cardlister::CardPlace place;
    };
    pool_->start(
        background::job(
            this,
            [root = request.root, stop = ways_.stop] {
                return Listed{cardlister::listCard(root, stop), cardlister::CardPlace(root)};
            },
            [this, token = current_](const Listed &found) {
                if (token.isCurrent())
                    onListed(found.card, found.place);
            }),
        platform::volumesOf({request.root}));
}

void CardCheckRun::cancel()
{
    if (!running_)
        return;
    ways_.stop.raise();
    round_.abandon();
    pool_->clear();
    lists_.reset({});
    running_ = false;
    findings_.wasCancelled = true;
    emit finished();
}

TransferProgress CardCheckRun::progress() const
{
    const qint64 read = ways_.bytesRead ? ways_.bytesRead->load() : 0;
    // Files are taken in their order: the first that is not done is in work.
    const auto current =
        std::find_if(findings_.files.cbegin(), findings_.files.cend(),
                     [](const CheckedFile &file) { return file.state == State::Waiting; });
    const QString file = current == findings_.files.cend() ? QString() : current->file.shown;
    return {settled_, findings_.files.size(), std::min(read, bytesTotal_), bytesTotal_, {}, file};
}

// What is known before anything is read.

void CardCheckRun::onListed(const CardListing &card, const cardlister::CardPlace &place)
{
    ways_.card = place;
    findings_.card = card;
    findings_.card.files.clear();
    if (!card.isListed) {
        findings_.problem = QStringLiteral("无法列出 %1").arg(card.root);
        end();
        return;
    }
    for (const cardfiles::CardFile &file : card.files) {
        CheckedFile checked;
        checked.file = file;
        findings_.files.append(checked);
    }
    emit listed();
    preparing_ = 1 + request_.orders.size();
    askLedger();
    for (const places::SoughtOrder &order : qAsConst(request_.orders))
        lookInto(order);
}

void CardCheckRun::askLedger()
{
    QVector<ledger::FileStamp> stamps;
    for (const CheckedFile &checked : qAsConst(findings_.files))
        stamps += places::stampsOf(checked.file);
    Ledger::current().ask(
        this,
        [stamps, files = findings_.files.size()](const LedgerReader &reader) {
            const QVector<QVector<ledger::Copy>> copies = reader.copiesLike(stamps);
            const int each = std::max(1, stamps.size() / std::max(1, files));
            QVector<QVector<Place>> known(files);
            for (int i = 0; i < copies.size(); ++i) {
                QVector<Place> &places = known[i / each];
                places = places::joined(places, places::ofCopies(copies.at(i)));
            }
            return known;
        },
        [this, token = current_](const QVector<QVector<Place>> &known) {
            if (!token.isCurrent())
                return;
            known_ = known;
            preparationEnded();
        });
}

void CardCheckRun::lookInto(const places::SoughtOrder &order)
{
    if (pathgate::flawOf(order.folder) != pathgate::Flaw::None) {
        preparationEnded();
        return;
    }
    pool_->start(background::job(
                     this,
                     [folder = order.folder, stop = ways_.stop] {
                         return cardlister::listOrderFolder(folder, stop);
                     },
                     [this, order, token = current_](const cardlister::FolderFiles &found) {
                         if (!token.isCurrent())
                             return;
                         for (const places::FolderFile &file : found.files)
                             folders_.add(order.order, file.path, file.bytes);
                         preparationEnded();
                     }),
                 platform::volumesOf({order.folder}));
}

void CardCheckRun::preparationEnded()
{
    if (--preparing_ == 0)
        planReading();
}

void CardCheckRun::planReading()
{
    for (int index = 0; index < findings_.files.size(); ++index) {
        const cardfiles::CardFile &file = findings_.files.at(index).file;
        places_.append(places::joined(known_.value(index), folders_.placesOf(file)));
        for (const Place &place : places_.constLast()) {
            const evidence::Registered registered = evidence::registeredAs(place.target);
            if (registered != evidence::Registered::Never)
                lists_.ask(place.order, registered == evidence::Registered::AmongVideos);
        }
        if (!places_.constLast().isEmpty())
            bytesTotal_ += 2 * file.bytes;
    }
    deal();
}

// Reading.

void CardCheckRun::deal()
{
    while (next_ < findings_.files.size() && flights_.size() < mostFlights)
        begin(next_++);
    endWhenDone();
}

void CardCheckRun::begin(int index)
{
    if (places_.at(index).isEmpty()) {
        CheckedFile checked = findings_.files.at(index);
        checked.state = State::NotImported;
        settle(index, checked);
        return;
    }
    flights_.insert(index, {});
    readSource(index);
    readTarget(index);
}

void CardCheckRun::readSource(int index)
{
    const QString path = findings_.files.at(index).file.path;
    pool_->start(background::job(
                     this, [ways = ways_, path] { return filereadings::readSource(ways, path); },
                     [this, index, token = current_](const Reading &reading) {
                         if (!token.isCurrent())
                             return;
                         flights_[index].card = reading;
                         flights_[index].cardIsRead = true;
                         compare(index);
                     }),
                 platform::volumesOf({path}));
}

void CardCheckRun::readTarget(int index)
{
    const Place &place = places_.at(index).at(flights_[index].place);
    const cardfiles::CardFile &file = findings_.files.at(index).file;
    // What a file of another size is taken for depends on the source.
    const QString key = wirePathKey(place.target) + QLatin1Char('|') + QString::number(file.bytes);
    Target &target = targets_[key];
    if (target.isRead) {
        flights_[index].target = target.reading;
        flights_[index].targetIsRead = true;
        compare(index);
        return;
    }
    target.waiting.append(index);
    if (target.waiting.size() > 1)
        return;
    pool_->start(
        background::job(
            this,
            [ways = ways_, file, place] { return filereadings::readTarget(ways, file, place); },
            [this, key, token = current_](const TargetReading &reading) {
                if (!token.isCurrent())
                    return;
                Target &read = targets_[key];
                read.isRead = true;
                read.reading = reading;
                const QVector<int> waiting = std::exchange(read.waiting, {});
                for (const int each : waiting) {
                    flights_[each].target = reading;
                    flights_[each].targetIsRead = true;
                    compare(each);
                }
            }),
        platform::volumesOf({place.target}));
}

const evidence::ServiceList *CardCheckRun::listOf(const Place &place) const
{
    return lists_.of(place.order.identity);
}

void CardCheckRun::compare(int index)
{
    Flight &flight = flights_[index];
    if (!flight.cardIsRead || !flight.targetIsRead)
        return;
    const Place &place = places_.at(index).at(flight.place);
    CheckedFile checked = findings_.files.at(index);
    const State state = evidence::stateOf(flight.card, place, flight.target.reading, listOf(place));
    const bool isFirst = flight.place == 0;
    if (isFirst || state < checked.state) {
        checked.state = state;
        checked.place = place;
        checked.card = flight.card;
        checked.target = flight.target.reading;
        checked.isReduced = flight.target.isReduced && state == State::Upright;
        findings_.files[index] = checked;
    }
    const bool isGood =
        evidence::isOnStorage(state) || state == State::Upright || state == State::LooksUpright;
    if (!isGood && flight.card.outcome == Reading::Outcome::Read &&
        flight.place + 1 < places_.at(index).size()) {
        ++flight.place;
        flight.targetIsRead = false;
        bytesTotal_ += checked.file.bytes;
        readTarget(index);
        return;
    }
    flights_.remove(index);
    settle(index, checked);
    deal();
}

void CardCheckRun::settle(int index, const CheckedFile &checked)
{
    findings_.files[index] = checked;
    ++settled_;
    emit fileChanged(index);
    // What is proved now is more than what was proved when it was copied.
    if (checked.place.copy != 0 && evidence::isOnStorage(checked.state) &&
        isReadPastCache(checked.card.proof) && isReadPastCache(checked.target.proof)) {
        ledger::CopyResult result;
        result.proof = checked.target.proof;
        result.sourceHash = checked.card.hash;
        result.targetHash = checked.target.hash;
        result.targetBytes = checked.target.bytes;
        Ledger::current().proveCopy(checked.place.copy, result);
    }
}

// The end.

void CardCheckRun::onAnswered(const OrderIdentity &order)
{
    for (int index = 0; index < findings_.files.size(); ++index) {
        CheckedFile &checked = findings_.files[index];
        if (!evidence::isOnStorage(checked.state) || checked.place.order.identity != order)
            continue;
        checked.state =
            evidence::stateOf(checked.card, checked.place, checked.target, listOf(checked.place));
        emit fileChanged(index);
    }
    endWhenDone();
}

void CardCheckRun::endWhenDone()
{
    if (!running_ || isEnding_ || preparing_ > 0 || settled_ < findings_.files.size() ||
        lists_.isBusy())
        return;
    isEnding_ = true;
    pool_->start(
        background::job(
            this,
            [root = request_.root, stop = ways_.stop] { return cardlister::listCard(root, stop); },
            [this, token = current_](const CardListing &later) {
                if (!token.isCurrent())
                    return;
                CardListing before = findings_.card;
                for (const CheckedFile &checked : qAsConst(findings_.files))
                    before.files.append(checked.file);
                findings_.cardChanged = !before.isSameAs(later);
                findings_.isFinished = true;
                end();
            }),
        platform::volumesOf({request_.root}));
}

void CardCheckRun::end()
{
    running_ = false;
    round_.abandon();
    emit finished();
}
