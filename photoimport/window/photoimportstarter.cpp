#include "photoimport/window/photoimportstarter.h"

#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/run/photoimportrun.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"

#include <numeric>
#include <utility>

PhotoImportStarter::PhotoImportStarter(QWidget *window, tforderlistmodel *orders,
                                       PhotoImportRun *run, Ways ways)
    : QObject(window), window_(window), orders_(orders), run_(run), ways_(std::move(ways))
{
}

void PhotoImportStarter::startOrder(int row)
{
    if (!ways_.mayChange(row))
        return;
    const QString nothing =
        photoorders::nothingToImport({orders_->order(row)}, orders_->photoMode());
    if (nothing.isEmpty())
        start({row});
    else
        Toast::show(window_, nothing);
}

void PhotoImportStarter::startAll()
{
    QVector<int> rows;
    for (int row = 0; row < orders_->orders().size(); ++row) {
        const FilesSummary &summary = orders_->order(row).summary(orders_->photoMode());
        if (summary.complete < summary.files)
            rows.append(row);
    }
    if (rows.isEmpty())
        MessageBox::warning(window_,
                            photoorders::nothingToImport(orders_->orders(), orders_->photoMode()));
    else
        start(rows);
}

void PhotoImportStarter::retry(int row, const QSet<int> &indexes)
{
    if (!ways_.mayChange(row))
        return;
    const FilesToRetry files = filesToRetry(orders_->files(row), indexes);
    if (files.failed.isEmpty() && files.unregistered.isEmpty() &&
        orders_->order(row).folderRefusal.isEmpty()) {
        Toast::show(window_, QStringLiteral("没有失败的文件"));
        return;
    }
    if (run_->registerAgain(row, files.unregistered, ways_.identity()) && !files.failed.isEmpty())
        start({row}, files.failed);
}

void PhotoImportStarter::retryAll()
{
    QVector<int> rows(orders_->orders().size());
    std::iota(rows.begin(), rows.end(), 0);
    retryOrders(rows);
}

void PhotoImportStarter::retryOrders(const QVector<int> &rows)
{
    QVector<int> failed;
    for (const int row : rows) {
        const FilesToRetry files = filesToRetry(orders_->files(row), {});
        if (run_->isQueuedOrActive(row) ||
            !run_->registerAgain(row, files.unregistered, ways_.identity()))
            continue;
        if (!files.failed.isEmpty())
            failed.append(row);
    }
    if (!failed.isEmpty())
        start(failed);
}

/// \a indexes: files of the one row; all of every row when empty.
void PhotoImportStarter::start(const QVector<int> &rows, const QVector<int> &indexes)
{
    const QString question = photoorders::sharedFoldersQuestion(orders_->orders(), rows);
    QVector<OrderIdentity> ids;
    for (const int row : rows)
        ids.append(orders_->order(row).identity());
    if (question.isEmpty()) {
        startOrders(ids, indexes);
        return;
    }
    ConfirmDialog::ask(window_, question, ConfirmDialog::Enter::Cancels,
                       [this, ids, indexes](bool agreed) {
                           if (agreed)
                               startOrders(ids, indexes);
                       });
}

/// Those that are still listed.
void PhotoImportStarter::startOrders(const QVector<OrderIdentity> &ids, const QVector<int> &indexes)
{
    QVector<int> present;
    for (const OrderIdentity &id : ids) {
        const int row = orders_->rowOf(id);
        if (row >= 0 && !run_->isQueuedOrActive(row))
            present.append(row);
    }
    if (present.isEmpty())
        return;
    if (!run_->isImporting())
        emit beginning();
    if (run_->start(present, indexes, ways_.identity()))
        emit started();
    else
        Toast::show(window_, QStringLiteral("正在准备导片，请稍候"));
}
