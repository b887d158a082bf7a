#include "orderbrowser/window/exportbutton.h"

#include "orderbrowser/window/browsertable.h"
#include "orderbrowser/window/exportdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/theme/theme.h"

#include <QDateTime>
#include <QFileInfo>

ExportButton::ExportButton(const BrowserTable *table, QWidget *parent)
    : QPushButton(QStringLiteral("导出"), parent), table_(table)
{
    setObjectName(QStringLiteral("exportButton"));
    setStyleSheet(theme::secondaryButtonStyle());
    connect(this, &QPushButton::clicked, this, [this] { isUnderWay() ? cancel() : ask(); });
    connect(&writer_, &SheetWriter::finished, this, &ExportButton::onWritten);
    connect(&writer_, &SheetWriter::progressed, this, [this](int rows, int total) {
        setText(QStringLiteral("取消导出 %1%").arg(rows * 100LL / qMax(1, total)));
    });
    connect(&folderOpener_, &SharedFolderOpener::finished, this,
            [this](bool, const QString &error) {
                if (!error.isEmpty())
                    Toast::show(this, error);
            });
}

void ExportButton::ask()
{
    const int shown = table_->orders()->rowCount();
    if (shown == 0) {
        Toast::show(this, QStringLiteral("没有可以导出的订单"));
        return;
    }
    auto *dialog = new ExportDialog(window(), shown, table_->selectedRows().size(),
                                    !table_->orders()->display().wholePhones);
    connect(dialog, &ExportDialog::chosen, this, &ExportButton::exportRows);
    dialog->open();
}

void ExportButton::exportRows(bool selectedAlone, bool wholePhones)
{
    // What is shown while the file is chosen may be another list.
    const OrderBrowserModel *orders = table_->orders();
    OrderSheet sheet{orders->listing(), orders->positions(), table_->shownKeys(),
                     orders->display()};
    sheet.display.wholePhones = wholePhones;
    if (selectedAlone) {
        sheet.rows.clear();
        const auto selected = table_->selectedRows();
        for (const int row : selected)
            sheet.rows.append(orders->position(row));
    }
    const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
    const QString path = FileDialog::saveFile(
        window(), QStringLiteral("导出"), QStringLiteral("订单列表-%1.csv").arg(now),
        QStringLiteral("CSV (*.csv)"), QStringLiteral("orders"));
    if (path.isEmpty())
        return;
    setText(QStringLiteral("取消导出"));
    writer_.start(path, sheet);
}

/// Of what the disk has in hand by now nobody knows whether it will be there.
void ExportButton::cancel()
{
    Toast::show(this, writer_.isSaving() ? QStringLiteral("已取消导出，文件可能已经写出")
                                         : QStringLiteral("已取消导出"));
    writer_.cancel();
    end();
}

void ExportButton::end()
{
    setText(QStringLiteral("导出"));
    emit ended();
}

void ExportButton::onWritten(const QString &path, bool written)
{
    end();
    if (!written) {
        // Also when the window has been closed meanwhile.
        MessageBox::warning(window()->isVisible() ? this : nullptr,
                            QStringLiteral("文件保存失败: %1").arg(path));
        return;
    }
    Toast::show(this, QStringLiteral("已导出: %1").arg(path), QStringLiteral("打开"),
                [this, folder = QFileInfo(path).absolutePath()] { folderOpener_.open(folder); });
}
