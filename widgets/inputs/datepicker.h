#pragma once

#include <QDate>
#include <QDateEdit>
#include <QPointer>

class GlyphButton;
class QCalendarWidget;

/// A date that is chosen from a calendar or typed, shown as "yyyy-MM-dd". Until one was chosen it
/// shows its prompt and holds no date. A click opens the calendar; so do F4, Alt+Down and the space
/// bar. Enter is the owner's.
class DatePicker : public QDateEdit
{
    Q_OBJECT

public:
    explicit DatePicker(const QString &prompt, QWidget *parent = nullptr);

    bool isChosen() const;
    /// Invalid until one was chosen.
    QDate chosenDate() const;
    void choose(const QDate &date);
    /// Back to the prompt.
    void reset();
    /// A small "×" that goes back to the prompt, there while a date is chosen; so does Delete.
    void setClearable();

    /// Opens the calendar: the date edit's own, or else a separate one.
    void openCalendar();
    const QString &prompt() const { return prompt_; }

signals:
    /// Enter was pressed.
    void entered();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void clicked();
    void showWhetherChosen();
    void prepare(QCalendarWidget *calendar);
    bool openOwnCalendar(QCalendarWidget *calendar);
    void openSeparateCalendar();
    void place(QWidget *popup) const;

    QString prompt_;
    GlyphButton *clearButton_ = nullptr; ///< only when it is clearable
    QPointer<QWidget> ownPopup_;
    QPointer<QWidget> separatePopup_;
    QDate dateBefore_; ///< what the calendar was opened with
};
