#include "widgets/boxes/noticeline.h"

#include "app/context/k.h"
#include "look/colours.h"
#include "widgets/inputs/glyphbutton.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr int aroundPx = 3;

struct Look
{
    QRgb colour;
    QRgb surface;
    QString word; ///< what is read out for the mark
};

Look lookOf(Notice::Severity severity)
{
    switch (severity) {
    case Notice::Severity::Information:
        return {colours::noticeInformation, colours::noticeInformationSurface,
                QStringLiteral("提示")};
    case Notice::Severity::Warning:
        return {colours::noticeWarning, colours::noticeWarningSurface, QStringLiteral("注意")};
    case Notice::Severity::Failure:
        return {colours::noticeFailure, colours::noticeFailureSurface, QStringLiteral("错误")};
    }
    Q_UNREACHABLE();
}

/// A round, a triangle or a square on its corner, so that the colour need not be told apart.
QPolygonF cornersOf(Notice::Severity severity, const QRectF &box)
{
    const QPointF top(box.center().x(), box.top());
    if (severity == Notice::Severity::Warning)
        return QPolygonF({top, box.bottomRight(), box.bottomLeft()});
    return QPolygonF({top,
                      {box.right(), box.center().y()},
                      {box.center().x(), box.bottom()},
                      {box.left(), box.center().y()}});
}

void paintMark(QPainter *painter, Notice::Severity severity, const QRectF &box)
{
    painter->setRenderHint(QPainter::Antialiasing);
    const QColor colour = colours::toColor(lookOf(severity).colour);
    painter->setBrush(colour);
    painter->setPen(QPen(colour, box.width() / 8, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (severity == Notice::Severity::Information)
        painter->drawEllipse(box);
    else
        painter->drawPolygon(cornersOf(severity, box));
    // "i" or "!", drawn so that it is crisp at every scale and in every font.
    const bool isUpsideDown = severity == Notice::Severity::Information;
    const auto at = [&box, isUpsideDown](double y) {
        return QPointF(box.center().x(), box.top() + (isUpsideDown ? 1 - y : y) * box.height());
    };
    const double lift = severity == Notice::Severity::Warning ? 0.1 : 0;
    painter->setPen(
        QPen(colours::toColor(colours::onFilled), box.width() / 7, Qt::SolidLine, Qt::RoundCap));
    painter->drawLine(at(0.24 + lift), at(0.52 + lift));
    painter->drawPoint(at(0.76 + lift / 2));
}

QString inOneLine(QString text)
{
    return text.replace(QLatin1Char('\n'), QLatin1Char(' '));
}

} // namespace

NoticeLine::NoticeLine(const Notice &notice, QWidget *parent)
    : QWidget(parent)
    , label_(new PlainLabel(this))
    , dismiss_(new GlyphButton(GlyphButton::Glyph::Clear, this))
{
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    label_->setWordWrap(true);
    label_->setStyleSheet(theme::hintStyle());
    dismiss_->setObjectName(QStringLiteral("dismissButton"));
    dismiss_->setFocusPolicy(Qt::StrongFocus);
    dismiss_->setToolTip(QStringLiteral("不再显示这一条"));
    dismiss_->setAccessibleName(QStringLiteral("不再显示这一条"));
    connect(dismiss_, &QAbstractButton::clicked, this, &NoticeLine::dismissClicked);
    setNotice(notice);
}

void NoticeLine::setNotice(const Notice &notice)
{
    notice_ = notice;
    setObjectName(notice.id);
    const QString text = inOneLine(notice.text);
    label_->setText(text);
    setAccessibleName(lookOf(notice.severity).word + QStringLiteral("：") + text);
    showActions(notice.actions);
    dismiss_->setVisible(notice.dismissed != nullptr);
    dismiss_->setAccessibleDescription(text);
    updateGeometry();
    place(width(), true);
    update();
}

void NoticeLine::showActions(const QVector<Notice::Action> &actions)
{
    while (buttons_.size() > actions.size()) {
        QPushButton *button = buttons_.takeLast();
        button->hide();
        button->deleteLater(); // it may be the one being pressed
    }
    while (buttons_.size() < actions.size()) {
        auto *button = new QPushButton(this);
        button->setStyleSheet(theme::textButtonStyle());
        button->setCursor(Qt::PointingHandCursor);
        button->setAutoDefault(false);
        const int index = buttons_.size();
        connect(button, &QPushButton::clicked, this, [this, index] {
            const auto act = notice_.actions.at(index).act; // the line may be another afterwards
            act();
        });
        buttons_.append(button);
        button->setVisible(true);
    }
    for (int index = 0; index < actions.size(); ++index) {
        QPushButton *button = buttons_.at(index);
        button->setText(actions.at(index).text);
        button->setEnabled(actions.at(index).act != nullptr);
        button->setAccessibleName(actions.at(index).text);
        button->setAccessibleDescription(label_->text());
    }
}

QVector<QWidget *> NoticeLine::buttons() const
{
    QVector<QWidget *> buttons;
    for (QPushButton *button : buttons_)
        buttons.append(button);
    buttons.append(dismiss_);
    return buttons;
}

int NoticeLine::lineHeight() const
{
    label_->ensurePolished();
    int height = std::max(label_->fontMetrics().height(), int(theme::iconSize()));
    for (const QPushButton *button : buttons_)
        height = std::max(height, button->sizeHint().height());
    return height;
}

int NoticeLine::textWidth() const
{
    label_->ensurePolished();
    // One pixel more than the text: its advance is rounded.
    return label_->fontMetrics().horizontalAdvance(label_->text()) + 1;
}

int NoticeLine::actionsWidth() const
{
    int width = 0;
    for (const QPushButton *button : buttons_)
        width += theme::spacing() / 2 + button->sizeHint().width();
    return width;
}

int NoticeLine::place(int width, bool moves) const
{
    const int around = K::scaledPx(aroundPx);
    const int left = theme::spacing() + theme::iconSize() + theme::spacing();
    const int forDismissing =
        notice_.dismissed ? theme::spacing() + dismiss_->sizeHint().width() : 0;
    const int right = width - theme::spacing() - forDismissing;
    const int oneLine = lineHeight();
    const int available = std::max(1, right - left);
    const bool fits = textWidth() + actionsWidth() <= available;
    const int forText = fits ? textWidth() : available;
    const int textHeight = std::max(oneLine, label_->heightForWidth(forText));
    int bottom = around + textHeight;
    if (moves)
        label_->setGeometry(left, around, forText, textHeight);
    if (fits)
        placeActions({left + forText, around}, right, false, moves);
    else if (!buttons_.isEmpty())
        bottom = placeActions({left, bottom}, right, true, moves);
    if (moves) {
        dismiss_->resize(dismiss_->sizeHint());
        dismiss_->move(right + theme::spacing(), around + (oneLine - dismiss_->height()) / 2);
    }
    return bottom + around;
}

int NoticeLine::placeActions(QPoint from, int right, bool isBelow, bool moves) const
{
    const int gap = theme::spacing() / 2;
    const int begin = from.x();
    const int height = lineHeight();
    for (QPushButton *button : buttons_) {
        const int wide = button->sizeHint().width();
        if (from.x() > begin && from.x() + gap + wide > right)
            from = {begin, from.y() + height};
        if (!isBelow || from.x() > begin)
            from.rx() += gap;
        if (moves)
            button->setGeometry(from.x(), from.y(), wide, height);
        from.rx() += wide;
    }
    return from.y() + height;
}

int NoticeLine::heightForWidth(int width) const
{
    return place(width, false);
}

QSize NoticeLine::sizeHint() const
{
    const int wide = 2 * theme::spacing() + theme::iconSize() + textWidth() + actionsWidth() +
                     2 * theme::spacing() + dismiss_->sizeHint().width();
    return {wide, place(wide, false)};
}

QSize NoticeLine::minimumSizeHint() const
{
    return {theme::narrowestInput(), place(std::max(width(), int(theme::narrowestInput())), false)};
}

void NoticeLine::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    place(width(), true);
    if (event->size().width() != event->oldSize().width())
        updateGeometry(); // its least height follows its width
}

void NoticeLine::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    const Look look = lookOf(notice_.severity);
    painter.fillRect(rect(), colours::toColor(look.surface));
    painter.fillRect(0, 0, theme::focusWidth(), height(), colours::toColor(look.colour));
    const double side = theme::iconSize();
    const double top = K::scaledPx(aroundPx) + (lineHeight() - side) / 2;
    const double edge = side / 16; // for the line around the mark
    paintMark(&painter, notice_.severity,
              QRectF(theme::spacing(), top, side, side).adjusted(edge, edge, -edge, -edge));
}

void NoticeLine::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && notice_.dismissed)
        emit dismissClicked();
    else
        QWidget::keyPressEvent(event);
}
