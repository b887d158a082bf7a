#pragma once

#include <QSplitter>
#include <QString>

#include <functional>

/// Two parts of a window beside each other. How the width is shared is decided when there is a
/// width, which a window has only once it is laid out, and again whenever that changes; once the
/// user has moved the border, his share is kept for the tool and the account.
class SharedWidth : public QSplitter
{
    Q_OBJECT

public:
    /// Of how many pixels the first part has \a usual(all of them), while the user has not said.
    SharedWidth(QWidget *first, QWidget *second, std::function<int(int width)> usual);

    /// Takes what was kept for \a tool. Damaged settings count as none; the log tells of them.
    void open(const QString &tool);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void share();
    void keep();

    std::function<int(int width)> usual_;
    QString tool_;
    double share_ = 0; ///< of the first part, as the user left it; 0: not yet
};
