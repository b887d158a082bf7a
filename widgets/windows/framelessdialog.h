#pragma once

#include <QDialog>

class QVBoxLayout;

/// A dialog with the program's title bar and a thin border. Fill content(). Show it with open(); it
/// deletes itself when closed.
class FramelessDialog : public QDialog
{
    Q_OBJECT

public:
    FramelessDialog(QWidget *parent, const QString &title);

protected:
    /// Below the title bar.
    QVBoxLayout *content() const { return content_; }

    void paintEvent(QPaintEvent *event) override;

private:
    QVBoxLayout *content_;
};
