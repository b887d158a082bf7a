#pragma once

#include <QAbstractButton>

/// A small symbol to press inside an input, painted by itself so that it is crisp at every scale.
class GlyphButton : public QAbstractButton
{
    Q_OBJECT

public:
    enum class Glyph { Clear, Eye, EyeCrossed };

    GlyphButton(Glyph glyph, QWidget *parent);

    void setGlyph(Glyph glyph);
    QSize sizeHint() const override;

protected:
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    Glyph glyph_;
};
