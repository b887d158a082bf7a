#include "widgets/inputs/inputs.h"

#include "look/colours.h"
#include "widgets/inputs/glyphbutton.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QFocusEvent>
#include <QListView>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QWheelEvent>

LineEdit::LineEdit(QWidget *parent) : QLineEdit(parent)
{
    setStyleSheet(theme::inputStyle());
    setMinimumHeight(theme::controlHeight());
    QPalette colours = palette();
    colours.setColor(QPalette::Text, colours::toColor(colours::inputText));
    colours.setColor(QPalette::PlaceholderText, colours::toColor(colours::placeholder));
    setPalette(colours);
    connect(this, &QLineEdit::textChanged, this, &LineEdit::placeButtons);
}

void LineEdit::setClearable(bool clearable)
{
    delete clearButton_;
    clearButton_ = nullptr;
    if (clearable) {
        clearButton_ = new GlyphButton(GlyphButton::Glyph::Clear, this);
        clearButton_->setToolTip(QStringLiteral("清空"));
        clearButton_->setAccessibleName(clearButton_->toolTip());
        connect(clearButton_, &QAbstractButton::clicked, this, &QLineEdit::clear);
    }
    placeButtons();
}

void LineEdit::setPassword(bool password)
{
    delete eyeButton_;
    eyeButton_ = nullptr;
    if (password) {
        eyeButton_ = new GlyphButton(GlyphButton::Glyph::EyeCrossed, this);
        eyeButton_->setObjectName(QStringLiteral("showPasswordButton"));
        eyeButton_->setCheckable(true);
        eyeButton_->setFocusPolicy(Qt::TabFocus);
        setTabOrder(this, eyeButton_);
        eyeButton_->show();
        connect(eyeButton_, &QAbstractButton::toggled, this, &LineEdit::showPassword);
    }
    showPassword(!password);
    placeButtons();
}

QWidget *LineEdit::lastInTabOrder()
{
    if (eyeButton_)
        return eyeButton_;
    return this;
}

void LineEdit::showPassword(bool visible)
{
    setEchoMode(visible ? QLineEdit::Normal : QLineEdit::Password);
    if (!eyeButton_)
        return;
    eyeButton_->setGlyph(visible ? GlyphButton::Glyph::Eye : GlyphButton::Glyph::EyeCrossed);
    setPlainTip(eyeButton_, visible ? QStringLiteral("隐藏密码") : QStringLiteral("显示密码"));
    eyeButton_->setAccessibleName(eyeButton_->toolTip());
}

void LineEdit::placeButtons()
{
    int right = width() - theme::radius();
    int taken = 0;
    if (clearButton_)
        clearButton_->setVisible(!text().isEmpty() && !isReadOnly());
    for (GlyphButton *button : {eyeButton_, clearButton_}) {
        if (!button)
            continue;
        // Room is kept for a hidden button too: the text must not jump while it is typed.
        right -= button->width();
        taken += button->width();
        button->move(right, (height() - button->height()) / 2);
    }
    setTextMargins(0, 0, taken, 0);
}

void LineEdit::resizeEvent(QResizeEvent *event)
{
    QLineEdit::resizeEvent(event);
    placeButtons();
}

void LineEdit::focusInEvent(QFocusEvent *event)
{
    QLineEdit::focusInEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        emit focused();
}

void LineEdit::focusOutEvent(QFocusEvent *event)
{
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        emit unfocused();
}

ComboBox::ComboBox(QWidget *parent) : QComboBox(parent)
{
    setView(new PlainTips<QListView>(this));
    setItemDelegate(new QStyledItemDelegate(this));
    setStyleSheet(theme::comboStyle());
    setMinimumHeight(theme::controlHeight());
    setFocusPolicy(Qt::StrongFocus);
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

void ComboBox::showPopup()
{
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + 2 * theme::scrollBarWidth());
    // The list has the border; the frame around it would add a second one.
    if (auto *frame = qobject_cast<QFrame *>(view()->parentWidget()))
        frame->setFrameShape(QFrame::NoFrame);
    QComboBox::showPopup();
}

void ComboBox::focusInEvent(QFocusEvent *event)
{
    QComboBox::focusInEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        emit focused();
}

void ComboBox::focusOutEvent(QFocusEvent *event)
{
    QComboBox::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason)
        emit unfocused();
}

void ComboBox::wheelEvent(QWheelEvent *event)
{
    if (hasFocus())
        QComboBox::wheelEvent(event);
    else
        event->ignore();
}

void ComboBox::paintEvent(QPaintEvent *event)
{
    QComboBox::paintEvent(event);
    QPainter painter(this);
    paintDropArrow(&painter, rect(), isEnabled());
}

void paintDropArrow(QPainter *painter, const QRect &input, bool enabled)
{
    painter->setRenderHint(QPainter::Antialiasing);
    const double half = theme::iconSize() / 4.0;
    const QPointF middle(input.right() - theme::iconSize() * 0.75, input.center().y() + half / 4);
    painter->setPen(QPen(colours::toColor(enabled ? colours::placeholder : colours::disabledText),
                         half / 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->drawPolyline(
        QPolygonF({middle + QPointF(-half, -half / 2), middle + QPointF(0, half / 2),
                   middle + QPointF(half, -half / 2)}));
}
