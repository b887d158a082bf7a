#include "photoimport/imported/confirmedphotodeletion.h"

#include "photoimport/orders/tforderlistmodel.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"
#include "widgets/windows/loadingoverlay.h"

#include <utility>

ConfirmedPhotoDeletion::ConfirmedPhotoDeletion(QWidget *window, tforderlistmodel *orders,
                                               LoadingOverlay *overlay,
                                               std::function<bool(int row)> mayChange)
    : QObject(window)
    , window_(window)
    , orders_(orders)
    , overlay_(overlay)
    , mayChange_(std::move(mayChange))
{
    connect(&deletion_, &PhotoDeletion::selectedPhotosDeleted, this,
            &ConfirmedPhotoDeletion::onPhotosDeleted);
    connect(&deletion_, &PhotoDeletion::unanswered, this, &ConfirmedPhotoDeletion::onUnanswered);
    connect(&deletion_, &PhotoDeletion::refused, this, &ConfirmedPhotoDeletion::onRefused);
    connect(&deletion_, &PhotoDeletion::removed, this, &ConfirmedPhotoDeletion::removed);
}

void ConfirmedPhotoDeletion::deletePhotos(int row, const QVector<PanelPhoto> &photos,
                                          const orderqueries::Identity &identity)
{
    if (!mayChange_(row))
        return;
    if (isActive()) {
        Toast::show(window_, QStringLiteral("正在删除，请稍候"));
        return;
    }
    QStringList ids;
    QStringList names;
    for (const PanelPhoto &photo : photos) {
        if (photo.serviceId.isEmpty())
            continue;
        ids.append(photo.serviceId);
        names.append(photo.name);
    }
    if (ids.isEmpty()) {
        Toast::show(window_, QStringLiteral("请选择要删除的已导入照片"));
        return;
    }
    const DeletionRequest request =
        deletionOf(orders_->order(row), ids, names, orders_->photoMode());
    ConfirmDialog::ask(window_,
                       BoxText(QStringLiteral("确认要删除选中的 %1 个文件吗？\n"
                                              "服务和磁盘上的文件都会删除，不能恢复。")
                                   .arg(ids.size()))
                           .endangering(QMessageBox::Ok, QStringLiteral("删除")),
                       ConfirmDialog::Enter::Cancels, [this, request, identity](bool agreed) {
                           if (agreed)
                               start(request, identity);
                       });
}

void ConfirmedPhotoDeletion::start(const DeletionRequest &request,
                                   const orderqueries::Identity &identity)
{
    // Meanwhile the list may have become another one.
    if (isActive() || !mayChange_(orders_->rowOf(request.orderId)))
        return;
    overlay_->showText(QStringLiteral("正在删除..."));
    emit asking();
    deletion_.start(request, identity);
}

bool ConfirmedPhotoDeletion::cancel()
{
    return deletion_.cancel();
}

void ConfirmedPhotoDeletion::onPhotosDeleted(const DeletionRequest &deleted)
{
    overlay_->hideOverlay();
    orders_->forgetDeleted(orders_->rowOf(deleted.orderId), deleted.ids, deleted.names);
    emit answered(deleted.orderId);
    Toast::show(window_, QStringLiteral("删除成功"));
}

QString ConfirmedPhotoDeletion::closingQuestion()
{
    return QStringLiteral("正在删除已导入的照片，关闭后会继续删除，"
                          "服务端不再响应时放弃并列出照片，确认要关闭吗？");
}

/// What may be left on disk without the service knowing must not be lost with the window.
void ConfirmedPhotoDeletion::onUnanswered(const DeletionRequest &request)
{
    overlay_->hideOverlay();
    const QString heading =
        QStringLiteral("订单 %1 的删除请求没有得到答复，服务端是否已经删除尚不确定。\n"
                       "磁盘上的文件没有删除。请重新搜索订单，核对以下照片：")
            .arg(request.orderName);
    MessageBox::warning(window_->isVisible() ? window_ : nullptr,
                        BoxText(heading, request.names).copyable());
    emit unanswered(request.orderId);
}

void ConfirmedPhotoDeletion::onRefused(const DeletionRequest &request, const ServiceReply &reply)
{
    overlay_->hideOverlay();
    const bool closed = !window_->isVisible();
    emit answered(request.orderId);
    if (!closed)
        showServiceFailure(window_, reply, reply.message);
}
