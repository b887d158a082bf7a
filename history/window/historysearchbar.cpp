#include "history/window/historysearchbar.h"

#include "widgets/inputs/datepicker.h"
#include "widgets/inputs/inputs.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

HistorySearchBar::HistorySearchBar(QWidget *parent)
    : QWidget(parent)
    , order_(input(QStringLiteral("orderEdit"), QStringLiteral("订单号、客户")))
    , file_(input(QStringLiteral("fileEdit"), QStringLiteral("文件名")))
    , card_(input(QStringLiteral("cardEdit"), QStringLiteral("存储卡")))
    , from_(new DatePicker(QStringLiteral("开始日期"), this))
    , to_(new DatePicker(QStringLiteral("结束日期"), this))
    , kind_(new ComboBox(this))
    , state_(new ComboBox(this))
    , clear_(new QPushButton(QStringLiteral("清空"), this))
    , search_(new QPushButton(QStringLiteral("搜索"), this))
    , hint_(new PlainLabel(this))
{
    from_->setObjectName(QStringLiteral("fromDate"));
    to_->setObjectName(QStringLiteral("toDate"));
    kind_->setObjectName(QStringLiteral("kindBox"));
    kind_->setAccessibleName(QStringLiteral("做了什么"));
    kind_->addItems({QStringLiteral("全部工作"), QStringLiteral("导入"),
                     QStringLiteral("分件与下载"), QStringLiteral("删除")});
    state_->setObjectName(QStringLiteral("stateBox"));
    state_->setAccessibleName(QStringLiteral("结果怎样"));
    state_->addItems(
        {QStringLiteral("全部结果"), QStringLiteral("有失败"), QStringLiteral("未登记")});
    clear_->setObjectName(QStringLiteral("clearButton"));
    clear_->setStyleSheet(theme::secondaryButtonStyle());
    search_->setObjectName(QStringLiteral("searchButton"));
    search_->setStyleSheet(theme::primaryButtonStyle());
    hint_->setStyleSheet(theme::hintStyle());
    hint_->setText(
        QStringLiteral("文件名按开头查找；填写订单，或不超过 31 天的日期后，按其中任意部分查找。"));

    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(theme::spacing());
    for (QWidget *field : std::initializer_list<QWidget *>{order_, file_, card_})
        row->addWidget(field, 1);
    for (QWidget *field :
         std::initializer_list<QWidget *>{from_, to_, kind_, state_, search_, clear_})
        row->addWidget(field);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(theme::spacing());
    layout->addLayout(row);
    layout->addWidget(hint_);
    QWidget *before = order_->lastInTabOrder();
    for (LineEdit *field : {file_, card_}) {
        setTabOrder(before, field);
        before = field->lastInTabOrder();
    }
    for (QWidget *field :
         std::initializer_list<QWidget *>{from_, to_, kind_, state_, search_, clear_}) {
        setTabOrder(before, field);
        before = field;
    }

    for (LineEdit *field : {order_, file_, card_})
        connect(field, &QLineEdit::returnPressed, this, &HistorySearchBar::searchRequested);
    for (DatePicker *date : {from_, to_})
        connect(date, &DatePicker::entered, this, &HistorySearchBar::searchRequested);
    for (ComboBox *box : {kind_, state_})
        connect(box, QOverload<int>::of(&QComboBox::activated), this,
                &HistorySearchBar::searchRequested);
    connect(search_, &QPushButton::clicked, this, &HistorySearchBar::searchRequested);
    connect(clear_, &QPushButton::clicked, this, &HistorySearchBar::clear);
}

LineEdit *HistorySearchBar::input(const QString &name, const QString &prompt)
{
    auto *edit = new LineEdit(this);
    edit->setObjectName(name);
    edit->setPlaceholderText(prompt);
    edit->setAccessibleName(prompt);
    edit->setClearable(true);
    edit->setMinimumWidth(theme::narrowestInput());
    return edit;
}

void HistorySearchBar::clear()
{
    for (LineEdit *field : {order_, file_, card_})
        field->clear();
    from_->reset();
    to_->reset();
    kind_->setCurrentIndex(0);
    state_->setCurrentIndex(0);
    emit searchRequested();
}

HistoryWish HistorySearchBar::wish() const
{
    HistoryWish wish;
    wish.order = order_->text();
    wish.file = file_->text();
    wish.card = card_->text();
    wish.from = from_->chosenDate();
    wish.to = to_->chosenDate();
    wish.kind = HistoryWish::Kind(kind_->currentIndex());
    wish.state = HistoryWish::State(state_->currentIndex());
    return wish;
}
