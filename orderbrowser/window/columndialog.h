#pragma once

#include "orderbrowser/rules/orderviews.h"
#include "widgets/windows/framelessdialog.h"

#include <QVector>

#include <functional>

class ComboBox;
class LineEdit;
class QHBoxLayout;
class QListWidget;
class QPushButton;
class QVBoxLayout;

/// The dialog 列设置: which columns a view shows, in what order, and what views there are. Works on
/// a copy until the user agrees. Show it with open(); it deletes itself when closed.
class ColumnDialog : public FramelessDialog
{
    Q_OBJECT

public:
    /// \a fields: all that the listing has.
    ColumnDialog(QWidget *parent, const OrderViews &views,
                 const QVector<orderfields::OrderField> &fields);

signals:
    void chosen(const OrderViews &views);

private:
    QHBoxLayout *viewRow();
    QHBoxLayout *nameRow();
    QHBoxLayout *lists();
    QVBoxLayout *moveButtons();
    QHBoxLayout *endButtons();
    QListWidget *list(const char *name);
    QPushButton *button(const QString &text, const char *name, const std::function<void()> &act);

    void showViews();
    void showLists();
    void setColumns(const QVector<OrderView::Column> &columns, const QStringList &selected = {});
    void add();
    void remove();
    void move(bool down);
    void takeDropped();
    /// False, after a toast that says why, when a view may not have the name that was typed.
    bool nameIsGood();

    OrderViews views_;
    QVector<orderfields::OrderField> fields_;
    ComboBox *viewBox_;
    LineEdit *nameEdit_;
    LineEdit *searchEdit_;
    QListWidget *available_;
    QListWidget *shown_;
    QPushButton *rename_ = nullptr;
    QPushButton *remove_ = nullptr;
    QPushButton *restore_ = nullptr;
};
