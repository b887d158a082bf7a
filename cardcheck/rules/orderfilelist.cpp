#include "cardcheck/rules/orderfilelist.h"

#include "files/paths.h"
#include "look/colours.h"
#include "net/orderfiles.h"

#include <algorithm>

namespace orderfilelist {

namespace {

struct Look
{
    QStringView text;
    QRgb colour;
};

Look lookOf(State state)
{
    switch (state) {
    case State::FileMissing:
        return {u"✗ 文件缺失", colours::failure};
    case State::SizeDiffers:
        return {u"✗ 大小与导入时不同", colours::failure};
    case State::ContentDiffers:
        return {u"✗ 内容与导入时不同", colours::failure};
    case State::Unreadable:
        return {u"✗ 无法读取", colours::failure};
    case State::NotCompared:
        return {u"✓ 在位（没有校验值）", colours::muted};
    case State::Unregistered:
        return {u"! 未登记", colours::unproved};
    case State::ServiceUnknown:
        return {u"! 登记未核实", colours::unproved};
    case State::NotToRegister:
        return {u"✓ 在位（不登记）", colours::success};
    case State::Matches:
        return {u"✓ 一致", colours::success};
    }
    Q_UNREACHABLE();
}

State stateOf(const OrderFile &file, bool isServiceKnown)
{
    if (file.folderBytes < 0)
        return State::FileMissing;
    if (file.copy.isFinished() && file.copy.targetBytes >= 0 &&
        file.copy.targetBytes != file.folderBytes)
        return State::SizeDiffers;
    if (file.content == Content::Differs)
        return State::ContentDiffers;
    if (file.content == Content::Unreadable)
        return State::Unreadable;
    if (evidence::registeredAs(file.path) == evidence::Registered::Never)
        return State::NotToRegister;
    if (!isServiceKnown)
        return State::ServiceUnknown;
    if (!file.isListed)
        return State::Unregistered;
    return file.content == Content::Same ? State::Matches : State::NotCompared;
}

/// The files by where they lie, so that three lists become one.
class Files
{
public:
    explicit Files(const QString &folder) : folder_(folder) {}

    OrderFile &at(const QString &path)
    {
        const QString key = wirePathKey(path);
        auto known = positions_.find(key);
        if (known == positions_.end()) {
            known = positions_.insert(key, all_.size());
            OrderFile file;
            file.path = path;
            const bool isBelow = key.startsWith(wirePathKey(folder_));
            file.shown = isBelow ? path.mid(folder_.size() + 1) : path;
            all_.append(file);
        }
        return all_[*known];
    }

    QVector<OrderFile> &all() { return all_; }

private:
    const QString folder_;
    QHash<QString, int> positions_;
    QVector<OrderFile> all_;
};

} // namespace

QString stateText(State state)
{
    return lookOf(state).text.toString();
}

unsigned int stateColour(State state)
{
    return lookOf(state).colour;
}

bool OrderFile::isToBeRead() const
{
    return folderBytes >= 0 && copy.isFinished() && !copy.targetHash.isEmpty() &&
           (copy.targetBytes < 0 || copy.targetBytes == folderBytes);
}

void Comparison::settle(int index, Content content)
{
    OrderFile &file = files[index];
    file.content = content;
    file.state = stateOf(file, isServiceKnown);
}

int Comparison::count(State state) const
{
    return int(std::count_if(files.cbegin(), files.cend(),
                             [state](const OrderFile &file) { return file.state == state; }));
}

int Comparison::inFolder() const
{
    return int(std::count_if(files.cbegin(), files.cend(),
                             [](const OrderFile &file) { return file.folderBytes >= 0; }));
}

int Comparison::atService() const
{
    return int(std::count_if(files.cbegin(), files.cend(),
                             [](const OrderFile &file) { return file.isListed; }));
}

Comparison compare(const QString &folder, const QVector<places::FolderFile> &files,
                   const evidence::ServiceList *list, const QVector<ledger::Copy> &copies)
{
    Comparison comparison;
    comparison.isServiceKnown = list && list->state == evidence::ServiceList::State::Answered;
    Files all(folder);
    for (const places::FolderFile &file : files)
        all.at(file.path).folderBytes = file.bytes;
    if (comparison.isServiceKnown) {
        for (const orderfiles::ListedFile &file : list->files) {
            // A photo that the customers chose long ago may have no place of its own.
            if (!file.localPath.isEmpty())
                all.at(file.localPath).isListed = true;
        }
    }
    for (const ledger::Copy &copy : copies) {
        const bool isImported =
            copy.kind == ledger::CopyKind::Bytes || copy.kind == ledger::CopyKind::Upright;
        if (isImported && copy.isFinished() && all.at(copy.target).copy.id == 0)
            all.at(copy.target).copy = copy;
    }
    for (OrderFile &file : all.all()) {
        file.isListed = file.isListed || (comparison.isServiceKnown && list->lists(file.path));
        file.state = stateOf(file, comparison.isServiceKnown);
    }
    comparison.files = all.all();
    std::sort(comparison.files.begin(), comparison.files.end(),
              [](const OrderFile &one, const OrderFile &other) { return one.path < other.path; });
    return comparison;
}

QString summary(const Comparison &comparison)
{
    if (!comparison.problem.isEmpty())
        return comparison.problem;
    QStringList parts{comparison.isServiceKnown
                          ? QStringLiteral("服务端 %1 张").arg(comparison.atService())
                          : QStringLiteral("服务端没有答复"),
                      QStringLiteral("文件夹 %1 个").arg(comparison.inFolder())};
    const auto add = [&](State state, const QString &text) {
        const int files = comparison.count(state);
        if (files > 0)
            parts.append(text.arg(files));
    };
    add(State::FileMissing, QStringLiteral("%1 个文件缺失"));
    add(State::SizeDiffers, QStringLiteral("%1 个大小与导入时不同"));
    add(State::ContentDiffers, QStringLiteral("%1 个内容与导入时不同"));
    add(State::Unreadable, QStringLiteral("%1 个无法读取"));
    add(State::Unregistered, QStringLiteral("%1 个未登记"));
    add(State::NotCompared, QStringLiteral("%1 个没有校验值，只核对了是否在位"));
    add(State::NotToRegister, QStringLiteral("%1 个类型不登记"));
    const bool isWhole =
        comparison.isServiceKnown &&
        comparison.count(State::Matches) + comparison.count(State::NotToRegister) ==
            comparison.files.size();
    if (isWhole)
        parts.append(QStringLiteral("全部一致"));
    return parts.join(QStringLiteral("，"));
}

bool canRegister(const Comparison &comparison)
{
    return std::any_of(
        comparison.files.cbegin(), comparison.files.cend(), [](const OrderFile &file) {
            const QString folder = file.path.section(QLatin1Char('\\'), -2, -2);
            return file.state == State::Unregistered &&
                   (folder == orderfiles::originalsFolder || folder == orderfiles::rawFolder);
        });
}

} // namespace orderfilelist
