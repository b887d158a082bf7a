#include "marks/run/choicemarks.h"

#include "files/contenthash.h"
#include "files/paths.h"
#include "marks/run/filelook.h"
#include "marks/run/knowncopies.h"
#include "pictures/capturetime.h"
#include "tasks/background.h"

#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <utility>

using namespace marks;

namespace {

constexpr int tellIntervalMs = 150;
constexpr int capturesLookedAt = 120;
constexpr int capturesAtOnce = 12; ///< then others get their turn at the disk

QByteArray contentOf(const QString &path, const StopFlag &stop)
{
    return readContent(path, {[stop] { return stop.isRaised(); }, {}},
                       platform::FileReader::Way::Cached)
        .hash;
}

/// A photo without the camera's data was made by another program, at another time than it was
/// taken.
bool tellsByItsTime(const QString &path)
{
    static const QStringList pictures = {QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                         QStringLiteral("png"), QStringLiteral("bmp")};
    return !pictures.contains(QFileInfo(path).suffix().toLower());
}

QVector<Capture> capturesOf(const QStringList &sources, const QVector<qint64> &fileTimes,
                            FileTime fileTime)
{
    QVector<Capture> captures;
    for (int index = 0; index < sources.size(); ++index) {
        Capture capture{sources.at(index), readCaptureTime(sources.at(index)), false};
        if (!capture.taken.isValid() && fileTime == FileTime::Counts &&
            tellsByItsTime(capture.source)) {
            capture.taken = QDateTime::fromMSecsSinceEpoch(fileTimes.at(index));
            capture.isFileTime = true;
        }
        if (capture.taken.isValid())
            captures.append(capture);
    }
    return captures;
}

/// A content that was read, and of which file: one of another size or time is another file.
struct Read
{
    qint64 size = 0;
    qint64 modified = 0;
    QByteArray hash;
};
using Reads = QHash<QString, Read>;

/// Sizes and times of all files that \a evidence is about, by path.
Reads stampsOf(const QVector<Evidence> &evidence)
{
    Reads stamps;
    const auto add = [&stamps](const QString &path, qint64 size, qint64 modified) {
        stamps.insert(path, {size, modified, {}});
    };
    for (const Evidence &one : evidence) {
        add(one.file.source, one.file.size, one.file.modified);
        if (one.standing)
            add(one.standing->path, one.standing->size, one.standing->modified);
        for (const KnownCopy &copy : one.copies) {
            if (copy.standing)
                add(copy.standing->path, copy.standing->size, copy.standing->modified);
        }
    }
    return stamps;
}

QVector<Evidence> evidenceOf(const Choice &choice, const StopFlag &stop)
{
    const DiskFacts facts = lookAtDisks(choice.files, choice.folders, stop);
    const QVector<QVector<KnownCopy>> copies = knownCopies(facts.files);
    QVector<Evidence> all;
    all.reserve(facts.files.size());
    for (int index = 0; index < facts.files.size(); ++index) {
        Evidence evidence;
        evidence.file = facts.files.at(index);
        const QString folder = evidence.file.target.section(QLatin1Char('\\'), 0, -2);
        evidence.isReadable =
            evidence.file.size >= 0 && !facts.unlisted.contains(wirePathKey(folder));
        evidence.standing = standingAt(facts, evidence.file.target);
        evidence.copies = copies.value(index);
        for (KnownCopy &copy : evidence.copies) {
            if (copy.order == choice.order)
                copy.standing = standingAt(facts, copy.target);
        }
        all.append(evidence);
    }
    return all;
}

} // namespace

/// What the first look told, before anything was read.
struct ChoiceMarks::Facts
{
    QVector<Evidence> evidence;
    QVector<MarkedFile> marked;
    Hashes hashes; ///< that are known from before
};

/// One order's newest choice and how far looking at it is.
struct ChoiceMarks::Look
{
    Choice choice;
    StopFlag stop;
    OrderLook known;
    QVector<Evidence> evidence; ///< of each file; empty until the disks have answered
    Reads stamps;
    Hashes hashes;
    QHash<QString, QVector<int>> readers; ///< files for which a path is read
    QStringList toRead;
    QVector<int> samples; ///< positions of files whose times are still to be read
    int atWork = 0;       ///< steps under way
};

ChoiceMarks::ChoiceMarks(QObject *parent) : QObject(parent)
{
    tellTimer_.setSingleShot(true);
    tellTimer_.setInterval(tellIntervalMs);
    connect(&tellTimer_, &QTimer::timeout, this, [this] {
        const QVector<OrderIdentity> orders = std::exchange(untold_, {});
        for (const OrderIdentity &order : orders)
            emit changed(order);
    });
}

ChoiceMarks::~ChoiceMarks()
{
    stop();
}

void ChoiceMarks::sync(const QVector<Choice> &choices)
{
    QSet<OrderIdentity> chosen;
    for (const Choice &choice : choices) {
        chosen.insert(choice.order);
        const LookPtr known = looks_.value(choice.order);
        if (!known || known->stop.isRaised() || !(known->choice == choice))
            look(choice);
    }
    const QVector<OrderIdentity> before = sequence_;
    for (const OrderIdentity &order : before) {
        if (!chosen.contains(order))
            forget(order);
    }
}

void ChoiceMarks::look(const Choice &choice)
{
    const LookPtr before = looks_.value(choice.order);
    if (before)
        before->stop.raise();
    const LookPtr look = begun(choice, before);
    looks_.insert(choice.order, look);
    if (!sequence_.contains(choice.order))
        sequence_.append(choice.order);
    emit changed(choice.order);

    Reads reads;
    for (auto hash = look->hashes.cbegin(); hash != look->hashes.cend(); ++hash) {
        Read read = before->stamps.value(hash.key());
        read.hash = hash.value();
        reads.insert(hash.key(), read);
    }
    QSet<QString> places(choice.folders.cbegin(), choice.folders.cend());
    for (const ChosenFile &file : choice.files)
        places.insert(QFileInfo(file.source).path());
    ++look->atWork;
    onDisk(
        this, places.values(),
        [choice, reads, stop = look->stop] {
            Facts facts;
            facts.evidence = evidenceOf(choice, stop);
            const Reads stamps = stampsOf(facts.evidence);
            for (auto read = reads.cbegin(); read != reads.cend(); ++read) {
                const auto now = stamps.constFind(read.key());
                if (now != stamps.cend() && now->size == read->size &&
                    now->modified == read->modified)
                    facts.hashes.insert(read.key(), read->hash);
            }
            for (const Evidence &evidence : qAsConst(facts.evidence))
                facts.marked.append(judge(evidence, choice.order, facts.hashes));
            return facts;
        },
        [this, look](const Facts &facts) { onFacts(look, facts); });
}

/// A look at \a choice that knows what \a before knew of its files; that may be null.
ChoiceMarks::LookPtr ChoiceMarks::begun(const Choice &choice, const LookPtr &before)
{
    const auto look = std::make_shared<Look>();
    look->choice = choice;
    look->known.marks.order = choice.order;
    look->known.marks.orderNumber = choice.orderNumber;
    look->known.shootingDay = shootingDayOf(choice.shotDate);
    look->known.fileWord = choice.fileWord;
    QHash<QString, MarkedFile> earlier;
    if (before) {
        look->known.captures = before->known.captures;
        look->hashes = before->hashes;
        for (const MarkedFile &file : qAsConst(before->known.marks.files))
            earlier.insert(file.file.source, file);
    }
    for (const ChosenFile &file : choice.files) {
        MarkedFile marked = earlier.value(file.source);
        if (marked.file.target != file.target) {
            marked = {};
            marked.file = file;
        }
        look->known.marks.files.append(marked);
    }
    return look;
}

void ChoiceMarks::forget(const OrderIdentity &order)
{
    looks_.take(order)->stop.raise();
    sequence_.removeOne(order);
    emit changed(order);
}

void ChoiceMarks::onFacts(const LookPtr &look, const Facts &arrived)
{
    --look->atWork;
    if (look->stop.isRaised())
        return;
    const Facts facts = arrived;
    look->evidence = facts.evidence;
    look->stamps = stampsOf(look->evidence);
    look->hashes = facts.hashes;
    look->known.marks.files = facts.marked;
    for (int index = 0; index < facts.marked.size(); ++index)
        want(look.get(), index);
    const int chosen = look->choice.files.size();
    look->samples = sampleOf(chosen, capturesLookedAt);
    look->known.captures = {{}, 0, chosen};
    emit changed(look->choice.order);
    sampleCaptures(look);
    readNext(look);
}

/// Puts what decides about the file at \a index among what is to be read.
void ChoiceMarks::want(Look *look, int index)
{
    const MarkedFile &file = look->known.marks.files.at(index);
    for (const QString &path : file.toRead) {
        QVector<int> &readers = look->readers[path];
        if (readers.isEmpty() && !look->hashes.contains(path))
            look->toRead.append(path);
        if (!readers.contains(index))
            readers.append(index);
    }
}

/// One file after the other: the disk is there for others, too.
void ChoiceMarks::readNext(const LookPtr &look)
{
    if (look->toRead.isEmpty() || look->stop.isRaised())
        return;
    const QString path = look->toRead.takeFirst();
    ++look->atWork;
    onDisk(
        this, path, [path, stop = look->stop] { return contentOf(path, stop); },
        [this, look, path](const QByteArray &hash) {
            --look->atWork;
            if (!look->stop.isRaised()) {
                onRead(look, path, hash);
                readNext(look);
            }
        });
}

void ChoiceMarks::onRead(const LookPtr &look, const QString &path, const QByteArray &hash)
{
    look->hashes.insert(path, hash);
    const QVector<int> readers = look->readers.take(path);
    for (const int index : readers) {
        look->known.marks.files[index] =
            judge(look->evidence.at(index), look->choice.order, look->hashes);
        want(look.get(), index);
    }
    tell(look->choice.order);
}

void ChoiceMarks::sampleCaptures(const LookPtr &look)
{
    if (look->samples.isEmpty() || look->stop.isRaised() || !look->known.shootingDay.isValid())
        return;
    QStringList sources;
    QVector<qint64> times;
    while (!look->samples.isEmpty() && sources.size() < capturesAtOnce) {
        const ChosenFile &file = look->evidence.at(look->samples.takeFirst()).file;
        sources.append(file.source);
        times.append(file.modified);
    }
    ++look->atWork;
    onDisk(
        this, sources,
        [sources, times, fileTime = look->choice.fileTime] {
            return capturesOf(sources, times, fileTime);
        },
        [this, look, count = sources.size()](const QVector<Capture> &arrived) {
            --look->atWork;
            if (look->stop.isRaised())
                return;
            look->known.captures.photos += QVector<Capture>(arrived);
            look->known.captures.lookedAt += count;
            tell(look->choice.order);
            sampleCaptures(look);
        });
}

void ChoiceMarks::stop()
{
    for (const LookPtr &look : qAsConst(looks_)) {
        look->stop.raise();
        for (MarkedFile &file : look->known.marks.files) {
            if (file.mark == Mark::Comparing)
                file.mark = Mark::None; // nobody compares any more
        }
        tell(look->choice.order);
    }
}

QVector<OrderLook> ChoiceMarks::looks() const
{
    QVector<OrderLook> all;
    for (const OrderIdentity &order : sequence_)
        all.append(looks_.value(order)->known);
    return all;
}

QHash<QString, Mark> ChoiceMarks::marksOf(const OrderIdentity &order) const
{
    QHash<QString, Mark> found;
    const LookPtr look = looks_.value(order);
    if (look) {
        for (const MarkedFile &file : qAsConst(look->known.marks.files))
            found.insert(file.file.source, file.mark);
    }
    return found;
}

bool ChoiceMarks::isLooking() const
{
    return std::any_of(looks_.cbegin(), looks_.cend(), [](const LookPtr &look) {
        return look->atWork > 0 && !look->stop.isRaised();
    });
}

void ChoiceMarks::tell(const OrderIdentity &order)
{
    if (!untold_.contains(order))
        untold_.append(order);
    if (!tellTimer_.isActive())
        tellTimer_.start();
}
