#pragma once

#include "widgets/tables/columnlayout.h"

#include <QObject>
#include <QPoint>
#include <QSet>
#include <QVector>

class FrozenTable;
class QHeaderView;

/// Lets the user move, size and hide the columns of a table of orders, and keeps that for the tool
/// and the account. The columns that tell the orders apart stay first, frozen and shown. Belongs to
/// the table.
class ArrangedColumns : public QObject
{
    Q_OBJECT

public:
    /// \a fixed stand first, in that order. The table has its model, its delegates and the widths
    /// that its columns come with.
    ArrangedColumns(FrozenTable *table, const QVector<int> &fixed);

    /// Arranges the columns as they were left in \a tool, or as they come. Damaged settings count
    /// as none; the log tells of them.
    void open(const QString &tool);
    /// As they come; what was kept goes.
    void restoreDefaults();
    void setHidden(int column, bool hidden);
    bool isFixed(int column) const { return fixed_.contains(column); }
    /// Whether the user has given any column its width.
    bool isSized() const { return !sized_.isEmpty(); }

    QHeaderView *frozenHeader() const { return frozenHeader_; }

signals:
    /// The widths are those that the columns come with.
    void widthsRestored();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void makeFrozenHeader();
    void connectHeaders();
    QString keyOf(int column) const;
    QStringList keys() const;
    void apply(const ColumnLayout &layout);
    void keepFixedFirst();
    void keep();
    void endOfUserAction();
    void showMenu(int column, const QPoint &position);

    FrozenTable *table_;
    QHeaderView *header_;
    QHeaderView *frozenHeader_ = nullptr;
    QVector<int> fixed_;
    QVector<int> usualWidths_; ///< pixels
    QSet<int> sized_;
    QString tool_;
    bool userActs_ = false; ///< a button is held in a header: what changes is the user's doing
    bool changed_ = false;
};
