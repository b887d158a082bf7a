#include "fileimport/imported/originalview.h"

#include "fileimport/rules/importrules.h"
#include "look/colours.h"
#include "net/orderfiles.h"
#include "tasks/background.h"
#include "thumbnails/thumbnailtableview.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/folderaction.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"

#include <QAction>
#include <QDateTime>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace {

constexpr int resultMs = 1500;

/// A line that ends in "…" where it does not fit; the whole of it is the tool tip.
class TitleLabel : public PlainLabel
{
public:
    TitleLabel() { setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        const QString line = fontMetrics().elidedText(text(), Qt::ElideRight, width());
        style()->drawItemText(&painter, rect(), Qt::AlignVCenter | Qt::AlignLeft, palette(), true,
                              line, foregroundRole());
    }
};

QString refreshingText()
{
    return QStringLiteral("正在刷新中...");
}

QString titleStyle()
{
    return QStringLiteral("QLabel {font-size: ") + QString::number(theme::textSize()) +
           QStringLiteral("px;    font-weight: 600;    color: #333333;    padding: 5px 0;}");
}

} // namespace

OriginalView::OriginalView(QWidget *parent)
    : QWidget(parent)
    , listing_(this)
    , title_(new TitleLabel)
    , count_(new PlainLabel)
    , grid_(new ThumbnailTableView)
    , overlay_(new LoadingOverlay(this))
{
    build();
    connect(refreshButton_, &QPushButton::clicked, this, &OriginalView::refresh);
    connect(selectAllButton_, &QPushButton::clicked, grid_, &ThumbnailTableView::selectAll);
    connect(clearButton_, &QPushButton::clicked, grid_, &ThumbnailTableView::clearSelection);
    connect(deleteButton_, &QPushButton::clicked, this, &OriginalView::deleteSelected);
    connect(grid_, &ThumbnailTableView::selectedCountChanged, this, &OriginalView::showCount);
    connect(overlay_, &LoadingOverlay::cancelled, this,
            [this] { ready_ ? abandonListing() : cancelDeletion(); });
    connect(&deletion_, &OriginalDeletion::progressed, this, [this](int done, int total) {
        const QString text = QStringLiteral("正在删除 %1/%2...").arg(done).arg(total);
        if (done == 0)
            overlay_->showText(text, false);
        else
            overlay_->setText(text);
        overlay_->setProgress(done, total);
    });
    connect(&deletion_, &OriginalDeletion::submitFailed, this, &OriginalView::onSubmitFailed);
    connect(&deletion_, &OriginalDeletion::unanswered, this, &OriginalView::onUnanswered);
    connect(&deletion_, &OriginalDeletion::finished, this, &OriginalView::onDeleted);
    connect(&deletion_, &OriginalDeletion::ended, this, &OriginalView::onDeletionEnded);
    connect(grid_, &ThumbnailTableView::stopped, this, &OriginalView::tellWhenStopped);
    setOrder({});
}

OriginalView::~OriginalView()
{
    // The grid goes after this object's own members.
    disconnect(grid_, nullptr, this, nullptr);
    grid_->stop();
}

void OriginalView::build()
{
    title_->setObjectName(QStringLiteral("photoTitle"));
    title_->setStyleSheet(titleStyle());
    count_->setObjectName(QStringLiteral("photoCount"));
    grid_->setObjectName(QStringLiteral("photoGrid"));

    refreshButton_ =
        addButton(QStringLiteral("刷新"), "refreshPhotosButton", theme::secondaryButtonStyle());
    selectAllButton_ =
        addButton(QStringLiteral("全选"), "selectAllPhotosButton", theme::secondaryButtonStyle());
    clearButton_ =
        addButton(QStringLiteral("取消全选"), "clearPhotosButton", theme::secondaryButtonStyle());
    deleteButton_ = addButton(QStringLiteral("删除"), "deletePhotosButton",
                              theme::buttonStyle(colours::clearAction, colours::clearActionHover));
    auto *head = new QHBoxLayout;
    head->addWidget(title_, 1);
    head->addWidget(count_);
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(theme::spacing());
    for (QPushButton *button : {refreshButton_, selectAllButton_, clearButton_})
        buttons->addWidget(button);
    buttons->addStretch(1);
    buttons->addWidget(deleteButton_);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    layout->setSpacing(theme::spacing());
    layout->addLayout(head);
    layout->addLayout(buttons);
    layout->addWidget(grid_, 1);

    const auto addKey = [this](const QString &text, const QKeySequence &key, auto slot) {
        auto *action = new QAction(text, this);
        action->setShortcut(key);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, slot);
        addAction(action);
    };
    addKey(QStringLiteral("刷新照片"), Qt::Key_F5, &OriginalView::refresh);
    addKey(QStringLiteral("删除选中的照片"), Qt::Key_Delete, &OriginalView::deleteSelected);
}

QPushButton *OriginalView::addButton(const QString &text, const char *name, const QString &style)
{
    auto *button = new QPushButton(text, this);
    button->setObjectName(QLatin1String(name));
    button->setStyleSheet(style);
    return button;
}

void OriginalView::setOrder(const originalrequests::OrderMap &order)
{
    order_ = order;
    const bool hasOrder = !order.isEmpty();
    title_->setText(hasOrder ? originalrequests::title(order) : QStringLiteral("已导入照片"));
    setPlainTip(title_, hasOrder ? title_->text() : QString());
    for (QPushButton *button : {selectAllButton_, clearButton_, deleteButton_})
        button->setVisible(originalrequests::mayDelete(order));
    refreshButton_->setEnabled(hasOrder);
    abandonListing();
    showEmpty(hasOrder ? refreshingText() : QStringLiteral("请在左侧选择订单"));
    requestListing();
}

// Listing.

void OriginalView::refresh()
{
    if (!ready_ || order_.isEmpty() || stopping_)
        return;
    refreshing_ = true;
    overlay_->showText(refreshingText());
    requestListing();
}

void OriginalView::requestListing()
{
    listingDue_ = !ready_;
    if (!ready_ || order_.isEmpty() || stopping_)
        return;
    reading_.abandon();
    lastTimestamp_ = QString::number(QDateTime::currentMSecsSinceEpoch());
    listing_.start(orderfiles::listAction, originalrequests::listBody(order_, lastTimestamp_),
                   [this](const ServiceReply &reply) { onListing(reply); });
}

void OriginalView::onListing(const ServiceReply &reply)
{
    if (orderfiles::isStale(reply.object, lastTimestamp_)) {
        endRefreshing();
        if (grid_->count() == 0)
            grid_->setEmptyText(QStringLiteral("没有收到最新的照片列表，请刷新"));
        return;
    }
    if (!reply.isSuccess()) {
        endRefreshing();
        if (grid_->count() == 0)
            grid_->setEmptyText(QStringLiteral("照片列表读取失败，请刷新"));
        showServiceFailure(this, reply, reply.message);
        return;
    }
    // Thousands of entries are read elsewhere; the overlay stays until they are.
    onProcessor(
        this, [object = reply.object] { return originalrequests::readListing(object); },
        reading_.only([this](const QVector<PhotoEntry> &entries) { showListing(entries); }));
}

void OriginalView::showListing(const QVector<PhotoEntry> &entries)
{
    endRefreshing();
    grid_->setEmptyText(QStringLiteral("该订单还没有导入照片"));
    grid_->setEntries(entries);
    showCount();
    const auto rawFiles =
        std::count_if(entries.cbegin(), entries.cend(), [](const PhotoEntry &entry) {
            return entry.kind == PhotoEntry::Kind::RawFile;
        });
    emit listed(entries.size() - int(rawFiles), int(rawFiles));
    tellForgotten(entries);
}

void OriginalView::abandonListing()
{
    reading_.abandon();
    listing_.cancel();
    endRefreshing();
    if (grid_->count() == 0)
        grid_->setEmptyText(QStringLiteral("照片列表没有读取，请刷新"));
}

/// The overlay may meanwhile tell of a deletion; then it stays.
void OriginalView::endRefreshing()
{
    if (refreshing_)
        overlay_->hideOverlay();
    refreshing_ = false;
}

void OriginalView::showEmpty(const QString &why)
{
    grid_->setEmptyText(why);
    grid_->setEntries({});
    showCount();
}

void OriginalView::showCount()
{
    const int selected = grid_->selectedIndexes().size();
    QString text;
    if (grid_->count() > 0)
        text = QStringLiteral("共 %1 个").arg(grid_->count());
    if (selected > 0)
        text += QStringLiteral("，已选 %1 个").arg(selected);
    count_->setText(text);
}

// Deleting.

QVector<PhotoEntry> OriginalView::selectedEntries() const
{
    QVector<PhotoEntry> entries;
    const auto indexes = grid_->selectedIndexes();
    for (const int index : indexes)
        entries.append(grid_->entry(index));
    return entries;
}

void OriginalView::deleteSelected()
{
    if (!ready_ || stopping_ || overlay_->isVisible() || !originalrequests::mayDelete(order_))
        return;
    const QVector<PhotoEntry> selected = selectedEntries();
    if (selected.isEmpty()) {
        Toast::show(this, QStringLiteral("请选择要删除的文件..."));
        return;
    }
    const QVector<PhotoEntry> deletable = originalrequests::withId(selected);
    if (deletable.isEmpty()) {
        Toast::show(this, QStringLiteral("没有有效的文件可以删除"));
        return;
    }
    const originalrequests::OrderMap order =
        order_; // another may be shown while the question stands
    ConfirmDialog::ask(
        this,
        BoxText(
            QStringLiteral("确认要删除选中的 %1 个文件吗？\n文件会从服务器和磁盘上删除，不能恢复。")
                .arg(deletable.size()))
            .endangering(QMessageBox::Ok, QStringLiteral("删除")),
        ConfirmDialog::Enter::Cancels, [this, order, deletable](bool agreed) {
            if (agreed && ready_ && !stopping_)
                startDeletion(order, deletable);
        });
}

void OriginalView::startDeletion(const originalrequests::OrderMap &order,
                                 const QVector<PhotoEntry> &deletable)
{
    const auto conflict =
        ordersatwork::claim({originalrequests::identityOf(order)},
                            importrules::toolName(ImportMode::Originals), &claim_);
    if (conflict) {
        MessageBox::warning(
            this, ordersatwork::refusal(originalrequests::numberOf(order), conflict->tool));
        return;
    }
    abandonListing();
    ready_ = false;
    deletedFrom_ = order;
    deleted_ = deletable;
    overlay_->showText(QStringLiteral("提交删除数据中..."));
    deletion_.start(order, deletable, listed_());
}

void OriginalView::cancelDeletion()
{
    overlay_->hideOverlay();
    listingDue_ = true;
    deletion_.cancel();
}

void OriginalView::onSubmitFailed(const ServiceReply &reply)
{
    const bool saysWhy =
        reply.outcome == ServiceReply::Outcome::Refused && !reply.message.isEmpty();
    overlay_->showResult(saysWhy ? reply.message : QStringLiteral("提交数据失败"),
                         LoadingOverlay::Result::Failure, resultMs);
    if (reply.outcome == ServiceReply::Outcome::CertificateRefused && !stopping_)
        showCertificateRefused(this, reply.message);
}

void OriginalView::onUnanswered()
{
    doubts_.add(originalrequests::identityOf(deletedFrom_), deleted_);
    listingDue_ = true;
    QVector<DeleteFileResult> untouched;
    for (const PhotoEntry &entry : qAsConst(deleted_))
        untouched.append({false, {}, entry});
    tellLeft(QStringLiteral("订单 %1 的删除请求没有得到答复，服务端是否已经删除尚不确定。\n"
                            "磁盘上的文件没有删除。请刷新照片列表核对以下照片：")
                 .arg(originalrequests::numberOf(deletedFrom_)),
             untouched, deletedFrom_.value(QStringLiteral("importpath")));
}

void OriginalView::onDeleted(const OriginalDeletionSummary &summary)
{
    doubts_.settle(originalrequests::identityOf(deletedFrom_), deleted_);
    if (summary.succeeded > 0) {
        overlay_->showResult(QStringLiteral("删除完成！"), LoadingOverlay::Result::Success,
                             resultMs);
    } else {
        overlay_->showResult(QStringLiteral("删除失败!"), LoadingOverlay::Result::Failure,
                             resultMs);
    }
    listingDue_ = true;
    if (!summary.left.isEmpty()) {
        tellLeft(QStringLiteral("本地文件删除失败，请检查手动删除以下照片！"), summary.left,
                 deletedFrom_.value(QStringLiteral("importpath")));
    }
}

void OriginalView::onDeletionEnded()
{
    ready_ = true;
    claim_.release();
    if (listingDue_)
        requestListing();
    emit deletionEnded();
    tellWhenStopped();
}

/// An unanswered deletion may have gone through at the service all the same.
void OriginalView::tellForgotten(const QVector<PhotoEntry> &listing)
{
    QVector<DeleteFileResult> forgotten;
    QStringList ids;
    const auto entries = doubts_.takeForgotten(originalrequests::identityOf(order_), listing);
    for (const PhotoEntry &entry : entries) {
        forgotten.append({false, {}, entry});
        ids.append(entry.id);
    }
    if (forgotten.isEmpty())
        return;
    PhotoDeletionRecording::announceForgotten(originalrequests::identityOf(order_), ids);
    tellLeft(QStringLiteral("服务端已经没有以下照片，磁盘上的文件没有删除，请检查手动删除："),
             forgotten, order_.value(QStringLiteral("importpath")));
}

void OriginalView::tellLeft(const QString &heading, const QVector<DeleteFileResult> &left,
                            const QString &importPath)
{
    const BoxText text = BoxText(heading, leftphotos::lines(left)).copyable();
    const QString folder = leftphotos::folderToShow(left, importPath);
    tell(folder.isEmpty() ? text : text.withAction(openFolderAction(folder)));
}

/// What is left on disk must not be lost with the window: its boxes are answered unread when it
/// closes.
void OriginalView::tell(const BoxText &text)
{
    if (stopping_) {
        MessageBox::warning(nullptr, text);
        return;
    }
    unread_.append(text);
    MessageBox::warning(this, text, QMessageBox::Ok, [this](QMessageBox::StandardButton) {
        if (!unread_.isEmpty())
            unread_.removeFirst();
    });
}

QString OriginalView::closingNotice() const
{
    if (!deletion_.isBusy())
        return {};
    return QStringLiteral("正在删除已导入的照片，关闭窗口会停止删除，"
                          "没有删除的文件会留在磁盘上并列出。");
}

void OriginalView::stop()
{
    stopping_ = true;
    abandonListing();
    const auto unread = std::exchange(unread_, {});
    for (const BoxText &text : unread)
        MessageBox::warning(nullptr, text);
    grid_->stop();
    deletion_.stop();
}

bool OriginalView::isStopped() const
{
    return grid_->isStopped() && !deletion_.isBusy();
}

void OriginalView::tellWhenStopped()
{
    if (stopping_ && isStopped())
        emit stopped();
}
