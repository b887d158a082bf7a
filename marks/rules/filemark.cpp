#include "marks/rules/filemark.h"

#include "look/colours.h"

namespace marks {

namespace {

enum class Answer { No, Yes, Unread };

/// Asks for what was read, and remembers what has to be read to answer.
class Reading
{
public:
    Reading(const Hashes &hashes, QStringList *toRead) : hashes_(hashes), toRead_(toRead) {}

    Answer has(const QString &path, const QByteArray &content) const
    {
        if (!isRead(path))
            return Answer::Unread;
        return !content.isEmpty() && hashes_.value(path) == content ? Answer::Yes : Answer::No;
    }

    Answer haveSameContent(const QString &one, const QString &other) const
    {
        const bool oneRead = isRead(one);
        if (!isRead(other) || !oneRead)
            return Answer::Unread;
        return has(one, hashes_.value(other));
    }

private:
    bool isRead(const QString &path) const
    {
        if (hashes_.contains(path))
            return true;
        if (!toRead_->contains(path))
            toRead_->append(path);
        return false;
    }

    const Hashes &hashes_;
    QStringList *toRead_;
};

/// Whether \a copy was made of \a file's content.
Answer isCopyOf(const KnownCopy &copy, const ChosenFile &file, const Reading &reading)
{
    if (copy.isSameSource)
        return Answer::Yes;
    return copy.sourceHash.isEmpty() ? Answer::No : reading.has(file.source, copy.sourceHash);
}

/// Whether \a copy's target still is what was written. A copy keeps its source's time.
Answer stillStands(const KnownCopy &copy, const ChosenFile &file, const Reading &reading)
{
    if (!copy.standing)
        return Answer::No;
    if (!copy.isUpright && copy.standing->size != file.size)
        return Answer::No;
    if (!copy.isUpright && copy.standing->modified == file.modified)
        return Answer::Yes;
    return copy.targetHash.isEmpty() ? Answer::No
                                     : reading.has(copy.standing->path, copy.targetHash);
}

Answer both(Answer one, Answer other)
{
    if (one == Answer::No || other == Answer::No)
        return Answer::No;
    return one == Answer::Yes && other == Answer::Yes ? Answer::Yes : Answer::Unread;
}

Answer either(Answer one, Answer other)
{
    if (one == Answer::Yes || other == Answer::Yes)
        return Answer::Yes;
    return one == Answer::Unread || other == Answer::Unread ? Answer::Unread : Answer::No;
}

/// Whether what stands under the file's own name is its content.
Answer isStanding(const Evidence &evidence, const Reading &reading)
{
    if (!evidence.standing || evidence.standing->size != evidence.file.size)
        return Answer::No;
    return reading.haveSameContent(evidence.file.source, evidence.standing->path);
}

/// An import of the content for another order; Unread while one may turn out to be.
Answer findElsewhere(const Evidence &evidence, const OrderIdentity &order, const Reading &reading,
                     MarkedFile *marked)
{
    Answer found = Answer::No;
    for (const KnownCopy &copy : evidence.copies) {
        if (copy.order == order)
            continue;
        const Answer answer = isCopyOf(copy, evidence.file, reading);
        if (answer == Answer::Yes && !marked->elsewhere)
            marked->elsewhere = copy;
        found = either(found, answer);
    }
    return found;
}

} // namespace

QString textOf(Mark mark)
{
    switch (mark) {
    case Mark::None:
        return {};
    case Mark::Comparing:
        return QStringLiteral("比对中");
    case Mark::New:
        return QStringLiteral("新");
    case Mark::Imported:
        return QStringLiteral("已导入");
    case Mark::Differs:
        return QStringLiteral("同名不同内容");
    case Mark::OtherOrder:
        return QStringLiteral("已在其他订单");
    }
    Q_UNREACHABLE();
}

QRgb colourOf(Mark mark)
{
    switch (mark) {
    case Mark::None:
    case Mark::Comparing:
        return colours::muted;
    case Mark::New:
        return colours::chosen;
    case Mark::Imported:
        return colours::success;
    case Mark::Differs:
        return colours::failure;
    case Mark::OtherOrder:
        return colours::elsewhere;
    }
    Q_UNREACHABLE();
}

const QVector<Mark> &filterMarks()
{
    static const QVector<Mark> all = {Mark::New, Mark::Imported, Mark::Differs, Mark::OtherOrder};
    return all;
}

MarkedFile judge(const Evidence &evidence, const OrderIdentity &order, const Hashes &hashes)
{
    MarkedFile marked;
    marked.file = evidence.file;
    if (!evidence.isReadable)
        return marked;
    marked.standing = evidence.standing;
    const Reading reading(hashes, &marked.toRead);

    Answer imported = Answer::No;
    for (const KnownCopy &copy : evidence.copies) {
        if (copy.order != order)
            continue;
        const Answer answer =
            both(isCopyOf(copy, evidence.file, reading), stillStands(copy, evidence.file, reading));
        if (answer == Answer::Yes)
            marked.standing = copy.standing;
        imported = either(imported, answer);
        if (imported == Answer::Yes)
            break;
    }
    if (imported != Answer::Yes)
        imported = either(imported, isStanding(evidence, reading));
    const Answer elsewhere =
        imported == Answer::Yes ? Answer::No : findElsewhere(evidence, order, reading, &marked);

    if (imported == Answer::Yes)
        marked.mark = Mark::Imported;
    else if (imported == Answer::Unread)
        marked.mark = Mark::Comparing;
    else if (evidence.standing)
        marked.mark = Mark::Differs;
    else if (marked.elsewhere)
        marked.mark = Mark::OtherOrder;
    else
        marked.mark = elsewhere == Answer::Unread ? Mark::Comparing : Mark::New;
    if (imported == Answer::Yes)
        marked.toRead.clear();
    return marked;
}

QHash<Mark, int> countsOf(const QVector<MarkedFile> &files)
{
    QHash<Mark, int> counts;
    for (const MarkedFile &file : files)
        ++counts[file.mark];
    return counts;
}

} // namespace marks
