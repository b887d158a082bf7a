#include "widgets/orders/ordersearchbar.h"

#include "look/colours.h"
#include "widgets/boxes/toast.h"
#include "widgets/inputs/datepicker.h"
#include "widgets/inputs/inputs.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QAction>
#include <QBoxLayout>
#include <QPushButton>
#include <QSignalBlocker>

using orderqueries::OrderSearch;

namespace {

void nameFilter(ComboBox *box, const QString &name)
{
    setPlainTip(box, name);
    box->setAccessibleName(name);
    box->setMinimumWidth(theme::narrowestChoice());
}

int narrowWidth(const ComboBox *box)
{
    return qBound(box->minimumWidth(), box->sizeHint().width(), theme::widestChoice());
}

} // namespace

OrderSearchBar::OrderSearchBar(QWidget *parent)
    : QWidget(parent)
    , searchRow_(new QWidget(this))
    , typeBox_(new ComboBox(this))
    , keywordEdit_(new LineEdit(this))
    , shootingDate_(new DatePicker(QStringLiteral("点击选择拍照日期"), this))
    , selectionDate_(new DatePicker(QStringLiteral("点击选择选片日期"), this))
    , completionDate_(new DatePicker(QStringLiteral("点击选择日期"), this))
    , searchButton_(new QPushButton(this))
    , filterRow_(new QHBoxLayout)
    , branchCaption_(new PlainLabel(this))
    , branchBox_(new ComboBox(this))
    , rows_(new QBoxLayout(QBoxLayout::LeftToRight, this))
    , searchText_(QStringLiteral("搜索"))
{
    typeBox_->setObjectName(QStringLiteral("searchTypeBox"));
    addType(QStringLiteral("基本信息"), OrderSearch::BasicInformation);
    addType(QStringLiteral("拍照日期"), OrderSearch::ShootingDate);
    addType(QStringLiteral("选片日期"), OrderSearch::SelectionDate);
    keywordEdit_->setObjectName(QStringLiteral("keywordEdit"));
    keywordEdit_->setAccessibleName(QStringLiteral("搜索内容"));
    keywordEdit_->setPlaceholderText(QStringLiteral("搜索订单号、姓名、电话..."));
    keywordEdit_->setClearable(true);
    shootingDate_->setObjectName(QStringLiteral("shootingDate"));
    selectionDate_->setObjectName(QStringLiteral("selectionDate"));
    completionDate_->setObjectName(QStringLiteral("completionDate"));
    searchButton_->setObjectName(QStringLiteral("searchButton"));
    searchButton_->setText(searchText_);
    searchButton_->setStyleSheet(theme::primaryButtonStyle());
    branchBox_->setObjectName(QStringLiteral("branchBox"));
    nameFilter(branchBox_, QStringLiteral("分店"));
    branchCaption_->setBuddy(branchBox_);
    branchCaption_->hide();

    auto *label = new PlainLabel(QStringLiteral("搜索类型:"), this);
    label->setBuddy(typeBox_);
    auto *row = new QHBoxLayout(searchRow_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(theme::spacing());
    row->addWidget(label);
    row->addWidget(typeBox_);
    const auto inputs = searchInputs();
    for (QWidget *input : inputs) {
        input->setMinimumWidth(theme::narrowestInput());
        input->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        row->addWidget(input, 1);
    }
    row->addWidget(searchButton_);

    rows_->setContentsMargins(0, 0, 0, 0);
    rows_->setSpacing(theme::spacing());
    rows_->addWidget(searchRow_, 1);
    filterRow_->setSpacing(theme::spacing());
    filterRow_->addWidget(branchCaption_);
    filterRow_->addWidget(branchBox_, 1);
    rows_->addLayout(filterRow_);
    setStyleSheet(theme::windowStyle());
    showInputFor(OrderSearch::BasicInformation);
    connectParts();
    addKeys();
}

void OrderSearchBar::addKeys()
{
    const auto addKey = [this](const QString &text, Qt::Key key, auto act) {
        auto *action = new QAction(text, this);
        action->setShortcut(Qt::CTRL + key);
        connect(action, &QAction::triggered, this, act);
        addAction(action);
    };
    addKey(QStringLiteral("输入要搜索的内容"), Qt::Key_F, [this] {
        const auto inputs = searchInputs();
        for (QWidget *input : inputs) {
            if (input->isVisible())
                input->setFocus(Qt::ShortcutFocusReason);
        }
    });
    addKey(QStringLiteral("选择分店"), Qt::Key_B, [this] {
        if (!branchBox_->isVisible() || !branchBox_->isEnabled())
            return;
        branchBox_->setFocus(Qt::ShortcutFocusReason);
        branchBox_->showPopup();
    });
}

void OrderSearchBar::addType(const QString &name, OrderSearch::Type type)
{
    typeBox_->addItem(name, int(type));
}

int OrderSearchBar::currentType() const
{
    return typeBox_->currentData().toInt();
}

void OrderSearchBar::searchByCompletion(const QString &keywordPrompt)
{
    keywordEdit_->setPlaceholderText(keywordPrompt);
    while (typeBox_->count() > 1)
        typeBox_->removeItem(1);
    addType(QStringLiteral("结单日期"), OrderSearch::CompletionDate);
}

void OrderSearchBar::captionBranches(const QString &text)
{
    branchCaption_->setText(text);
    branchCaption_->show();
    arrange();
}

void OrderSearchBar::connectParts()
{
    connect(typeBox_, qOverload<int>(&QComboBox::currentIndexChanged), this, [this](int index) {
        showInputFor(currentType());
        emit searchTypeChanged(index);
    });
    connect(keywordEdit_, &QLineEdit::returnPressed, this, &OrderSearchBar::requestSearch);
    connect(shootingDate_, &DatePicker::entered, this, &OrderSearchBar::requestSearch);
    connect(selectionDate_, &DatePicker::entered, this, &OrderSearchBar::requestSearch);
    connect(completionDate_, &DatePicker::entered, this, &OrderSearchBar::requestSearch);
    connect(searchButton_, &QPushButton::clicked, this, &OrderSearchBar::requestSearch);
    connect(branchBox_, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        if (index == branchIndex_)
            return;
        branchIndex_ = index;
        emit branchChosen(index);
    });
}

OrderSearch OrderSearchBar::search() const
{
    OrderSearch search;
    search.type = currentType();
    search.text = keywordEdit_->text();
    search.shootingDate = shootingDate_->chosenDate();
    search.selectionDate = selectionDate_->chosenDate();
    search.completionDate = completionDate_->chosenDate();
    return search;
}

void OrderSearchBar::addRangeEnd()
{
    rangeEnd_ = new DatePicker(QStringLiteral("至（可不选）"), this);
    rangeEnd_->setObjectName(QStringLiteral("rangeEnd"));
    rangeEnd_->setMinimumWidth(theme::narrowestInput());
    rangeEnd_->setClearable();
    auto *row = static_cast<QBoxLayout *>(searchRow_->layout());
    row->insertWidget(row->indexOf(searchButton_), rangeEnd_, 1);
    setTabOrder(completionDate_, rangeEnd_);
    connect(rangeEnd_, &DatePicker::entered, this, &OrderSearchBar::requestSearch);
    showInputFor(currentType());
}

QDate OrderSearchBar::rangeEnd() const
{
    return rangeEnd_ && inputFor(currentType()) != keywordEdit_ ? rangeEnd_->chosenDate() : QDate();
}

void OrderSearchBar::showSearch(const OrderSearch &search, const QDate &rangeEnd,
                                const QString &personId)
{
    keywordEdit_->setText(search.text);
    const auto show = [](DatePicker *picker, const QDate &date) {
        if (picker && date.isValid())
            picker->choose(date);
        else if (picker)
            picker->reset();
    };
    show(shootingDate_, search.shootingDate);
    show(selectionDate_, search.selectionDate);
    show(completionDate_, search.completionDate);
    show(rangeEnd_, rangeEnd);
    typeBox_->setCurrentIndex(qMax(0, typeBox_->findData(search.type)));
    personToChoose_ = personId;
}

void OrderSearchBar::showKeyword(const QString &text)
{
    keywordEdit_->setText(text);
    typeBox_->setCurrentIndex(0);
}

void OrderSearchBar::resetKeyword()
{
    showKeyword({});
}

void OrderSearchBar::setBranches(const QList<ShopRecord> &branches, const QString &selectedId)
{
    branchBox_->clear();
    for (const ShopRecord &branch : branches)
        branchBox_->addItem(branch.name, branch.id);
    branchIndex_ = branchBox_->currentIndex();
    selectBranch(selectedId);
    arrange();
}

void OrderSearchBar::selectBranch(const QString &id)
{
    const int index = branchBox_->findData(id);
    if (index < 0)
        return;
    branchIndex_ = index;
    branchBox_->setCurrentIndex(index);
}

QString OrderSearchBar::branchId(int index) const
{
    return branchBox_->itemData(index).toString();
}

QString OrderSearchBar::selectedBranchId() const
{
    return branchId(branchBox_->currentIndex());
}

void OrderSearchBar::addPersonFilter()
{
    personBox_ = new ComboBox(this);
    personBox_->setObjectName(QStringLiteral("personBox"));
    nameFilter(personBox_, QStringLiteral("人员"));
    filterRow_->addWidget(personBox_);
    setTabOrder(branchBox_, personBox_);
    setPersons({});
    connect(personBox_, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        if (busy_) // what is being searched for would not fit what the box shows
            personBox_->setCurrentIndex(personIndex_);
        else if (index != personIndex_)
            requestSearch();
        personIndex_ = personBox_->currentIndex();
    });
}

void OrderSearchBar::setPersons(const QVector<orderqueries::Person> &persons)
{
    if (!personBox_)
        return;
    const QString chosen = personToChoose_.isEmpty() ? personId() : personToChoose_;
    if (!persons.isEmpty())
        personToChoose_.clear();
    personBox_->clear();
    personBox_->addItem(QStringLiteral("全部"), QString::fromLatin1(""));
    for (const orderqueries::Person &person : persons)
        personBox_->addItem(person.name, person.id);
    personBox_->setCurrentIndex(qMax(0, personBox_->findData(chosen)));
    personIndex_ = personBox_->currentIndex();
    arrange();
}

QString OrderSearchBar::personId() const
{
    return personBox_ ? personBox_->currentData().toString() : QString();
}

void OrderSearchBar::setBusy(bool busy)
{
    busy_ = busy;
    // A disabled button hands its focus on, to the branches of all things.
    if (busy && searchButton_->hasFocus())
        inputFor(currentType())->setFocus();
    searchButton_->setEnabled(!busy);
    searchButton_->setText(busy ? QStringLiteral("搜索中...") : searchText_);
}

void OrderSearchBar::setStacked()
{
    stacked_ = true;
    searchText_ = QStringLiteral("搜索订单");
    setBusy(busy_);
    keywordEdit_->setPlaceholderText(QStringLiteral("搜索订单号、姓名..."));
    searchButton_->setStyleSheet(
        theme::gradientButtonStyle(colours::searchFrom, colours::searchTo));
    searchButton_->setMinimumHeight(theme::controlHeight());
    static_cast<QBoxLayout *>(searchRow_->layout())->setDirection(QBoxLayout::TopToBottom);
    captionBranches(QStringLiteral("分店选择:"));
    branchBox_->setMaximumWidth(QWIDGETSIZE_MAX);
    rows_->removeItem(filterRow_);
    filterRow_->setDirection(QBoxLayout::TopToBottom);
    rows_->setDirection(QBoxLayout::TopToBottom);
    rows_->insertLayout(0, filterRow_);
    setTabOrder(branchBox_, typeBox_);
    QWidget *before = typeBox_;
    const auto inputs = searchInputs();
    for (QWidget *input : inputs) {
        setTabOrder(before, input);
        before = input;
    }
    setTabOrder(before, searchButton_);
}

void OrderSearchBar::openCalendar()
{
    if (auto *picker = qobject_cast<DatePicker *>(inputFor(currentType()))) {
        picker->setFocus();
        picker->openCalendar();
    }
}

void OrderSearchBar::requestSearch()
{
    if (busy_)
        return;
    auto *picker = qobject_cast<DatePicker *>(inputFor(currentType()));
    if (picker && !picker->isChosen()) {
        Toast::show(this, picker->prompt());
        picker->setFocus();
        picker->openCalendar();
        return;
    }
    emit searchRequested();
}

QWidget *OrderSearchBar::inputFor(int type) const
{
    if (type == OrderSearch::ShootingDate)
        return shootingDate_;
    if (type == OrderSearch::SelectionDate)
        return selectionDate_;
    if (type == OrderSearch::CompletionDate)
        return completionDate_;
    return keywordEdit_;
}

QList<QWidget *> OrderSearchBar::searchInputs() const
{
    return {keywordEdit_, shootingDate_, selectionDate_, completionDate_};
}

void OrderSearchBar::showInputFor(int type)
{
    QWidget *wanted = inputFor(type);
    const auto inputs = searchInputs();
    for (QWidget *input : inputs)
        input->setVisible(input == wanted);
    if (rangeEnd_)
        rangeEnd_->setVisible(wanted != keywordEdit_);
    arrange();
}

/// Decided by the width alone, never by the present arrangement, so that it cannot flicker.
void OrderSearchBar::arrange()
{
    if (stacked_)
        return;
    int oneRow = searchRow_->sizeHint().width();
    if (!branchCaption_->isHidden())
        oneRow += rows_->spacing() + branchCaption_->sizeHint().width();
    const auto boxes = filters();
    for (ComboBox *box : boxes)
        oneRow += rows_->spacing() + narrowWidth(box);
    const bool fits = oneRow <= width();
    rows_->setDirection(fits ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    for (ComboBox *box : boxes)
        box->setMaximumWidth(fits ? narrowWidth(box) : QWIDGETSIZE_MAX);
}

QList<ComboBox *> OrderSearchBar::filters() const
{
    QList<ComboBox *> boxes{branchBox_};
    if (personBox_)
        boxes.append(personBox_);
    return boxes;
}

QSize OrderSearchBar::minimumSizeHint() const
{
    const int width =
        qMax(searchRow_->minimumSizeHint().width(), filterRow_->minimumSize().width());
    return {width, rows_->minimumSize().height()};
}

void OrderSearchBar::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    arrange();
}
