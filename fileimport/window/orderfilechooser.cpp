#include "fileimport/window/orderfilechooser.h"

#include "fileimport/rules/importchoices.h"
#include "fileimport/rules/importrules.h"
#include "fileimport/window/importordertablemodel.h"
#include "files/pathgate.h"
#include "marks/window/clashquestion.h"
#include "tasks/background.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/windows/loadingoverlay.h"

namespace {

QString checkingText()
{
    return QStringLiteral("正在检查文件...");
}

} // namespace

OrderFileChooser::OrderFileChooser(QWidget *window, ImportOrderTableModel *orders,
                                   std::function<bool(int row)> mayChange)
    : QObject(window)
    , window_(window)
    , orders_(orders)
    , mayChange_(std::move(mayChange))
    , overlay_(new LoadingOverlay(window))
{
    connect(overlay_, &LoadingOverlay::cancelled, this, &OrderFileChooser::cancel);
}

void OrderFileChooser::cancel()
{
    look_.abandon();
    overlay_->hideOverlay();
}

bool OrderFileChooser::isBusy() const
{
    return overlay_->isVisible();
}

bool OrderFileChooser::mayChoose(int row)
{
    if (isBusy() || !mayChange_(row) || !orders_->hasRow(row))
        return false;
    const ImportOrder &order = orders_->order(row);
    const pathgate::Refusal refusal =
        pathgate::refusalOfImport(order.displayName(), order.importPath, order.importPublicPath);
    if (refusal.isRefused()) {
        MessageBox::warning(window_, refusal.text());
        return false;
    }
    if (importrules::hasFolder(order))
        return true;
    MessageBox::information(
        window_, order.displayName() +
                     QStringLiteral(" 没有设置本地云导片路径, 请在后台设置本地云导片路径！"));
    return false;
}

int OrderFileChooser::rowOf(const Choice &choice) const
{
    const int row = orders_->rowOf(choice.orderId);
    return row >= 0 && mayChange_(row) ? row : -1;
}

void OrderFileChooser::choose(int row)
{
    if (!mayChoose(row))
        return;
    // While the dialog stands a search may end and put another order into this row.
    const OrderIdentity orderId = orders_->order(row).identity();
    const QStringList paths =
        FileDialog::openFiles(window_, QStringLiteral("选择要导入的文件"),
                              importrules::dialogFilter(mode_), QStringLiteral("import"));
    if (!paths.isEmpty())
        askAboutSharedFolder({orderId, paths, false});
}

void OrderFileChooser::take(int row, const QStringList &paths)
{
    if (!mayChoose(row))
        return;
    overlay_->showText(checkingText());
    onDisk(
        this, paths,
        [paths, filter = importrules::dialogFilter(mode_)] {
            return chosenfiles::expandDrop(paths, filter);
        },
        look_.only([this, orderId = orders_->order(row).identity()](
                       const chosenfiles::DropContents &contents) {
            overlay_->hideOverlay();
            onExpanded(orderId, contents);
        }));
}

void OrderFileChooser::onExpanded(const OrderIdentity &orderId,
                                  const chosenfiles::DropContents &contents)
{
    if (contents.unreadable.isEmpty()) {
        takeExpanded(orderId, contents);
        return;
    }
    ask(BoxText(chosenfiles::unreadableHeading(), contents.unreadable),
        ConfirmDialog::Enter::Cancels,
        [this, orderId, contents] { takeExpanded(orderId, contents); });
}

void OrderFileChooser::takeExpanded(const OrderIdentity &orderId,
                                    const chosenfiles::DropContents &contents)
{
    QStringList notices;
    if (contents.files.isEmpty())
        notices.append(QStringLiteral("没有可以导入的文件，已选的文件保持不变。"));
    if (!contents.ignored.isEmpty())
        notices.append(chosenfiles::ignoredNotice(contents.ignored));
    if (!notices.isEmpty())
        MessageBox::information(window_, notices.join(QLatin1Char('\n')));
    if (contents.files.isEmpty())
        return;
    askAboutSharedFolder({orderId, contents.files, true});
}

void OrderFileChooser::askAboutSharedFolder(const Choice &choice)
{
    const int row = rowOf(choice);
    if (row < 0)
        return;
    const QVector<int> others = importrules::ordersSharingFolder(orders_->orders(), row);
    if (others.isEmpty()) {
        askAboutReplacing(choice);
        return;
    }
    QString text =
        QStringLiteral("下列订单的导片目录相同，照片会放进同一个文件夹，确认要继续吗？\n%1\n\n%2")
            .arg(importrules::importPathOf(orders_->order(row)), orders_->order(row).displayName());
    for (const int other : others)
        text += QLatin1Char('\n') + orders_->order(other).displayName();
    ask(text, ConfirmDialog::Enter::Cancels, [this, choice] { askAboutReplacing(choice); });
}

void OrderFileChooser::askAboutReplacing(const Choice &choice)
{
    const int row = rowOf(choice);
    if (row < 0)
        return;
    const int lost =
        choice.adds ? 0 : importrules::unimportedWithout(orders_->order(row).files, choice.paths);
    if (lost == 0) {
        prepare(choice);
        return;
    }
    ask(QStringLiteral("%1 还有 %2 个已选的文件没有导入，重新选择后它们不再导入，确认要继续吗？\n"
                       "要保留它们，请把新的文件拖到订单上。")
            .arg(orders_->order(row).displayName())
            .arg(lost),
        ConfirmDialog::Enter::Cancels, [this, choice] { prepare(choice); });
}

void OrderFileChooser::prepare(const Choice &choice)
{
    const int row = rowOf(choice);
    if (row < 0)
        return;
    if (!choice.adds)
        setFiles(row, {});
    orders_->change(
        row, [](ImportOrder &order) { order.importPath = importrules::importPathOf(order); });
    const ImportOrder &order = orders_->order(row);
    const ChoiceRequest request{mode_, order.importPath, row, choice.paths, order.files};
    overlay_->showText(checkingText());
    onDisk(
        this, choice.paths + QStringList(order.importPath),
        [request] { return prepareChoice(request); },
        look_.only([this, choice, known = order.files](const ChoiceResult &result) {
            overlay_->hideOverlay();
            onPrepared(choice, known, result);
        }));
}

void OrderFileChooser::onPrepared(const Choice &choice, const QVector<ImportFile> &known,
                                  const ChoiceResult &result)
{
    if (!result.folderError.isEmpty()) {
        MessageBox::warning(window_, result.folderError);
        return;
    }
    if (!result.clashes.isEmpty()) {
        askAboutClashes(choice, known, result);
        return;
    }
    if (result.files.isEmpty()) {
        Toast::show(window_, QStringLiteral("这些文件已经在列表中"));
        return;
    }
    judgeNames(choice, known, known + result.files);
}

/// \a all: the files that the order is to have, those that are \a known to it first.
void OrderFileChooser::judgeNames(const Choice &choice, const QVector<ImportFile> &known,
                                  const QVector<ImportFile> &all)
{
    const int row = rowOf(choice);
    if (row < 0)
        return;
    QStringList unchosen;
    if (mode_ == ImportMode::Retouched && !choice.namesAgreed)
        unchosen =
            importrules::unchosenNames(all.mid(known.size()), orders_->order(row).selectedNames);
    if (unchosen.isEmpty()) {
        add(choice, known, all);
        return;
    }
    ask(importrules::unchosenQuestion(unchosen), ConfirmDialog::Enter::Confirms,
        [this, choice, known, all] { add(choice, known, all); });
}

void OrderFileChooser::askAboutClashes(const Choice &choice, const QVector<ImportFile> &known,
                                       const ChoiceResult &result)
{
    const BoxText notice = chosenfiles::sameTargetNotice(result.clashes);
    if (mode_ == ImportMode::Retouched) {
        MessageBox::warning(window_, notice); // their names are the customer's choice
        return;
    }
    ::askAboutClashes(
        window_, notice, [this, choice, known, result](QMessageBox::StandardButton answer) {
            if (answer == QMessageBox::Yes)
                addRenamed(choice, known, result);
            else if (answer == QMessageBox::No)
                judgeNames(choice, known,
                           importchoices::without(known + result.files,
                                                  renaming::laterOnes(result.clashes)));
        });
}

/// All but the first of the files that share a target get other names.
void OrderFileChooser::addRenamed(const Choice &choice, const QVector<ImportFile> &known,
                                  const ChoiceResult &result)
{
    const int row = rowOf(choice);
    if (row < 0)
        return;
    const QVector<ImportFile> all = known + result.files;
    const marks::RenameRequest request{choice.orderId, importchoices::renamable(all),
                                       renaming::laterOnes(result.clashes),
                                       importchoices::foldersOf(orders_->order(row), mode_)};
    overlay_->showText(checkingText());
    onDisk(
        this, request.folders, [request] { return marks::findNewNames({request}); },
        look_.only([this, choice, known, all](const marks::NewNames &found) {
            overlay_->hideOverlay();
            if (found.unreadable.isEmpty())
                judgeNames(choice, known,
                           importchoices::renamed(all, found.names.value(choice.orderId)));
            else
                MessageBox::warning(window_, marks::unreadableText(found.unreadable));
        }));
}

void OrderFileChooser::leaveOut(const QHash<OrderIdentity, QSet<QString>> &sources)
{
    for (auto order = sources.cbegin(); order != sources.cend(); ++order) {
        const int row = orders_->rowOf(order.key());
        if (isBusy() || row < 0 || !mayChange_(row))
            return;
        setFiles(row, importchoices::without(orders_->order(row).files, order.value()));
    }
}

void OrderFileChooser::rename(const QHash<OrderIdentity, QSet<QString>> &sources)
{
    QVector<marks::RenameRequest> requests;
    QStringList folders;
    for (auto order = sources.cbegin(); order != sources.cend(); ++order) {
        const int row = orders_->rowOf(order.key());
        if (isBusy() || row < 0 || !mayChange_(row))
            return;
        requests.append({order.key(), importchoices::renamable(orders_->order(row).files),
                         order.value(), importchoices::foldersOf(orders_->order(row), mode_)});
        folders += requests.last().folders;
    }
    overlay_->showText(checkingText());
    onDisk(
        this, folders, [requests] { return marks::findNewNames(requests); },
        look_.only([this, requests](const marks::NewNames &found) {
            overlay_->hideOverlay();
            applyNames(requests, found);
        }));
}

void OrderFileChooser::applyNames(const QVector<marks::RenameRequest> &requests,
                                  const marks::NewNames &found)
{
    if (!found.unreadable.isEmpty()) {
        MessageBox::warning(window_, marks::unreadableText(found.unreadable));
        return;
    }
    for (const marks::RenameRequest &request : requests) {
        const int row = orders_->rowOf(request.order);
        // What was chosen meanwhile may have the new names.
        if (row < 0 || !mayChange_(row) ||
            !(importchoices::renamable(orders_->order(row).files) == request.files))
            continue;
        setFiles(row, importchoices::renamed(orders_->order(row).files,
                                             found.names.value(request.order)));
    }
}

/// \a all were judged when the order had the \a known ones.
void OrderFileChooser::add(Choice choice, const QVector<ImportFile> &known,
                           const QVector<ImportFile> &all)
{
    const int row = rowOf(choice);
    if (row < 0)
        return;
    const QVector<ImportFile> &listed = orders_->order(row).files;
    const bool isSame = std::equal(listed.cbegin(), listed.cend(), known.cbegin(), known.cend(),
                                   [](const ImportFile &one, const ImportFile &other) {
                                       return one.sourcePath == other.sourcePath;
                                   });
    if (isSame) {
        setFiles(row, all);
        return;
    }
    // Others came while the question stood: they stay, and the new ones are judged again.
    choice.adds = true;
    choice.namesAgreed = true;
    prepare(choice);
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

void OrderFileChooser::ask(const BoxText &text, ConfirmDialog::Enter enter,
                           const std::function<void()> &onYes) const
{
    ConfirmDialog::ask(window_, text, enter, [onYes](bool confirmed) {
        if (confirmed)
            onYes();
    });
}
