#pragma once

#include <QVariantAnimation>
#include <QWidget>

/// A turning arc: something goes on whose end is not known. Turns only while it is visible.
class Spinner : public QWidget
{
    Q_OBJECT

public:
    explicit Spinner(QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QVariantAnimation turning_;
};
