#pragma once

#include "net/orderqueries.h"
#include "orderbrowser/rules/orderarrangement.h"

#include <QByteArray>
#include <QDate>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// A named choice of columns.
struct OrderView
{
    struct Column
    {
        QString key;   ///< of a field
        int width = 0; ///< design pixels; 0: the field's own

        friend bool operator==(const Column &one, const Column &other)
        {
            return one.key == other.key && one.width == other.width;
        }
    };

    QString name;
    QVector<Column> columns;
    QVector<OrderArrangement::Sorting> sorting;
    bool frozen = true; ///< the first column and the order number stay while others are scrolled

    bool shows(const QString &key) const;
    QStringList keys() const;

    friend bool operator==(const OrderView &one, const OrderView &other)
    {
        return one.name == other.name && one.columns == other.columns &&
               one.sorting == other.sorting && one.frozen == other.frozen;
    }
};

/// What was asked for: a search, or by date a range of them.
struct BrowserSearch
{
    orderqueries::OrderSearch search;
    QDate until;      ///< of a search by date, its last day; invalid: one day
    QString personId; ///< empty: everybody's

    static constexpr int mostDays = 31;
    /// Why it cannot be asked; empty when it can.
    QString problem() const;
    /// The single searches that it is made of, a day each.
    QVector<orderqueries::OrderSearch> singleSearches() const;

private:
    QDate from() const;
};

/// An account's views and its last search in each branch: what is kept between two openings. Plain
/// value; there is always a view, and the views that come along are always there.
class OrderViews
{
public:
    /// With the views that come along, as they come.
    OrderViews();

    const QVector<OrderView> &all() const { return views_; }
    const OrderView &current() const { return views_.at(current_); }
    QStringList names() const;
    static bool comesAlong(const QString &name);

    /// False, and nothing happens, without such a view.
    bool choose(const QString &name);
    /// Puts \a view in the place of the current one, whose name it keeps.
    void changeCurrent(const OrderView &view);
    /// Why a view may not have this name; empty when it may.
    QString nameProblem(const QString &name) const;
    /// A copy of the current view, which becomes the current one. The name has no problem.
    void addCopy(const QString &name);
    /// Views that come along keep their names and stay.
    void renameCurrent(const QString &name);
    void removeCurrent();
    /// Of a view that comes along: as it came.
    void restoreCurrent();

    std::optional<BrowserSearch> lastSearch(const QString &branch) const;
    void keepSearch(const QString &branch, const BrowserSearch &search);

    QByteArray toJson() const;
    /// \a problem says why there are none to be read, such as a newer version's.
    static std::optional<OrderViews> fromJson(const QByteArray &json, QString *problem);

private:
    int positionOf(const QString &name) const;

    QVector<OrderView> views_;
    int current_ = 0;
    QMap<QString, BrowserSearch> searches_; ///< by branch
};
