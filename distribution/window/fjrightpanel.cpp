#include "distribution/window/fjrightpanel.h"

#include "app/context/accountcontext.h"
#include "app/context/choices.h"
#include "app/context/k.h"
#include "distribution/ruleeditor/foldernamingrule.h"
#include "distribution/ruleeditor/namingrulepanel.h"
#include "distribution/rules/distributionrequests.h"
#include "distribution/window/tickdelegate.h"
#include "look/colours.h"
#include "tasks/background.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/transferview.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QListView>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QVBoxLayout>

namespace {

constexpr int photoListPx = 130;
const QString directoryKey = QStringLiteral("distributionDirectory");

QLabel *caption(const QString &text, QWidget *parent)
{
    auto *label = new PlainLabel(text, parent);
    label->setStyleSheet(theme::headingStyle());
    label->setIndent(0);
    return label;
}

QVBoxLayout *column(QWidget *widget)
{
    auto *layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    return layout;
}

} // namespace

FJRightPanel::FJRightPanel(QWidget *parent)
    : QWidget(parent)
    , cardLabel_(caption({}, this))
    , searchBar_(new OrderSearchBar(this))
    , directoryButton_(new QPushButton(QStringLiteral("选择分件目录"), this))
    , directoryLabel_(new PlainLabel(this))
    , startButton_(new QPushButton(this))
    , originals_(new CustomCheckBoxNew(QStringLiteral("原始档"), this))
    , fullSize_(new CustomCheckBoxNew(QStringLiteral("原图"), this))
    , basic_(new CustomCheckBoxNew(QStringLiteral("简修"), this))
    , basicWithRejected_(new CustomCheckBoxNew(QStringLiteral("简修含汰片"), this))
    , retouched_(new CustomCheckBoxNew(QStringLiteral("精修"), this))
    , namingPanel_(new NamingRulePanel(this))
{
    setObjectName(QStringLiteral("rightPanel"));
    searchBar_->setStacked();
    searchBar_->setBranches(AccountContext::shopList, orderqueries::Identity::fromAccount().shopId);

    auto *content = new QWidget;
    content->setObjectName(QStringLiteral("rightContent"));
    content->setStyleSheet(theme::sidePanelStyle(content->objectName()));
    auto *parts = new QVBoxLayout(content);
    parts->setContentsMargins(theme::margin(), theme::margin(), theme::margin(), theme::margin());
    parts->setSpacing(theme::margin());
    parts->addWidget(cardLabel_);
    parts->addWidget(searchBar_);
    parts->addWidget(buildRunPart());
    parts->addWidget(options_ = buildOptions());
    parts->addWidget(photoLists_ = buildPhotoLists());
    parts->addWidget(namingPanel_);
    parts->addStretch(1); // all the room that is left; labels would take a share of it
    auto *scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus); // its content has the keyboard, and scrolls with it
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(content);
    scroll->setMinimumWidth(content->minimumSizeHint().width() + theme::scrollBarWidth() +
                            theme::margin());
    column(this)->addWidget(scroll);

    connect(searchBar_, &OrderSearchBar::searchRequested, this,
            &FJRightPanel::onSearchOrderClicked);
    connect(searchBar_, &OrderSearchBar::searchTypeChanged, this,
            &FJRightPanel::onSearchTypeChanged);
    connect(searchBar_, &OrderSearchBar::branchChosen, this,
            [this](int index) { emit shopChange(searchBar_->branchId(index)); });
    connect(directoryButton_, &QPushButton::clicked, this, &FJRightPanel::onChooseDirectoryClicked);
    connect(startButton_, &QPushButton::clicked, this, &FJRightPanel::onStartProcessClicked);
    auto *calendar = new QShortcut(Qt::CTRL + Qt::Key_D, this);
    calendar->setWhatsThis(QStringLiteral("打开日历"));
    connect(calendar, &QShortcut::activated, this, &FJRightPanel::onDateEditClicked);
    for (PhotoList *list : {&undownloaded_, &downloaded_}) {
        connect(&list->model, &PhotoListModel::selectionChanged, this,
                &FJRightPanel::onSelectionChanged);
    }
    showDirectory();
    restoreDirectory();
    setRunning(false);
    setSplitType(type_);
    clearPhotos();
}

FJRightPanel::~FJRightPanel()
{
    // The views outlive the models they show by a moment.
    undownloaded_.view->setModel(nullptr);
    downloaded_.view->setModel(nullptr);
}

QWidget *FJRightPanel::buildRunPart()
{
    auto *part = new QWidget(this);
    directoryButton_->setObjectName(QStringLiteral("directoryButton"));
    directoryButton_->setStyleSheet(theme::secondaryButtonStyle());
    directoryButton_->setMinimumHeight(theme::controlHeight());
    directoryLabel_->setObjectName(QStringLiteral("directoryLabel"));
    directoryLabel_->setMinimumWidth(1); // a long path is elided, not room asked for
    startButton_->setObjectName(QStringLiteral("startButton"));
    startButton_->setMinimumHeight(theme::controlHeight());
    auto *layout = column(part);
    layout->addWidget(directoryButton_);
    layout->addWidget(directoryLabel_);
    layout->addWidget(startButton_);
    return part;
}

QWidget *FJRightPanel::buildOptions()
{
    auto *part = new QWidget(this);
    originals_->setToolTip(QStringLiteral("拍摄原文件和同名的相机原始档"));
    fullSize_->setToolTip(QStringLiteral("客人选中照片的原图"));
    basic_->setToolTip(QStringLiteral("选中照片的简修版本"));
    basicWithRejected_->setToolTip(QStringLiteral("选中照片和汰片的简修版本"));
    retouched_->setToolTip(QStringLiteral("精修完成的照片"));
    auto *grid = new QGridLayout;
    grid->setSpacing(theme::spacing());
    int position = 0;
    for (CustomCheckBoxNew *box : {originals_, fullSize_, basic_, basicWithRejected_, retouched_}) {
        box->setObjectName(QStringLiteral("option") + box->text());
        grid->addWidget(box, position / 3, position % 3);
        ++position;
    }
    auto *layout = column(part);
    layout->addWidget(caption(QStringLiteral("下载目录选项:"), part));
    layout->addLayout(grid);
    return part;
}

QWidget *FJRightPanel::buildPhotoLists()
{
    auto *part = new QWidget(this);
    shownLabel_ = new PlainLabel(part);
    shownLabel_->setObjectName(QStringLiteral("shownOrderLabel"));
    shownLabel_->setMinimumWidth(1);
    auto *lists = new QHBoxLayout;
    lists->setSpacing(theme::spacing());
    lists->addWidget(buildPhotoList(&undownloaded_, QStringLiteral("未下载:  "), "undownload",
                                    &FJRightPanel::onUndownloadSelectAllClicked,
                                    &FJRightPanel::onUndownloadClearAllClicked));
    lists->addWidget(buildPhotoList(&downloaded_, QStringLiteral("已下载:  "), "downloaded",
                                    &FJRightPanel::onDownloadedSelectAllClicked,
                                    &FJRightPanel::onDownloadedClearAllClicked));
    auto *layout = column(part);
    layout->addWidget(shownLabel_);
    layout->addLayout(lists);
    return part;
}

QWidget *FJRightPanel::buildPhotoList(PhotoList *list, const QString &caption, const char *name,
                                      void (FJRightPanel::*selectAll)(),
                                      void (FJRightPanel::*clearAll)())
{
    const QString prefix = QString::fromLatin1(name);
    auto *part = new QWidget(this);
    list->caption = caption;
    list->label = new PlainLabel(part);
    list->label->setObjectName(prefix + QStringLiteral("Label"));
    list->view = new PlainTips<QListView>(part);
    list->view->setObjectName(prefix + QStringLiteral("List"));
    list->view->setAccessibleName(caption);
    list->view->setStyleSheet(theme::listStyle());
    list->view->setModel(&list->model);
    list->view->setItemDelegate(new TickDelegate(list->view));
    list->view->setUniformItemSizes(true);
    list->view->setTextElideMode(Qt::ElideMiddle);
    list->view->setFixedHeight(K::scaledPx(photoListPx));
    list->view->setMinimumWidth(1);
    list->view->setTabKeyNavigation(false);
    auto *all = new QPushButton(QStringLiteral("全选"), part);
    auto *none = new QPushButton(QStringLiteral("取消全选"), part);
    all->setObjectName(prefix + QStringLiteral("SelectAll"));
    none->setObjectName(prefix + QStringLiteral("ClearAll"));
    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(theme::spacing());
    for (QPushButton *button : {all, none}) {
        button->setStyleSheet(theme::secondaryButtonStyle());
        buttons->addWidget(button);
    }
    connect(all, &QPushButton::clicked, this, selectAll);
    connect(none, &QPushButton::clicked, this, clearAll);
    auto *layout = column(part);
    layout->addWidget(list->label);
    layout->addWidget(list->view);
    layout->addLayout(buttons);
    return part;
}

void FJRightPanel::setSplitType(DesignFileSplitTypes type)
{
    type_ = type;
    cardLabel_->setText(cardName(type));
    const DownloadOptions usual = defaultOptions(type);
    originals_->setChecked(usual.originals);
    fullSize_->setChecked(usual.fullSize);
    basic_->setChecked(usual.basic);
    basicWithRejected_->setChecked(usual.basicWithRejected);
    retouched_->setChecked(usual.retouched);
    // What is delivered is told to nobody, and only modes with products name folders for them.
    photoLists_->setVisible(runMode(type) != RunMode::Delivery);
    namingPanel_->setVisible(runMode(type) == RunMode::Products);
}

void FJRightPanel::showBranch(const QString &shopId)
{
    searchBar_->selectBranch(shopId);
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList)) {
        if (shop.id == shopId)
            namingPanel_->editor()->load(shop.goodsfoldernamerule);
    }
}

// Search.

void FJRightPanel::onSearchOrderClicked()
{
    const orderqueries::OrderSearch search = searchBar_->search();
    emit searchRequested(distributionrequests::searchTypeText(search.type),
                         distributionrequests::keywordOf(search));
}

void FJRightPanel::onSearchTypeChanged()
{
    const int type = searchBar_->search().type;
    if (type != orderqueries::OrderSearch::BasicInformation)
        qDebug() << "搜索类型:" << distributionrequests::searchTypeText(type);
}

void FJRightPanel::onDateEditClicked()
{
    searchBar_->openCalendar();
}

void FJRightPanel::onSetSearchBtnStatus(bool enable)
{
    searchBar_->setBusy(!enable);
}

// What is distributed, and where to.

void FJRightPanel::onChooseDirectoryClicked()
{
    const QString folder = FileDialog::existingFolder(this, QStringLiteral("选择分件目录"),
                                                      QStringLiteral("distribution"));
    if (folder.isEmpty())
        return;
    directory_ = folder;
    choices::remember(directoryKey, folder);
    showDirectory();
}

/// The one that was chosen last, if it is still there.
void FJRightPanel::restoreDirectory()
{
    const QString folder = choices::remembered(directoryKey);
    if (folder.isEmpty())
        return;
    onDisk(
        this, folder, [folder] { return QFileInfo(folder).isDir(); },
        [this, folder](bool isThere) {
            if (!isThere || !directory_.isEmpty())
                return;
            directory_ = folder;
            showDirectory();
        });
}

void FJRightPanel::showDirectory()
{
    const QString path = QDir::toNativeSeparators(directory_);
    setPlainTip(directoryLabel_, path);
    directoryLabel_->setText(path.isEmpty()
                                 ? QStringLiteral("未选择目录")
                                 : directoryLabel_->fontMetrics()
                                       .elidedText(path, Qt::ElideMiddle, directoryLabel_->width())
                                       .replace(QChar(0x2026), QStringLiteral("...")));
}

void FJRightPanel::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    showDirectory();
}

DownloadOptions FJRightPanel::options() const
{
    DownloadOptions options;
    options.originals = originals_->isChecked();
    options.fullSize = fullSize_->isChecked();
    options.basic = basic_->isChecked();
    options.basicWithRejected = basicWithRejected_->isChecked();
    options.retouched = retouched_->isChecked();
    return options;
}

QString FJRightPanel::namingRule() const
{
    return namingrule::toText(namingPanel_->editor()->rule());
}

void FJRightPanel::onStartProcessClicked()
{
    if (running_) {
        emit stopProcessRequested();
        return;
    }
    if (directory_.isEmpty()) {
        MessageBox::warning(this, QStringLiteral("请选择分件目录后再点击开始分件按钮"));
        return;
    }
    if (runMode(type_) != RunMode::Products && !options().any()) {
        MessageBox::warning(this, QStringLiteral("请至少勾选一项下载目录选项"));
        return;
    }
    emit startProcessRequested();
}

void FJRightPanel::setRunning(bool running)
{
    running_ = running;
    directoryButton_->setEnabled(!running);
    options_->setEnabled(!running);
    photoLists_->setEnabled(!running);
    namingPanel_->setEnabled(!running);
    const QString locked =
        running ? QStringLiteral("分件进行中，全部完成或停止后才能修改") : QString();
    for (QWidget *part : {static_cast<QWidget *>(directoryButton_), options_, photoLists_})
        setPlainTip(part, locked);
    setPlainTip(namingPanel_, locked);
    if (running)
        showRunButton(startButton_, QStringLiteral("停止分件"), theme::stopButtonStyle());
    else
        showRunButton(startButton_, QStringLiteral("开始分件"),
                      theme::gradientButtonStyle(colours::distributeFrom, colours::distributeTo));
}

// The photos of the order shown.

void FJRightPanel::showPhotos(const OrderIdentity &order, const QString &name,
                              const OrderDetail &detail)
{
    const QSet<QString> leftOut = leftOut_.value(order);
    QVector<ListedPhoto> undownloaded;
    QVector<ListedPhoto> downloaded;
    for (const DetailPhoto &photo : detail.images) {
        QVector<ListedPhoto> &list = photo.downloaded ? downloaded : undownloaded;
        list.append({photo.id, photo.key(), photo.imgName, !leftOut.contains(photo.key())});
    }
    clearPhotos(order, name);
    undownloaded_.model.setPhotos(undownloaded);
    downloaded_.model.setPhotos(downloaded);
    updateCounts();
    namingPanel_->editor()->setPreviewOrder(detail);
}

void FJRightPanel::clearPhotos(const OrderIdentity &order, const QString &name)
{
    shownOrder_ = order;
    shownLabel_->setText(name.isEmpty() ? QStringLiteral("点击订单查看照片下载情况")
                                        : QStringLiteral("照片: ") + name);
    undownloaded_.model.setPhotos({});
    downloaded_.model.setPhotos({});
    if (order.isEmpty())
        leftOut_.clear();
    updateCounts();
    namingPanel_->editor()->setPreviewOrder({});
}

void FJRightPanel::markDownloaded(const OrderIdentity &order, const QString &imageId)
{
    ListedPhoto photo;
    if (order != shownOrder_ || !undownloaded_.model.take(imageId, &photo))
        return;
    downloaded_.model.append(photo);
    updateCounts();
}

void FJRightPanel::updateCounts()
{
    for (const PhotoList *list : {&undownloaded_, &downloaded_}) {
        list->label->setText(list->caption +
                             QStringLiteral("(%1张)  ").arg(list->model.photos().size()));
    }
}

void FJRightPanel::onSelectionChanged()
{
    qDebug().noquote() << "未下载的：" << undownloaded_.model.summary();
    qDebug().noquote() << "已下载的：" << downloaded_.model.summary();
    QSet<QString> leftOut;
    for (const PhotoList *list : {&undownloaded_, &downloaded_}) {
        for (const ListedPhoto &photo : list->model.photos()) {
            if (!photo.selected)
                leftOut.insert(photo.key);
        }
    }
    leftOut_.insert(shownOrder_, leftOut);
    emit downAndUnDownImgSelectedChange();
}

void FJRightPanel::onUndownloadSelectAllClicked()
{
    undownloaded_.model.setAllSelected(true);
}

void FJRightPanel::onUndownloadClearAllClicked()
{
    undownloaded_.model.setAllSelected(false);
}

void FJRightPanel::onDownloadedSelectAllClicked()
{
    downloaded_.model.setAllSelected(true);
}

void FJRightPanel::onDownloadedClearAllClicked()
{
    downloaded_.model.setAllSelected(false);
}
