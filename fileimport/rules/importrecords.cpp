#include "fileimport/rules/importrecords.h"

#include "files/safename.h"
#include "look/colours.h"

#include <algorithm>

QString ImportFile::fileName() const
{
    return baseName + QLatin1Char('.') + suffix;
}

QString ImportFile::targetName() const
{
    return safeFileName(fileName());
}

int ImportOrder::countOf(ImportFile::State state) const
{
    return int(std::count_if(files.cbegin(), files.cend(),
                             [state](const ImportFile &file) { return file.state == state; }));
}

bool ImportOrder::hasUnfinishedFile() const
{
    return std::any_of(files.cbegin(), files.cend(),
                       [](const ImportFile &file) { return file.state != ImportFile::Imported; });
}

bool ImportOrder::applyResult(const ImportFile &file)
{
    const int index = file.fileIndex;
    if (index < 0 || index >= files.size() || files.at(index).sourcePath != file.sourcePath)
        return false;
    files[index].state = file.state;
    files[index].message = file.message;
    return true;
}

int ImportOrder::failedFile(const QString &sourcePath) const
{
    const auto file =
        std::find_if(files.cbegin(), files.cend(), [&sourcePath](const ImportFile &each) {
            return each.state == ImportFile::Failed && each.sourcePath == sourcePath;
        });
    return file == files.cend() ? -1 : int(file - files.cbegin());
}

PhotoState ImportOrder::photoState() const
{
    if (importing)
        return PhotoState::Importing;
    if (files.isEmpty())
        return PhotoState::NotChosen;
    const int waiting = countOf(ImportFile::Waiting);
    if (waiting == files.size())
        return PhotoState::Chosen;
    if (unregistered || countOf(ImportFile::Failed) > 0)
        return PhotoState::Failed;
    return waiting > 0 ? PhotoState::Chosen : PhotoState::Done;
}

QString ImportOrder::displayNumber() const
{
    return QStringLiteral("%0-%1").arg(orderPayForKey, serviceTimes);
}

QString ImportOrder::displayName() const
{
    QStringList parts{displayNumber()};
    for (const QString &name : {mname, wname}) {
        if (!name.isEmpty())
            parts.append(name);
    }
    return parts.join(QLatin1Char(' '));
}

QString photoStateText(const ImportOrder &order)
{
    switch (order.photoState()) {
    case PhotoState::NotChosen:
        return QStringLiteral("未选择");
    case PhotoState::Chosen:
        return QStringLiteral("已选择");
    case PhotoState::Importing:
        return QStringLiteral("导入中 %1/%2")
            .arg(order.files.size() - order.countOf(ImportFile::Waiting))
            .arg(order.files.size());
    case PhotoState::Done:
        return QStringLiteral("导入完成");
    case PhotoState::Failed:
        return QStringLiteral("成功:%0, 失败:%1")
            .arg(order.countOf(ImportFile::Imported))
            .arg(order.countOf(ImportFile::Failed));
    }
    return {};
}

unsigned int photoStateColour(PhotoState state)
{
    switch (state) {
    case PhotoState::NotChosen:
        return colours::muted;
    case PhotoState::Chosen:
        return colours::link;
    case PhotoState::Importing:
        return colours::inProgress;
    case PhotoState::Done:
        return colours::success;
    case PhotoState::Failed:
        return colours::failure;
    }
    return colours::muted;
}
