#include "widgets/inputs/datepicker.h"

#include "widgets/inputs/calendarhead.h"
#include "widgets/inputs/glyphbutton.h"
#include "widgets/inputs/inputs.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QAction>
#include <QCalendarWidget>
#include <QDebug>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QSignalBlocker>
#include <QStyle>
#include <QVBoxLayout>

namespace {

const QLocale chinese(QLocale::Chinese, QLocale::China);
/// Stands for "no date"; no studio has orders this old.
const QDate noDate(1970, 1, 1);
constexpr auto promptingProperty = "prompting";

} // namespace

DatePicker::DatePicker(const QString &prompt, QWidget *parent) : QDateEdit(parent), prompt_(prompt)
{
    setLocale(chinese);
    setDisplayFormat(QStringLiteral("yyyy-MM-dd"));
    setMinimumDate(noDate);
    setSpecialValueText(prompt);
    setPlainTip(this, prompt);
    setAccessibleName(prompt);
    setCalendarPopup(true);
    setStyleSheet(theme::dateEditStyle());
    setMinimumHeight(theme::controlHeight());
    setFocusPolicy(Qt::StrongFocus);
    lineEdit()->installEventFilter(this);
    auto *open = new QAction(QStringLiteral("打开日历"), this);
    open->setShortcut(Qt::ALT + Qt::Key_Down);
    open->setShortcutContext(Qt::WidgetShortcut);
    connect(open, &QAction::triggered, this, &DatePicker::openCalendar);
    addAction(open);
    connect(this, &QDateEdit::dateChanged, this, &DatePicker::showWhetherChosen);
    reset();
    showWhetherChosen();
}

bool DatePicker::isChosen() const
{
    return date() != noDate;
}

QDate DatePicker::chosenDate() const
{
    return isChosen() ? date() : QDate();
}

void DatePicker::choose(const QDate &date)
{
    setDate(date);
}

void DatePicker::reset()
{
    setDate(noDate);
}

void DatePicker::setClearable()
{
    clearButton_ = new GlyphButton(GlyphButton::Glyph::Clear, this);
    clearButton_->setToolTip(QStringLiteral("清空"));
    clearButton_->setAccessibleName(clearButton_->toolTip());
    clearButton_->setVisible(isChosen());
    connect(clearButton_, &QAbstractButton::clicked, this, &DatePicker::reset);
}

void DatePicker::resizeEvent(QResizeEvent *event)
{
    QDateEdit::resizeEvent(event);
    if (clearButton_) {
        clearButton_->move(lineEdit()->geometry().right() + 1 - clearButton_->width(),
                           (height() - clearButton_->height()) / 2);
    }
}

void DatePicker::showWhetherChosen()
{
    if (clearButton_)
        clearButton_->setVisible(isChosen());
    setProperty(promptingProperty, !isChosen());
    style()->unpolish(this);
    style()->polish(this);
}

void DatePicker::clicked()
{
    qDebug() << "日期选择器被点击，控件:" << this;
    openCalendar();
}

void DatePicker::openCalendar()
{
    dateBefore_ = date();
    if (QCalendarWidget *calendar = calendarWidget()) {
        qDebug() << "尝试使用内置日历控件";
        const bool shown = openOwnCalendar(calendar);
        qDebug() << "内置日历显示状态:" << shown;
        if (shown)
            return;
        qDebug() << "内置日历无法显示，创建独立日历弹窗";
    } else {
        qDebug() << "无法获取日历控件，创建独立日历";
    }
    openSeparateCalendar();
}

void DatePicker::prepare(QCalendarWidget *calendar)
{
    // What is set up here must not count as a choice.
    const QSignalBlocker blocker(calendar);
    calendar->setStyleSheet(theme::calendarStyle());
    calendar->setLocale(chinese);
    calendar->setFirstDayOfWeek(Qt::Monday);
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar->setMinimumSize(theme::calendarSize());
    calendar->setSelectedDate(isChosen() ? date() : QDate::currentDate());
    calendar->showSelectedDate();
    CalendarHead::of(calendar)->writeAgain();
}

bool DatePicker::openOwnCalendar(QCalendarWidget *calendar)
{
    prepare(calendar);
    QWidget *popup = calendar->window();
    if (popup != ownPopup_) {
        ownPopup_ = popup;
        popup->installEventFilter(this);
    }
    place(popup);
    popup->show();
    calendar->setFocus();
    return calendar->isVisible();
}

void DatePicker::openSeparateCalendar()
{
    delete separatePopup_;
    separatePopup_ = new QWidget(this, Qt::Popup);
    separatePopup_->setObjectName(QStringLiteral("separateCalendar"));
    separatePopup_->setAttribute(Qt::WA_DeleteOnClose);
    auto *calendar = new QCalendarWidget(separatePopup_);
    calendar->setDateRange(minimumDate(), maximumDate());
    prepare(calendar);
    auto *layout = new QVBoxLayout(separatePopup_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(calendar);
    const auto pick = [this](const QDate &date) {
        choose(date);
        separatePopup_->close();
    };
    connect(calendar, &QCalendarWidget::clicked, this, pick);
    connect(calendar, &QCalendarWidget::activated, this, pick);
    place(separatePopup_);
    separatePopup_->show();
    calendar->setFocus();
}

/// Below the input; above it, or further to the left, where the screen ends.
void DatePicker::place(QWidget *popup) const
{
    popup->adjustSize();
    QPoint corner = mapToGlobal(QPoint(0, height()));
    if (const QScreen *on = screen()) {
        const QRect area = on->availableGeometry();
        if (corner.y() + popup->height() > area.bottom())
            corner.setY(mapToGlobal(QPoint(0, 0)).y() - popup->height());
        corner.setX(qMax(area.left(), qMin(corner.x(), area.right() - popup->width())));
    }
    popup->move(corner);
}

bool DatePicker::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == lineEdit() && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton && isEnabled())
        clicked();
    // The date follows the arrow keys inside the date edit's own calendar; Escape takes that back.
    if (watched == ownPopup_ && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::Cancel)) {
        ownPopup_->close();
        setDate(dateBefore_);
        return true;
    }
    return QDateEdit::eventFilter(watched, event);
}

void DatePicker::mousePressEvent(QMouseEvent *event)
{
    // The base class would open the calendar by itself on the arrow.
    event->accept();
}

void DatePicker::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->pos()))
        clicked();
}

void DatePicker::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key == Qt::Key_F4 || key == Qt::Key_Space) {
        openCalendar();
        return;
    }
    if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        QDateEdit::keyPressEvent(event);
        emit entered();
        event->accept();
        return;
    }
    if (clearButton_ && key == Qt::Key_Delete) {
        reset();
        return;
    }
    if (!isChosen()) {
        // The prompt cannot be edited: typing begins with today's date.
        const bool edits = (!event->text().isEmpty() && event->text().front().isDigit()) ||
                           key == Qt::Key_Up || key == Qt::Key_Down;
        if (!edits) {
            event->ignore();
            return;
        }
        choose(QDate::currentDate());
        setSelectedSection(QDateTimeEdit::YearSection);
    }
    QDateEdit::keyPressEvent(event);
}

void DatePicker::wheelEvent(QWheelEvent *event)
{
    if (hasFocus() && isChosen())
        QDateEdit::wheelEvent(event);
    else
        event->ignore();
}

void DatePicker::paintEvent(QPaintEvent *event)
{
    QDateEdit::paintEvent(event);
    QPainter painter(this);
    paintDropArrow(&painter, rect(), isEnabled());
}
