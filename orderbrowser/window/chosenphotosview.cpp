#include "orderbrowser/window/chosenphotosview.h"

#include "orderbrowser/rules/chosenphotos.h"
#include "thumbnails/thumbnailtableview.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QBoxLayout>

namespace {

/// Whoever goes down the list with the arrow key asks for nothing on the way.
constexpr int momentMs = 250;

} // namespace

ChosenPhotosView::ChosenPhotosView(QWidget *parent)
    : QWidget(parent)
    , heading_(new PlainLabel(this))
    , grid_(new ThumbnailTableView(this))
    , call_(this)
{
    heading_->setObjectName(QStringLiteral("chosenHeading"));
    grid_->setObjectName(QStringLiteral("chosenGrid"));
    grid_->setReadOnly();
    grid_->setAccessibleName(QStringLiteral("已选照片"));
    moment_.setSingleShot(true);
    moment_.setInterval(momentMs);
    connect(&moment_, &QTimer::timeout, this, &ChosenPhotosView::ask);
    connect(grid_, &ThumbnailTableView::stopped, this, &ChosenPhotosView::stopped);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addWidget(heading_);
    layout->addWidget(grid_, 1);
}

void ChosenPhotosView::showOrder(const BrowsedOrder *order, const orderqueries::Identity &who)
{
    call_.cancel();
    moment_.stop();
    who_ = who;
    photoSet_ = order ? order->identity.orderPhotoId : QString();
    heading_->setText(QStringLiteral("已选照片"));
    grid_->setEntries({});
    const bool hasNone =
        order && order->values.value(orderfields::Chosen).trimmed() == QLatin1String("0");
    if (photoSet_.isEmpty() || hasNone) {
        grid_->setEmptyText(order ? QStringLiteral("该订单没有已选照片") : QString());
        return;
    }
    grid_->setEmptyText(QStringLiteral("加载中..."));
    moment_.start();
}

void ChosenPhotosView::ask()
{
    call_.start(
        chosenphotos::action, chosenphotos::body(photoSet_, who_),
        [this](const ServiceReply &reply) { showReply(reply); },
        [](const QJsonObject &reply) { return std::any(chosenphotos::read(reply)); });
}

void ChosenPhotosView::showReply(const ServiceReply &reply)
{
    if (!reply.isSuccess()) {
        grid_->setEmptyText(reply.message.isEmpty() ? QStringLiteral("加载失败") : reply.message);
        return;
    }
    const auto photos = std::any_cast<QVector<PhotoEntry>>(reply.made);
    heading_->setText(QStringLiteral("已选照片 %1 张").arg(photos.size()));
    grid_->setEmptyText(QStringLiteral("该订单没有已选照片"));
    grid_->setEntries(photos);
}

void ChosenPhotosView::stop()
{
    call_.cancel();
    moment_.stop();
    grid_->stop();
}

bool ChosenPhotosView::isStopped() const
{
    return grid_->isStopped();
}
