#pragma once

#include <QString>
#include <QVector>
#include <QWidget>

#include <functional>

class GlyphButton;
class PlainLabel;
class QPushButton;

/// What one line of a NoticeBar says. Texts are plain and stand to the letter.
struct Notice
{
    enum class Severity {
        Information, ///< something can be done
        Warning,     ///< something ought to be looked at
        Failure,     ///< something is wrong, and stays so until something is done
    };
    struct Action
    {
        QString text;
        std::function<void()> act; ///< may take its own line away; without one the action is greyed
    };

    QString id; ///< tells it from the other lines of its bar
    Severity severity = Severity::Information;
    QString text;
    QVector<Action> actions;
    /// What follows when the user has put the line away with its "×"; without one it has no "×".
    std::function<void()> dismissed;
};

/// One line of a NoticeBar: a mark whose shape and colour tell the severity, the text, and the
/// actions behind it as long as there is room, below it otherwise. The text wraps.
class NoticeLine : public QWidget
{
    Q_OBJECT

public:
    explicit NoticeLine(const Notice &notice, QWidget *parent = nullptr);

    /// Shows another notice of the same id; what has the focus keeps it where the actions stay.
    void setNotice(const Notice &notice);
    const Notice &notice() const { return notice_; }
    /// Its buttons, in the order in which they are reached.
    QVector<QWidget *> buttons() const;

    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void dismissClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showActions(const QVector<Notice::Action> &actions);
    int lineHeight() const;
    int textWidth() const;
    int actionsWidth() const;
    /// Returns the height that all takes within \a width; moves the parts there if asked to.
    int place(int width, bool moves) const;
    int placeActions(QPoint from, int right, bool isBelow, bool moves) const;

    Notice notice_;
    PlainLabel *label_;
    QVector<QPushButton *> buttons_;
    GlyphButton *dismiss_;
};
