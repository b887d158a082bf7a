#pragma once

#include <QLabel>
#include <QString>

class QAbstractItemView;
class QPoint;
class QWidget;

/// Names of customers, products and files come from outside, and Qt takes what looks like markup
/// for markup: it would load the files and shares that such a name points at. So whatever shows
/// text is made here and shows it to the letter. Interface thread.

/// Every label of the program.
class PlainLabel : public QLabel
{
public:
    explicit PlainLabel(QWidget *parent = nullptr);
    explicit PlainLabel(const QString &text, QWidget *parent = nullptr);
};

/// Tool tips that are more than a literal.
void setPlainTip(QWidget *widget, const QString &text);
/// Shows a tip that wraps, for \a widget and now.
void showPlainTip(const QPoint &globalPosition, const QString &text, QWidget *widget);
/// \a text in the form in which a tool tip shows it to the letter; none for an empty one.
QString plainTip(const QString &text);

/// Every view of a model: the tool tips of its cells and headers, which the model gives as they
/// are.
template <typename View> class PlainTips : public View
{
public:
    explicit PlainTips(QWidget *parent = nullptr);
};

void showTipsPlainly(QAbstractItemView *view);

template <typename View> PlainTips<View>::PlainTips(QWidget *parent) : View(parent)
{
    showTipsPlainly(this);
}
