#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class QWidget;

/// Something to do from within a box, by a button beside those that answer; the box stays. \a act
/// gets the box, and whatever goes on longer must not need it.
struct BoxAction
{
    QString text;
    std::function<void(QWidget *box)> act;
};

/// What a box says. However much that is, only as much is shown as a user reads and a box lays out
/// at once; the box offers the whole for the clipboard then. Values and pure functions.
struct BoxText
{
    /// Lines of a list that are shown.
    static constexpr int shownLines = 200;

    /// Plain text; of a very long one the beginning is shown.
    BoxText(const QString &plain); // implicit: a text is what boxes are mostly given
    /// A heading, and below it a line for each of \a lines.
    BoxText(const QString &heading, const QStringList &lines);

    /// A heading, and below it a \a line for each of \a items that is \a wanted. Only the lines
    /// that are shown are made now; \a line may run for the others on another thread, later.
    template <typename Item, typename Wanted, typename Line>
    static BoxText list(const QString &heading, const QVector<Item> &items, Wanted wanted,
                        Line line)
    {
        QStringList first;
        int count = 0;
        for (const Item &item : items) {
            if (wanted(item) && ++count <= shownLines)
                first.append(line(item));
        }
        BoxText text(shownList(heading, first, count), nullptr);
        if (count > shownLines) {
            text.whole = [heading, items, wanted, line] {
                QStringList all{heading};
                for (const Item &item : items) {
                    if (wanted(item))
                        all.append(line(item));
                }
                return all.join(QLatin1Char('\n'));
            };
        }
        return text;
    }

    /// Rich text as it stands; \a whole for the clipboard when it is not all.
    static BoxText rich(const QString &html, const std::function<QString()> &whole = nullptr);

    /// The same text, offered for the clipboard however short it is.
    BoxText copyable() const;
    /// The same text with \a below under it, such as what each button does; plain text.
    BoxText explained(const QString &below) const;
    /// The same text with a button for \a action.
    BoxText withAction(const BoxAction &action) const;

    /// The same text whose \a button, a QMessageBox::StandardButton, is called \a words.
    BoxText answering(int button, const QString &words) const;

    /// The same text whose \a button deletes, overwrites or goes on doing so, and is called \a
    /// verb. It is red, and what Enter presses at first is the answer that changes nothing.
    BoxText endangering(int button, const QString &verb) const;

    /// The last line of a list of \a count of which not all are shown.
    static QString countLine(int count);

    QString shown;
    QString explanation;
    Qt::TextFormat format = Qt::PlainText;
    std::function<QString()> whole; ///< empty when \a shown is all; runs on any thread
    QVector<BoxAction> actions;
    QHash<int, QString> answers; ///< names of buttons where the usual ones say too little
    int danger = 0;              ///< the button that cannot be undone; 0 for none

private:
    BoxText(QString shownText, std::nullptr_t);
    static QString shownList(const QString &heading, const QStringList &first, int count);
};
