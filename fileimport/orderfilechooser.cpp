#include "fileimport/orderfilechooser.h"

#include "fileimport/importordertablemodel.h"
#include "fileimport/importrules.h"
#include "files/chosenfiles.h"
#include "tasks/background.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/loadingoverlay.h"
#include "widgets/toast.h"

namespace {

constexpr int toastMs = 2000;

} // namespace

OrderFileChooser::OrderFileChooser(QWidget *window, ImportOrderTableModel *orders)
    : QObject(window), window_(window), orders_(orders), overlay_(new LoadingOverlay(window))
{
    connect(overlay_, &LoadingOverlay::cancelled, this, &OrderFileChooser::cancel);
}

void OrderFileChooser::cancel()
{
    ++choice_;
    overlay_->hideOverlay();
}

bool OrderFileChooser::isBusy() const
{
    return overlay_->isVisible();
}

bool OrderFileChooser::mayChoose(int row)
{
    if (!orders_->hasRow(row))
        return false;
    const ImportOrder &order = orders_->order(row);
    if (order.importPath.isEmpty() && order.importPublicPath.isEmpty()) {
        MessageBox::information(
            window_, order.displayName() +
                         QStringLiteral(" 没有设置本地云导片路径, 请在后台设置本地云导片路径！"));
        return false;
    }
    return true;
}

void OrderFileChooser::choose(int row)
{
    if (!mayChoose(row))
        return;
    // While the dialog stands a search may end and put another order into this row.
    const QString orderId = orders_->order(row).id;
    const QStringList paths =
        FileDialog::openFiles(window_, QStringLiteral("选择要导入的文件"),
                              importrules::dialogFilter(mode_), QStringLiteral("import"));
    prepare(orders_->rowOf(orderId), paths, false);
}

void OrderFileChooser::take(int row, const QStringList &paths)
{
    if (mayChoose(row))
        prepare(row, paths, true);
}

void OrderFileChooser::prepare(int row, const QStringList &paths, bool dropped)
{
    if (paths.isEmpty() || !orders_->hasRow(row))
        return;
    const QString orderId = orders_->order(row).id;
    const bool agreed = agreesToSharedFolder(row);
    row = orders_->rowOf(orderId);
    if (!agreed || row < 0)
        return;
    setFiles(row, {});
    orders_->change(
        row, [](ImportOrder &order) { order.importPath = importrules::importPathOf(order); });
    const ChoiceRequest request{mode_, orders_->order(row).importPath, row, paths, dropped};
    overlay_->showText(QStringLiteral("正在检查文件..."));
    inBackground(
        this, [request] { return prepareChoice(request); },
        [this, choice = ++choice_, orderId](const ChoiceResult &result) {
            if (choice != choice_)
                return;
            overlay_->hideOverlay();
            onPrepared(orderId, result);
        });
}

bool OrderFileChooser::agreesToSharedFolder(int row)
{
    const QVector<int> others = importrules::ordersSharingFolder(orders_->orders(), row);
    if (others.isEmpty())
        return true;
    QString text =
        QStringLiteral("下列订单的导片目录相同，照片会放进同一个文件夹，确认要继续吗？\n%1\n\n%2")
            .arg(importrules::importPathOf(orders_->order(row)), orders_->order(row).displayName());
    for (const int other : others)
        text += QLatin1Char('\n') + orders_->order(other).displayName();
    return ConfirmDialog::ask(window_, text, ConfirmDialog::Enter::Cancels);
}

void OrderFileChooser::onPrepared(const QString &orderId, const ChoiceResult &result)
{
    if (!result.folderError.isEmpty()) {
        MessageBox::warning(window_, result.folderError);
        return;
    }
    if (result.ignored > 0) {
        Toast::show(window_, QStringLiteral("已忽略 %1 个不支持的文件").arg(result.ignored),
                    toastMs);
    }
    if (!result.clashes.isEmpty()) {
        MessageBox::warning(window_, chosenfiles::sameTargetNotice(result.clashes));
        return;
    }
    if (orders_->rowOf(orderId) < 0 || result.files.isEmpty())
        return;
    if (mode_ == ImportMode::Retouched) {
        const QStringList unchosen = importrules::unchosenNames(
            result.files, orders_->order(orders_->rowOf(orderId)).selectedNames);
        if (!unchosen.isEmpty() &&
            !ConfirmDialog::ask(window_, importrules::unchosenQuestion(unchosen)))
            return;
    }
    setFiles(orders_->rowOf(orderId), result.files);
}

void OrderFileChooser::setFiles(int row, const QVector<ImportFile> &files)
{
    if (!orders_->hasRow(row))
        return;
    orders_->change(row, [&files](ImportOrder &order) {
        order.files = files;
        order.everChosen = true;
    });
    emit filesChanged(row);
}
