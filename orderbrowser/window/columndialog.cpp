#include "orderbrowser/window/columndialog.h"

#include "app/context/k.h"
#include "orderbrowser/rules/columnchoice.h"
#include "widgets/boxes/toast.h"
#include "widgets/inputs/inputs.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>

namespace {

constexpr int widthPx = 640;
constexpr int heightPx = 560;

QStringList keysOf(const QList<QListWidgetItem *> &items)
{
    QStringList keys;
    for (const QListWidgetItem *item : items)
        keys.append(item->data(Qt::UserRole).toString());
    return keys;
}

QStringList allKeysOf(const QListWidget *list)
{
    QStringList keys;
    for (int row = 0; row < list->count(); ++row)
        keys.append(list->item(row)->data(Qt::UserRole).toString());
    return keys;
}

/// In the list's order, whatever order they were selected in.
QStringList selectedKeys(const QListWidget *list)
{
    const QStringList selected = keysOf(list->selectedItems());
    QStringList keys = allKeysOf(list);
    keys.erase(std::remove_if(keys.begin(), keys.end(),
                              [&selected](const QString &key) { return !selected.contains(key); }),
               keys.end());
    return keys;
}

void addItem(QListWidget *list, const QString &text, const QString &key)
{
    auto *item = new QListWidgetItem(text, list);
    item->setData(Qt::UserRole, key);
}

} // namespace

ColumnDialog::ColumnDialog(QWidget *parent, const OrderViews &views,
                           const QVector<orderfields::OrderField> &fields)
    : FramelessDialog(parent, QStringLiteral("列设置"))
    , views_(views)
    , fields_(fields)
    , viewBox_(new ComboBox(this))
    , nameEdit_(new LineEdit(this))
    , searchEdit_(new LineEdit(this))
    , available_(list("availableList"))
    , shown_(list("shownList"))
{
    content()->addLayout(viewRow());
    content()->addLayout(nameRow());
    content()->addLayout(lists(), 1);
    content()->addLayout(endButtons());
    resize(K::scaledPx(widthPx), K::scaledPx(heightPx));
    showViews();
    searchEdit_->setFocus();
}

QListWidget *ColumnDialog::list(const char *name)
{
    auto *list = new PlainTips<QListWidget>(this);
    list->setObjectName(QString::fromLatin1(name));
    list->setStyleSheet(theme::listStyle());
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setDragDropMode(QAbstractItemView::DragDrop);
    list->setDefaultDropAction(Qt::MoveAction);
    // When the drop has ended: until then an item may be in both lists.
    const QAbstractItemModel *items = list->model();
    connect(items, &QAbstractItemModel::rowsInserted, this, &ColumnDialog::takeDropped,
            Qt::QueuedConnection);
    connect(items, &QAbstractItemModel::rowsRemoved, this, &ColumnDialog::takeDropped,
            Qt::QueuedConnection);
    return list;
}

QPushButton *ColumnDialog::button(const QString &text, const char *name,
                                  const std::function<void()> &act)
{
    auto *button = new QPushButton(text, this);
    button->setObjectName(QString::fromLatin1(name));
    button->setStyleSheet(theme::secondaryButtonStyle());
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, act);
    return button;
}

QHBoxLayout *ColumnDialog::viewRow()
{
    viewBox_->setObjectName(QStringLiteral("dialogViewBox"));
    connect(viewBox_, qOverload<int>(&QComboBox::activated), this, [this](int index) {
        views_.choose(viewBox_->itemText(index));
        showViews();
    });
    remove_ = button(QStringLiteral("删除视图"), "removeViewButton", [this] {
        views_.removeCurrent();
        showViews();
    });
    restore_ = button(QStringLiteral("恢复此视图"), "restoreViewButton", [this] {
        views_.restoreCurrent();
        showViews();
    });
    auto *row = new QHBoxLayout;
    auto *label = new PlainLabel(QStringLiteral("视图:"), this);
    label->setBuddy(viewBox_);
    row->addWidget(label);
    row->addWidget(viewBox_, 1);
    row->addWidget(remove_);
    row->addWidget(restore_);
    return row;
}

QHBoxLayout *ColumnDialog::nameRow()
{
    nameEdit_->setObjectName(QStringLiteral("viewNameEdit"));
    nameEdit_->setPlaceholderText(QStringLiteral("新视图的名称"));
    auto *copy = button(QStringLiteral("另存为新视图"), "copyViewButton", [this] {
        if (!nameIsGood())
            return;
        views_.addCopy(nameEdit_->text());
        showViews();
    });
    rename_ = button(QStringLiteral("重命名"), "renameViewButton", [this] {
        if (!nameIsGood())
            return;
        views_.renameCurrent(nameEdit_->text());
        showViews();
    });
    auto *row = new QHBoxLayout;
    auto *label = new PlainLabel(QStringLiteral("名称:"), this);
    label->setBuddy(nameEdit_);
    row->addWidget(label);
    row->addWidget(nameEdit_, 1);
    row->addWidget(copy);
    row->addWidget(rename_);
    return row;
}

QHBoxLayout *ColumnDialog::lists()
{
    searchEdit_->setObjectName(QStringLiteral("fieldSearchEdit"));
    searchEdit_->setPlaceholderText(QStringLiteral("搜索字段..."));
    searchEdit_->setClearable(true);
    connect(searchEdit_, &QLineEdit::textChanged, this, &ColumnDialog::showLists);
    connect(available_, &QListWidget::itemDoubleClicked, this, &ColumnDialog::add);
    connect(shown_, &QListWidget::itemDoubleClicked, this, &ColumnDialog::remove);
    const auto key = [this](QListWidget *list, const QKeySequence &keys, const QString &meaning,
                            const std::function<void()> &act) {
        auto *shortcut = new QShortcut(keys, list, nullptr, nullptr, Qt::WidgetShortcut);
        shortcut->setWhatsThis(meaning);
        connect(shortcut, &QShortcut::activated, this, act);
    };
    key(available_, Qt::Key_Return, QStringLiteral("显示选中的字段"), [this] { add(); });
    key(shown_, Qt::Key_Delete, QStringLiteral("不显示选中的列"), [this] { remove(); });
    key(shown_, QKeySequence(QStringLiteral("Alt+Up")), QStringLiteral("上移"),
        [this] { move(false); });
    key(shown_, QKeySequence(QStringLiteral("Alt+Down")), QStringLiteral("下移"),
        [this] { move(true); });

    auto *left = new QVBoxLayout;
    left->addWidget(new PlainLabel(QStringLiteral("可选字段"), this));
    left->addWidget(searchEdit_);
    left->addWidget(available_, 1);
    auto *right = new QVBoxLayout;
    right->addWidget(new PlainLabel(QStringLiteral("显示的列"), this));
    right->addWidget(shown_, 1);
    auto *row = new QHBoxLayout;
    row->setSpacing(theme::spacing());
    row->addLayout(left, 1);
    row->addLayout(moveButtons());
    row->addLayout(right, 1);
    return row;
}

QVBoxLayout *ColumnDialog::moveButtons()
{
    auto *column = new QVBoxLayout;
    column->addStretch();
    column->addWidget(button(QStringLiteral("添加 →"), "addColumnButton", [this] { add(); }));
    column->addWidget(button(QStringLiteral("← 移除"), "removeColumnButton", [this] { remove(); }));
    column->addWidget(button(QStringLiteral("上移"), "upButton", [this] { move(false); }));
    column->addWidget(button(QStringLiteral("下移"), "downButton", [this] { move(true); }));
    column->addStretch();
    return column;
}

QHBoxLayout *ColumnDialog::endButtons()
{
    auto *accept = new QPushButton(QStringLiteral("确定"), this);
    accept->setObjectName(QStringLiteral("acceptButton"));
    accept->setStyleSheet(theme::primaryButtonStyle());
    accept->setAutoDefault(false);
    connect(accept, &QPushButton::clicked, this, [this] {
        emit chosen(views_);
        QDialog::accept();
    });
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(button(QStringLiteral("取消"), "cancelButton", [this] { reject(); }));
    row->addWidget(accept);
    return row;
}

// What is shown.

void ColumnDialog::showViews()
{
    viewBox_->clear();
    viewBox_->addItems(views_.names());
    viewBox_->setCurrentText(views_.current().name);
    const bool comesAlong = OrderViews::comesAlong(views_.current().name);
    rename_->setEnabled(!comesAlong);
    remove_->setEnabled(!comesAlong);
    restore_->setEnabled(comesAlong);
    showLists();
}

void ColumnDialog::showLists()
{
    const QStringList selected = selectedKeys(shown_);
    available_->clear();
    const QVector<OrderView::Column> &columns = views_.current().columns;
    const auto free = columnchoice::available(fields_, columns, searchEdit_->text());
    for (const orderfields::OrderField &field : free) {
        const QString group = QStringLiteral("（%1）").arg(field.group);
        addItem(available_, field.heading + group, field.key);
    }
    shown_->clear();
    for (const OrderView::Column &column : columns) {
        const int field = orderfields::positionOf(fields_, column.key);
        addItem(shown_, field < 0 ? column.key : fields_.at(field).heading, column.key);
        shown_->item(shown_->count() - 1)->setSelected(selected.contains(column.key));
    }
}

void ColumnDialog::setColumns(const QVector<OrderView::Column> &columns,
                              const QStringList &selected)
{
    OrderView view = views_.current();
    view.columns = columns;
    views_.changeCurrent(view);
    showLists();
    for (int row = 0; row < shown_->count() && !selected.isEmpty(); ++row) {
        QListWidgetItem *item = shown_->item(row);
        item->setSelected(selected.contains(item->data(Qt::UserRole).toString()));
        if (item->isSelected())
            shown_->scrollToItem(item);
    }
}

// What the user does.

void ColumnDialog::add()
{
    const QStringList keys = selectedKeys(available_);
    if (keys.isEmpty())
        return;
    const QStringList after = selectedKeys(shown_);
    const int at = after.isEmpty() ? shown_->count() : allKeysOf(shown_).indexOf(after.last()) + 1;
    setColumns(columnchoice::added(views_.current().columns, keys, at), keys);
}

void ColumnDialog::remove()
{
    setColumns(columnchoice::removed(views_.current().columns, selectedKeys(shown_)));
}

void ColumnDialog::move(bool down)
{
    const QStringList keys = selectedKeys(shown_);
    setColumns(columnchoice::moved(views_.current().columns, keys, down), keys);
}

void ColumnDialog::takeDropped()
{
    const QVector<OrderView::Column> &columns = views_.current().columns;
    const auto dropped = columnchoice::arranged(columns, allKeysOf(shown_));
    const bool isSame = dropped == columns && shown_->count() == columns.size();
    if (!isSame)
        setColumns(dropped, selectedKeys(shown_));
}

bool ColumnDialog::nameIsGood()
{
    const QString problem = views_.nameProblem(nameEdit_->text());
    if (problem.isEmpty())
        return true;
    Toast::show(this, problem);
    nameEdit_->setFocus();
    return false;
}
