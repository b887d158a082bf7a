#pragma once

#include <QComboBox>
#include <QLineEdit>

class GlyphButton;

/// A line edit in the program's look. focused() and unfocused() follow the keyboard focus; a pop-up
/// such as the context menu does not count as losing it.
class LineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit LineEdit(QWidget *parent = nullptr);

    /// A small "×" that empties the field, there while it holds something.
    void setClearable(bool clearable);
    /// Hides what is typed, with an eye that shows it.
    void setPassword(bool password);
    /// Where the keyboard leaves the field: what follows it in the tab order goes behind this.
    QWidget *lastInTabOrder();

signals:
    void focused();
    void unfocused();

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeButtons();
    void showPassword(bool visible);

    GlyphButton *clearButton_ = nullptr;
    GlyphButton *eyeButton_ = nullptr;
};

/// A combo box in the program's look. The wheel changes it only when it has the focus, so that
/// scrolling past it does not.
class ComboBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ComboBox(QWidget *parent = nullptr);

    void showPopup() override;

signals:
    void focused();
    void unfocused();

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

/// The arrow at the right of an input that drops something down; style sheets cannot scale one.
void paintDropArrow(QPainter *painter, const QRect &input, bool enabled);
