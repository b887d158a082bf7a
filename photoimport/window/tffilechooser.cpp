#include "photoimport/window/tffilechooser.h"

#include "files/chosenfiles.h"
#include "marks/window/clashquestion.h"
#include "photoimport/orders/photomarks.h"
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

FileChoiceResult withoutLaterOnes(FileChoiceResult result)
{
    const QSet<QString> later = renaming::laterOnes(result.clashes);
    const auto isLater = [&later](const SourceFile &file) { return later.contains(file.path); };
    result.files.erase(std::remove_if(result.files.begin(), result.files.end(), isLater),
                       result.files.end());
    result.clashes.clear();
    return result;
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
        askAboutClashes(orderId, choice, result);
        return;
    }
    if (!result.ignored.isEmpty())
        MessageBox::information(window_, chosenfiles::ignoredNotice(result.ignored));
    if (result.repeated > 0)
        Toast::show(window_, QStringLiteral("%1 个文件已在列表中").arg(result.repeated));
    setFiles(row, listed + result.files);
}

void tffilechooser::setFiles(int row, const QVector<SourceFile> &files)
{
    orders_->setFiles(row, files);
    emit filesChanged(orders_->order(row).identity());
}

void tffilechooser::askAboutClashes(const OrderIdentity &orderId, const FileChoice &choice,
                                    const FileChoiceResult &result)
{
    ::askAboutClashes(window_, chosenfiles::sameTargetNotice(result.clashes),
                      [this, orderId, choice, result](QMessageBox::StandardButton answer) {
                          if (answer == QMessageBox::Yes)
                              addRenamed(orderId, choice, result);
                          else if (answer == QMessageBox::No)
                              add(orderId, choice, withoutLaterOnes(result));
                      });
}

/// All but the first of the files that share a target get other names.
void tffilechooser::addRenamed(const OrderIdentity &orderId, const FileChoice &choice,
                               const FileChoiceResult &result)
{
    const int row = orders_->rowOf(orderId);
    if (choice.photoMode != orders_->photoMode() || !mayChange_(row))
        return;
    const QVector<SourceFile> all = choice.listed + result.files;
    const marks::RenameRequest request{
        orderId, photomarks::renamable(all), renaming::laterOnes(result.clashes),
        photomarks::foldersOf(orders_->order(row), choice.photoMode)};
    findNames({request}, [this, orderId, choice, all](const marks::NewNames &found) {
        const int now = orders_->rowOf(orderId);
        if (choice.photoMode != orders_->photoMode() || !mayChange_(now))
            return;
        if (haveSamePaths(orders_->files(now), choice.listed))
            setFiles(now, photomarks::renamed(all, found.names.value(orderId)));
        else
            take(now, choice.paths, choice.expand); // others came meanwhile
    });
}

void tffilechooser::leaveOut(const QHash<OrderIdentity, QSet<QString>> &sources)
{
    for (auto order = sources.cbegin(); order != sources.cend(); ++order) {
        const int row = orders_->rowOf(order.key());
        if (!mayChange_(row))
            return;
        orders_->removeFiles(row, photomarks::unfinishedAmong(orders_->files(row), order.value()));
        emit filesChanged(order.key());
    }
}

void tffilechooser::rename(const QHash<OrderIdentity, QSet<QString>> &sources)
{
    const PhotoMode mode = orders_->photoMode();
    QVector<marks::RenameRequest> requests;
    for (auto order = sources.cbegin(); order != sources.cend(); ++order) {
        const int row = orders_->rowOf(order.key());
        if (!mayChange_(row))
            return;
        requests.append({order.key(), photomarks::renamable(orders_->files(row)), order.value(),
                         photomarks::foldersOf(orders_->order(row), mode)});
    }
    findNames(requests, [this, mode, requests](const marks::NewNames &found) {
        for (const marks::RenameRequest &request : requests) {
            const int row = orders_->rowOf(request.order);
            // What was chosen meanwhile may have the new names.
            if (mode == orders_->photoMode() && mayChange_(row) &&
                photomarks::renamable(orders_->files(row)) == request.files)
                setFiles(row, photomarks::renamed(orders_->files(row),
                                                  found.names.value(request.order)));
        }
    });
}

void tffilechooser::findNames(const QVector<marks::RenameRequest> &requests,
                              std::function<void(const marks::NewNames &)> then)
{
    QStringList folders;
    for (const marks::RenameRequest &request : requests)
        folders += request.folders;
    overlay_->showText(QStringLiteral("正在检查文件..."));
    onDisk(
        this, folders, [requests] { return marks::findNewNames(requests); },
        choice_.only([this, then = std::move(then)](const marks::NewNames &found) {
            overlay_->hideOverlay();
            if (found.unreadable.isEmpty())
                then(found);
            else
                MessageBox::warning(window_, marks::unreadableText(found.unreadable));
        }));
}
