#pragma once

#include <QPointer>
#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;
class Spinner;

/// Covers its parent while something runs: says what, shows how far, and lets the user cancel with
/// the button "取消" or Escape. Mouse and keyboard do not reach what is covered; the focus comes
/// back when the overlay goes. Over a FramelessWindow the title bar stays free, so that the window
/// can still be moved, minimised and closed. Hidden at first.
class LoadingOverlay : public QWidget
{
    Q_OBJECT

public:
    enum class Result { Success, Failure };

    explicit LoadingOverlay(QWidget *parent);

    /// Appears, or changes the text; without progress until setProgress() is called.
    void showText(const QString &text, bool cancellable = true);
    /// Changes the text alone; progress and the way to cancel stay.
    void setText(const QString &text);
    /// Of any unit; a \a total of 0 or less means that the end is not known.
    void setProgress(qint64 done, qint64 total);
    /// Shows how it ended for \a ms and then goes.
    void showResult(const QString &text, Result result, int ms = 1500);
    void hideOverlay();

    QString text() const;

signals:
    /// Once per showText(). The overlay stays until its owner hides it.
    void cancelled();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void appear();
    void cover();
    void cancel();
    void keepFocus(const QWidget *now);

    QWidget *panel_;
    Spinner *spinner_;
    QLabel *mark_;
    QLabel *label_;
    QProgressBar *bar_;
    QPushButton *cancelButton_;
    QTimer goAway_;
    QPointer<QWidget> focusBefore_;
    bool cancellable_ = false;
};
