#pragma once

#include <QCheckBox>

/// A check box whose box is painted by itself, crisp at every scale, with a focus ring.
class CustomCheckBoxNew : public QCheckBox
{
    Q_OBJECT

public:
    explicit CustomCheckBoxNew(QWidget *parent = nullptr);
    explicit CustomCheckBoxNew(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool hitButton(const QPoint &position) const override;
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

/// What a box to be ticked looks like at the moment.
struct CheckBoxLook
{
    Qt::CheckState state = Qt::Unchecked;
    bool enabled = true;
    bool focused = false;
    bool hovered = false;
};

/// Paints such a box, for a check box or for a cell of a table.
void paintCheckBox(QPainter *painter, const QRectF &box, const CheckBoxLook &look);
