#include "widgets/boxes/toast.h"

#include "look/colours.h"
#include "widgets/theme/theme.h"

#include <QAccessible>
#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

#include <utility>

namespace {

constexpr int fadeMs = 300;
constexpr int clickableMs = 8000;
constexpr double heightFromBottom = 0.12; ///< of the window
const auto toastName = QLatin1String("toast");

class ToastLine : public QWidget
{
public:
    ToastLine(QWidget *window, const QString &text, int ms, const QString &action = {},
              std::function<void()> act = {})
        : QWidget(window), text_(text), action_(action), act_(std::move(act))
    {
        setObjectName(toastName);
        setAttribute(Qt::WA_TransparentForMouseEvents, !act_);
        if (act_)
            setCursor(Qt::PointingHandCursor);
        setFocusPolicy(Qt::NoFocus);
        setAccessibleName(text);
        QFont textFont = font();
        textFont.setPixelSize(theme::textSize());
        setFont(textFont);
        window->installEventFilter(this);
        place();

        fading_.setStartValue(1.0);
        fading_.setEndValue(0.0);
        fading_.setDuration(fadeMs);
        connect(&fading_, &QVariantAnimation::valueChanged, this, [this] { update(); });
        connect(&fading_, &QVariantAnimation::finished, this, &QObject::deleteLater);
        connect(&standing_, &QTimer::timeout, this, [this] { fading_.start(); });
        standing_.setSingleShot(true);
        standing_.start(ms);
    }

    const QString &text() const { return text_; }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Resize)
            place();
        return false;
    }

    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (fading_.state() == QAbstractAnimation::Running)
            painter.setOpacity(fading_.currentValue().toDouble());
        painter.setPen(Qt::NoPen);
        painter.setBrush(colours::toColor(colours::toastSurface));
        painter.drawRoundedRect(rect(), 2 * theme::radius(), 2 * theme::radius());
        painter.setPen(colours::toColor(colours::onFilled));
        const QRect line = rect().adjusted(theme::margin(), 0, -theme::margin(), 0);
        const int actionWidth = widthOfAction();
        painter.drawText(
            line.adjusted(0, 0, -actionWidth, 0), Qt::AlignCenter,
            fontMetrics().elidedText(text_, Qt::ElideMiddle, line.width() - actionWidth));
        QFont underlined = font();
        underlined.setUnderline(true);
        painter.setFont(underlined);
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, action_);
    }

    void mouseReleaseEvent(QMouseEvent *event) override
    {
        if (event->button() != Qt::LeftButton || !rect().contains(event->pos()))
            return;
        deleteLater();
        if (const auto act = std::exchange(act_, nullptr))
            act();
    }

private:
    int widthOfAction() const
    {
        return action_.isEmpty() ? 0 : fontMetrics().horizontalAdvance(action_) + theme::margin();
    }

    void place()
    {
        const QWidget *window = parentWidget();
        // One pixel more than the text: its advance is rounded.
        const int wanted =
            fontMetrics().horizontalAdvance(text_) + 1 + widthOfAction() + 2 * theme::margin();
        const int width = qMin(wanted, window->width() - 2 * theme::margin());
        const int height = fontMetrics().height() + 2 * theme::spacing();
        const int below = int(window->height() * heightFromBottom);
        setGeometry((window->width() - width) / 2, window->height() - below - height, width,
                    height);
    }

    QString text_;
    QString action_;
    std::function<void()> act_;
    QTimer standing_;
    QVariantAnimation fading_;
};

ToastLine *lineIn(const QWidget *parent)
{
    // Only this file gives a widget that name.
    return static_cast<ToastLine *>(
        parent->window()->findChild<QWidget *>(toastName, Qt::FindDirectChildrenOnly));
}

void showLine(QWidget *parent, ToastLine *line)
{
    if (parent != parent->window())
        QObject::connect(parent, &QObject::destroyed, line, &QObject::deleteLater);
    line->show();
    line->raise();
    QAccessibleEvent announcement(line, QAccessible::Alert);
    QAccessible::updateAccessibility(&announcement);
}

} // namespace

void Toast::show(QWidget *parent, const QString &text, int ms)
{
    delete lineIn(parent);
    showLine(parent, new ToastLine(parent->window(), text.simplified(), ms));
}

void Toast::show(QWidget *parent, const QString &text, const QString &action,
                 std::function<void()> act)
{
    delete lineIn(parent);
    showLine(parent, new ToastLine(parent->window(), text.simplified(), clickableMs, action,
                                   std::move(act)));
}

QString Toast::currentText(const QWidget *parent)
{
    const ToastLine *line = lineIn(parent);
    return line ? line->text() : QString();
}
