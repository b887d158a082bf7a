#include "orderbrowser/run/sheetwriter.h"

#include "files/filewriting.h"
#include "tasks/background.h"

namespace {

constexpr int rowsAtOnce = 5000;

} // namespace

void SheetWriter::start(const QString &path, const OrderSheet &sheet)
{
    path_ = path;
    sheet_ = sheet;
    table_ = sheet.head();
    saving_ = false;
    makeLines(0);
}

void SheetWriter::makeLines(int first)
{
    onProcessor(
        this, [sheet = sheet_, first] { return sheet.lines(first, rowsAtOnce); },
        step_.only([this, first](const QByteArray &lines) {
            table_ += lines;
            const int made = qMin(first + rowsAtOnce, sheet_.rows.size());
            emit progressed(made, sheet_.rows.size());
            if (made < sheet_.rows.size())
                makeLines(made);
            else
                write();
        }));
}

void SheetWriter::cancel()
{
    step_.abandon();
    sheet_ = {};
    table_.clear();
}

void SheetWriter::write()
{
    saving_ = true;
    onDisk(
        this, path_,
        [path = path_, table = std::exchange(table_, {})] { return writeBytes(path, table); },
        step_.only([this](bool written) {
            sheet_ = {};
            emit finished(path_, written);
        }));
}
