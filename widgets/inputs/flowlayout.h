#pragma once

#include <QLayout>
#include <QList>

/// Places its items left to right in lines that wrap, as words in a text. What is hidden takes no
/// room. A spacing below zero stands for the style's spacing between push buttons. Owns its items.
class FlowLayout : public QLayout
{
    Q_OBJECT

public:
    FlowLayout(QWidget *parent, int horizontalSpacing, int verticalSpacing);
    ~FlowLayout() override;

    void insertWidget(int index, QWidget *widget);
    void moveItem(int from, int to);
    int horizontalSpacing() const { return spacing(horizontal_, Qt::Horizontal); }
    int verticalSpacing() const { return spacing(vertical_, Qt::Vertical); }

    void addItem(QLayoutItem *item) override;
    int count() const override { return items_.size(); }
    QLayoutItem *itemAt(int index) const override { return items_.value(index); }
    QLayoutItem *takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize minimumSize() const override;
    QSize sizeHint() const override { return minimumSize(); }
    void setGeometry(const QRect &rect) override;

private:
    enum class Placing { Measure, Move };

    int spacing(int wanted, Qt::Orientation orientation) const;
    int place(const QRect &rect, Placing placing) const;

    int horizontal_;
    int vertical_;
    QList<QLayoutItem *> items_;
};
