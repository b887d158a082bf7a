#pragma once

#include <QColor>
#include <QString>
#include <QStringView>
#include <QVariant>

#include <cstddef>
#include <functional>
#include <iterator>

namespace records {

/// Everything that a table tells of one of its columns, read off what a row shows. A table of them
/// is a constant; see columnsOf().
template <class Shown> struct Column
{
    template <class Result> using Read = Result (*)(const Shown &shown);

    int id; ///< the enumerator, which is its position
    int alignment = 0;
    QStringView heading;
    Read<QVariant> value; ///< what the cell says; null for cells that a delegate draws
    Read<QVariant> sortValue = nullptr;
    Read<QColor> textColour = nullptr;
    Read<QString> tip = nullptr;

    constexpr Column(int enumerator, QStringView headerText, Read<QVariant> says = nullptr)
        : id(enumerator), heading(headerText), value(says)
    {
    }

    /// What it is sorted by, where that is not what it says.
    constexpr Column sorted(Read<QVariant> by) const
    {
        Column column = *this;
        column.sortValue = by;
        return column;
    }
    /// An invalid colour leaves the text as it is.
    constexpr Column coloured(Read<QColor> by) const
    {
        Column column = *this;
        column.textColour = by;
        return column;
    }
    /// As plain text, of the cell; none when empty.
    constexpr Column withTip(Read<QString> text) const
    {
        Column column = *this;
        column.tip = text;
        return column;
    }
    constexpr Column centred() const { return aligned(Qt::AlignHCenter); }
    constexpr Column aligned(Qt::AlignmentFlag horizontally) const
    {
        Column column = *this;
        column.alignment = int(horizontally) | int(Qt::AlignVCenter);
        return column;
    }
};

/// Reads a member, or what a member or other function says, of what is shown.
template <auto part, class Result, class Shown> Result from(const Shown &shown)
{
    return std::invoke(part, shown);
}

/// A checked table of columns, see columnsOf().
template <class Shown> struct Columns
{
    const Column<Shown> *first;
    int count;
};

template <class Shown, std::size_t count>
constexpr bool standInOrder(const Column<Shown> (&table)[count])
{
    for (std::size_t position = 0; position < count; ++position) {
        if (table[position].id != int(position))
            return false;
    }
    return true;
}

template <class Shown, std::size_t size>
constexpr Columns<Shown> columns(const Column<Shown> (&table)[size])
{
    return {table, int(size)};
}

/// The columns of \a table, of which the enumeration has \a count. The program does not compile
/// when one is missing, or stands elsewhere than its enumerator says.
template <const auto &table, int count> constexpr auto columnsOf()
{
    static_assert(std::size(table) == std::size_t(count), "a column is missing, or one too many");
    static_assert(standInOrder(table), "a column does not stand where its enumerator says");
    return columns(table);
}

} // namespace records
