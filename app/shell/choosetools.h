#pragma once

#include "app/shell/toolwindows.h"
#include "widgets/windows/framelesswindow.h"

#include <QJsonObject>
#include <QString>
#include <QVector>

class QPushButton;
class QVBoxLayout;

/// The launcher: one card per tool. A double click opens the tool's window, or brings it to the
/// front; there is at most one window per card. The order browser and the history have
/// buttons below the cards.
/// Tool windows belong to themselves: they outlive the launcher and are deleted when they close.
class ChooseTools : public FramelessWindow
{
    Q_OBJECT

public:
    /// \a tools: for tests; otherwise all of the program.
    explicit ChooseTools(QWidget *parent = nullptr, const QVector<Tool> &tools = allTools());

    /// The service's reply to the login, without its "code".
    void setLoginReply(const QJsonObject &reply) { loginReply_ = reply; }
    const QJsonObject &loginReply() const { return loginReply_; }

private slots:
    void onToolClicked();
    void onToolDoubleClicked(const QString &name);
    void onCloseButtonClicked();
    void onMinimizeButtonClicked();

private:
    QWidget *header() const;
    QWidget *cards();
    QPushButton *footButton(const Tool &tool, const QString &name, const QString &keys);
    QWidget *footer();
    void placeOnScreen();

    QVector<Tool> tools_;
    std::shared_ptr<ToolWindows> windows_;
    QJsonObject loginReply_;
};
