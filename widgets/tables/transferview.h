#pragma once

#include "files/transferprogress.h"

#include <QWidget>

class QLabel;
class QProgressBar;
class QPushButton;

/// How far a run is: a line of text and a bar, and below them what is being worked on. Hidden until
/// there is something to show. Every tool tells its runs by one.
class TransferView : public QWidget
{
    Q_OBJECT

public:
    explicit TransferView(QWidget *parent = nullptr);

    void showProgress(const TransferProgress &progress, const TransferRate &rate);
    void showPaused(const TransferProgress &progress);
    /// All is copied; \a text tells what is still going on.
    void showRest(const QString &text);
    /// How many files have failed so far; those are offered to be looked at.
    void setFailures(int count);

signals:
    void failuresClicked();

private:
    void showLine(const QString &text, const QString &current, int steps);

    QLabel *label_;
    QLabel *current_;
    QProgressBar *bar_;
    QPushButton *failures_;
};

/// Gives the button that starts and stops a run its text and look of the moment. Ctrl+Enter presses
/// it, and its tool tip says so.
void showRunButton(QPushButton *button, const QString &text, const QString &style);
