#include "batchdelete/window/batchdelete_exportbutton.h"

#include "batchdelete/run/deletiontexts.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "files/filewriting.h"
#include "tasks/background.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/inputs/contextmenu.h"
#include "widgets/theme/theme.h"

#include <QClipboard>
#include <QDateTime>
#include <QGuiApplication>

#include <algorithm>

BatchDelete_ExportButton::BatchDelete_ExportButton(const BatchDeleteOrderModel *model,
                                                   QWidget *parent)
    : QPushButton(QStringLiteral("导出结果"), parent), model_(model)
{
    setObjectName(QStringLiteral("exportButton"));
    setStyleSheet(theme::secondaryButtonStyle());
    auto *menu = new ContextMenu(this);
    menu->addAction(QStringLiteral("保存为 CSV 文件..."), this,
                    &BatchDelete_ExportButton::saveOutcome);
    menu->addAction(QStringLiteral("复制到剪贴板"), this, &BatchDelete_ExportButton::copyOutcome);
    setMenu(menu);
}

bool BatchDelete_ExportButton::hasOutcome()
{
    const QVector<BatchDeleteOrderInfo> &orders = model_->orders();
    const bool any = std::any_of(orders.cbegin(), orders.cend(), deletiontexts::hasOutcome);
    if (!any)
        Toast::show(this, QStringLiteral("还没有删除结果"));
    return any;
}

void BatchDelete_ExportButton::saveOutcome()
{
    if (!hasOutcome())
        return;
    const QString now = QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss"));
    const QString path = FileDialog::saveFile(
        this, QStringLiteral("导出结果"), QStringLiteral("批量删除结果-%1.csv").arg(now),
        QStringLiteral("CSV (*.csv)"), QStringLiteral("deletion"));
    if (path.isEmpty())
        return;
    onDisk(
        this, path,
        [path, orders = model_->orders()] { return writeBytes(path, deletiontexts::csv(orders)); },
        [this, path](bool written) {
            if (written)
                Toast::show(this, QStringLiteral("结果已保存: %1").arg(path));
            else
                MessageBox::warning(this, QStringLiteral("文件保存失败: %1").arg(path));
        });
}

void BatchDelete_ExportButton::copyOutcome()
{
    if (!hasOutcome())
        return;
    onProcessor(
        this, [orders = model_->orders()] { return deletiontexts::csv(orders); },
        [this](const QByteArray &table) {
            QGuiApplication::clipboard()->setText(QString::fromUtf8(table));
            Toast::show(this, QStringLiteral("结果已复制"));
        });
}
