#pragma once

#include <QDialog>
#include <QPropertyAnimation>

#include <functional>

class LatestCall;
class LineEdit;
class LoadingOverlay;
class QPushButton;
class QVBoxLayout;
struct ServiceReply;

/// Has the user confirm the account before something that cannot be undone: asks for account and
/// password, and the service whether they are right. Changes nothing of the login. Show it with
/// open(); it deletes itself when closed. Interface thread.
class BatchLoginDialog : public QDialog
{
    Q_OBJECT

public:
    /// Called once, with true and what was typed, when the service has agreed; never otherwise.
    using Callback =
        std::function<void(bool success, const QString &account, const QString &password)>;

    BatchLoginDialog(QWidget *parent, Callback callback);

    void done(int result) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void addField(QVBoxLayout *layout, const QString &caption, LineEdit *field);
    void addButtons(QVBoxLayout *layout);
    void onLoginClicked();
    void onReply(const ServiceReply &reply, const QString &account, const QString &password);

    LineEdit *accountEdit_;
    LineEdit *passwordEdit_;
    QPushButton *loginButton_;
    LoadingOverlay *overlay_;
    LatestCall *request_;
    Callback callback_;
    QPropertyAnimation fade_;
};
