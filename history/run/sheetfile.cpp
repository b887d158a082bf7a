#include "history/run/sheetfile.h"

#include "files/filewriting.h"
#include "tasks/background.h"

#include <utility>

void SheetFile::write(const QString &path, std::function<QByteArray()> make)
{
    onProcessor(this, std::move(make), step_.only([this, path](const QByteArray &table) {
        onDisk(
            this, path, [path, table] { return writeBytes(path, table); },
            step_.only([this, path](bool isWritten) { emit finished(path, isWritten); }));
    }));
}
