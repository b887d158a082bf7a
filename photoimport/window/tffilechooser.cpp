#include "photoimport/window/tffilechooser.h"

#include "files/chosenfiles.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "tasks/background.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/windows/loadingoverlay.h"

#include <utility>

tffilechooser::tffilechooser(QWidget *window, tforderlistmodel *orders, LoadingOverlay *overlay,
                             std::function<bool(int row)> mayChange)
    : QObject(window)
    , window_(window)
    , orders_(orders)
    , overlay_(overlay)
    , mayChange_(std::move(mayChange))
{
}

void tffilechooser::cancel()
{
    choice_.abandon();
}

void tffilechooser::addFiles(int row)
{
    if (!mayChange_(row))
        return;
    const OrderIdentity id = orders_->order(row).identity();
    const QStringList paths =
        FileDialog::openFiles(window_, QStringLiteral("选择要导入的文件"),
                              sourceFilter(orders_->photoMode()), QStringLiteral("photoimport"));
    take(orders_->rowOf(id), paths, false);
}

void tffilechooser::addFolder(int row)
{
    if (!mayChange_(row))
        return;
    const OrderIdentity id = orders_->order(row).identity();
    const QString folder = FileDialog::existingFolder(window_, QStringLiteral("选择要导入的目录"),
                                                      QStringLiteral("photoimport"));
    if (!folder.isEmpty())
        take(orders_->rowOf(id), {folder}, true);
}

void tffilechooser::take(int row, const QStringList &paths, bool expand)
{
    if (paths.isEmpty() || !mayChange_(row))
        return;
    const FileChoice choice{paths, expand, orders_->photoMode(), orders_->files(row)};
    overlay_->showText(QStringLiteral("正在检查文件..."));
    onDisk(
        this, paths, [choice] { return describeChoice(choice); },
        choice_.only([this, mode = choice.photoMode,
                      orderId = orders_->order(row).identity()](const FileChoiceResult &result) {
            overlay_->hideOverlay();
            onDescribed(orderId, mode, result);
        }));
}

void tffilechooser::onDescribed(const OrderIdentity &orderId, int photoMode,
                                const FileChoiceResult &result)
{
    if (result.unreadable.isEmpty()) {
        add(orderId, photoMode, result);
        return;
    }
    ConfirmDialog::ask(window_, BoxText(chosenfiles::unreadableHeading(), result.unreadable),
                       ConfirmDialog::Enter::Cancels,
                       [this, orderId, photoMode, result](bool confirmed) {
                           if (confirmed)
                               add(orderId, photoMode, result);
                       });
}

void tffilechooser::add(const OrderIdentity &orderId, int photoMode, const FileChoiceResult &result)
{
    const int row = orders_->rowOf(orderId);
    if (row < 0 || photoMode != orders_->photoMode())
        return;
    if (!result.clashes.isEmpty()) {
        MessageBox::warning(window_, chosenfiles::sameTargetNotice(result.clashes));
        return;
    }
    if (!result.ignored.isEmpty())
        MessageBox::information(window_, chosenfiles::ignoredNotice(result.ignored));
    if (result.repeated > 0)
        Toast::show(window_, QStringLiteral("%1 个文件已在列表中").arg(result.repeated));
    orders_->addFiles(row, result.files);
    emit filesAdded(orderId);
}
