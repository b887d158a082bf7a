#pragma once

#include <QPoint>
#include <QWidget>

class QAction;
class QLabel;
class QToolButton;

/// Title, "−" and "×" of a frameless window. The title is elided where it is too long, and whole in
/// its tool tip. Dragging it moves the window it lies in, a double
/// click maximises and restores that window. The buttons only announce: what minimising and closing
/// mean is their owner's. Can be laid into any window; without its own background when asked for.
class TitleBar : public QWidget
{
    Q_OBJECT

public:
    explicit TitleBar(QWidget *parent = nullptr);

    void setTitle(const QString &title);
    /// What stands behind the title: the tool's card, where the title is another, and the branch in
    /// which the window acts; each empty at first and when there is none.
    void setCard(const QString &card);
    void setBranch(const QString &branch);
    /// False: a double click does nothing. True at first.
    void setMaximizable(bool maximizable);
    /// False hides "−", as dialogs want it.
    void setMinimizable(bool minimizable);
    /// True: for windows that paint their own background and show no title.
    void setPlain(bool plain);

    /// Puts \a action before "−", by its text. The keyboard has the action's own key.
    void showAction(QAction *action);

    /// The focusable buttons, for the tab order of the window.
    QWidget *minimizeButton() const;
    QWidget *closeButton() const;

signals:
    void minimizeRequested();
    void closeRequested();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool event(QEvent *event) override;

private:
    enum class Drag { None, Pressed, Moving };

    QToolButton *addButton(const QString &text, const QString &name, const QString &meaning);
    void startMoving(const QPoint &cursor);
    void showTitle();
    QString wholeTitle() const;

    QLabel *titleLabel_;
    QToolButton *minimizeButton_;
    QToolButton *closeButton_;
    QString title_;
    QString card_;
    QString branch_;
    bool maximizable_ = true;
    Drag drag_ = Drag::None;
    QPoint pressedAt_;    ///< global
    QPoint windowOrigin_; ///< where the window lay when moving it ourselves began
};
