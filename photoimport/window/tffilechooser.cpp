#include "photoimport/window/tffilechooser.h"

#include "files/chosenfiles.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "tasks/background.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/windows/loadingoverlay.h"

#include <algorithm>
#include <utility>

namespace {

bool haveSamePaths(const QVector<SourceFile> &some, const QVector<SourceFile> &others)
{
    return std::equal(
        some.cbegin(), some.cend(), others.cbegin(), others.cend(),
        [](const SourceFile &file, const SourceFile &other) { return file.path == other.path; });
}

} // namespace

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
    describe(orders_->order(row).identity(),
             {paths, expand, orders_->photoMode(), orders_->files(row)}, Unreadable::Ask);
}

void tffilechooser::describe(const OrderIdentity &orderId, const FileChoice &choice,
                             Unreadable unreadable)
{
    overlay_->showText(QStringLiteral("正在检查文件..."));
    onDisk(
        this, choice.paths, [choice] { return describeChoice(choice); },
        choice_.only([this, choice, orderId, unreadable](const FileChoiceResult &result) {
            overlay_->hideOverlay();
            if (result.unreadable.isEmpty() || unreadable == Unreadable::Accepted) {
                add(orderId, choice, result);
                return;
            }
            ConfirmDialog::ask(
                window_, BoxText(chosenfiles::unreadableHeading(), result.unreadable),
                ConfirmDialog::Enter::Cancels, [this, orderId, choice, result](bool confirmed) {
                    if (confirmed)
                        add(orderId, choice, result);
                });
        }));
}

void tffilechooser::add(const OrderIdentity &orderId, const FileChoice &choice,
                        const FileChoiceResult &result)
{
    const int row = orders_->rowOf(orderId);
    if (choice.photoMode != orders_->photoMode() || !mayChange_(row))
        return;
    const QVector<SourceFile> &listed = orders_->files(row);
    if (!haveSamePaths(listed, choice.listed)) {
        // Other files were added meanwhile: these may be the same, or stand in their way.
        FileChoice again = choice;
        again.listed = listed;
        describe(orderId, again, Unreadable::Accepted);
        return;
    }
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
