#pragma once

#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

/// The filters that are in force, one beside the other, each to be taken away by a click.
class FilterChips : public QWidget
{
    Q_OBJECT

public:
    struct Chip
    {
        QString key; ///< of the field
        QString text;

        friend bool operator==(const Chip &one, const Chip &other)
        {
            return one.key == other.key && one.text == other.text;
        }
    };

    explicit FilterChips(QWidget *parent = nullptr);

    /// Without any it takes no room.
    void setChips(const QVector<Chip> &chips);

signals:
    void removed(const QString &key);
    void allRemoved();

private:
    void addButton(const QString &text, const QString &name, const std::function<void()> &act);

    QVector<Chip> chips_;
};
