#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// How a user has arranged the columns of a table: a plain value. Columns are known by their
/// headings, so that one that a later version adds, drops or moves changes nothing of the others.
struct ColumnLayout
{
    struct Column
    {
        QString key;
        int width = 0; ///< design pixels; 0: as it comes
        bool hidden = false;

        friend bool operator==(const Column &one, const Column &other)
        {
            return one.key == other.key && one.width == other.width && one.hidden == other.hidden;
        }
    };

    QVector<Column> columns; ///< from left to right

    /// All of \a known, which is as the columns come: what the layout does not know stands behind
    /// what it comes behind.
    QStringList placesOf(const QStringList &known) const;
    Column column(const QString &key) const;

    QByteArray toJson() const;
    /// \a problem says why there is none to be read.
    static std::optional<ColumnLayout> fromJson(const QByteArray &json, QString *problem);
};
