#pragma once

#include "cardcheck/rules/verdict.h"

#include <QWidget>

class QLabel;

/// The sign of a light: its colour and a shape of its own, so that either tells it.
class LightSign : public QWidget
{
    Q_OBJECT

public:
    explicit LightSign(QWidget *parent = nullptr);

    void showLight(verdict::Light light);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    verdict::Light light_ = verdict::Light::None;
};

/// May the card be formatted: the sign, and in words what it means and why.
class LightPanel : public QWidget
{
    Q_OBJECT

public:
    explicit LightPanel(QWidget *parent = nullptr);

    void showVerdict(const verdict::Verdict &verdict);

private:
    LightSign *sign_;
    QLabel *headline_;
    QLabel *notes_;
};
