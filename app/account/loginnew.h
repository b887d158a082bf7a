#pragma once

#include <QJsonObject>
#include <QPoint>
#include <QPropertyAnimation>
#include <QRgb>
#include <QTimer>
#include <QWidget>

#include <optional>

class CustomCheckBoxNew;
class LatestCall;
class LineEdit;
class QLabel;
class QPushButton;
class QVBoxLayout;
class TitleBar;
struct ServiceReply;

/// The program's first window: asks for account and password, logs in, and fills the account
/// context. What comes after it is its owner's: see loggedIn(). Interface thread.
class LoginNew : public QWidget
{
    Q_OBJECT

public:
    explicit LoginNew(QWidget *parent = nullptr);
    ~LoginNew() override;

signals:
    /// The account context is filled, and the user has had a second to see the success. \a reply is
    /// the service's without its "code". The window now fades out and closes by itself.
    void loggedIn(const QJsonObject &reply);

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;

private slots:
    void onLoginClicked();
    void onCancelClicked();
    void onCloseClicked();
    void onMinimizeClicked();
    void onInputFocused(const LineEdit *field);
    void onInputUnfocused(const LineEdit *field);
    void onWindowRestored();

private:
    void buildFields(QVBoxLayout *layout);
    void buildButtons(QVBoxLayout *layout);
    void addField(QVBoxLayout *layout, QLabel *caption, LineEdit *field);
    void colourCaptionOf(const LineEdit *field, QRgb colour);
    void orderTabs();
    void placeOnScreen();
    void fillFromSavedCredentials();
    void saveCredentials() const;

    void setBusy(bool busy);
    void readReply(const ServiceReply &reply);
    void succeed(const QJsonObject &reply);
    void handOver();

    TitleBar *titleBar_;
    QLabel *accountCaption_;
    LineEdit *accountEdit_;
    QLabel *passwordCaption_;
    LineEdit *passwordEdit_;
    CustomCheckBoxNew *rememberBox_;
    QWidget *buttonBlock_;
    QPushButton *loginButton_;
    QWidget *busyRow_; ///< what is to be seen only while a request is in flight
    QPushButton *cancelButton_;

    LatestCall *request_;
    int busy_ = 0; ///< 1 from pressing the button to a failure; after a success to the end
    QJsonObject reply_;
    QTimer successShown_;
    QPropertyAnimation fade_;
    std::optional<QPoint> grabbedAt_; ///< where the mouse holds the window, in its coordinates
};
