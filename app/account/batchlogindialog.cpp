#include "app/account/batchlogindialog.h"

#include "app/account/credentials.h"
#include "app/account/loginpanel.h"
#include "app/context/k.h"
#include "look/colours.h"
#include "net/formbody.h"
#include "net/servicecall.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/boxes/toast.h"
#include "widgets/inputs/inputs.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/loadingoverlay.h"
#include "widgets/windows/windowkeys.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QShowEvent>
#include <QVBoxLayout>

#include <utility>

namespace {

constexpr int fadeMs = 200;
constexpr int widthPx = 340;
constexpr int marginPx = 26;
constexpr int fieldHeightPx = 36;
constexpr int headingPx = 18;

} // namespace

BatchLoginDialog::BatchLoginDialog(QWidget *parent, Callback callback)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint)
    , accountEdit_(new LineEdit(this))
    , passwordEdit_(new LineEdit(this))
    , loginButton_(new QPushButton(QStringLiteral("登录"), this))
    , overlay_(nullptr)
    , request_(new LatestCall(this))
    , callback_(std::move(callback))
    , fade_(this, "windowOpacity")
{
    const QString title = QStringLiteral("账号验证");
    setWindowTitle(title);
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_DeleteOnClose);
    setStyleSheet(theme::windowStyle());
    addKeyList(this);

    auto *heading = new PlainLabel(title, this);
    heading->setAlignment(Qt::AlignCenter);
    heading->setStyleSheet(
        QStringLiteral("color: %1; font-size: %2px; font-weight: 600;")
            .arg(colours::css(colours::dialogHeading), K::scaledPxString(headingPx)));
    accountEdit_->setObjectName(QStringLiteral("accountEdit"));
    accountEdit_->setClearable(true);
    passwordEdit_->setObjectName(QStringLiteral("passwordEdit"));
    passwordEdit_->setPassword(true);

    auto *layout = new QVBoxLayout(this);
    const int margin = K::scaledPx(marginPx);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->setSpacing(theme::spacing());
    layout->addWidget(heading);
    layout->addSpacing(theme::spacing());
    addField(layout, QStringLiteral("账号"), accountEdit_);
    addField(layout, QStringLiteral("密码"), passwordEdit_);
    layout->addSpacing(theme::margin());
    addButtons(layout);
    setFixedWidth(K::scaledPx(widthPx));

    overlay_ = new LoadingOverlay(this);
    connect(overlay_, &LoadingOverlay::cancelled, this, [this] {
        request_->cancel();
        overlay_->hideOverlay();
    });
    fade_.setDuration(fadeMs);
    fade_.setStartValue(0.0);
    fade_.setEndValue(1.0);

    const Credentials saved = CredentialsFile().read();
    accountEdit_->setText(saved.account);
    (saved.account.isEmpty() ? accountEdit_ : passwordEdit_)->setFocus();
}

void BatchLoginDialog::addField(QVBoxLayout *layout, const QString &caption, LineEdit *field)
{
    auto *label = new PlainLabel(caption, this);
    label->setBuddy(field);
    field->setPlaceholderText(QStringLiteral("请输入") + caption);
    field->setFixedHeight(K::scaledPx(fieldHeightPx));
    field->setStyleSheet(theme::translucentInputStyle());
    field->installEventFilter(this);
    layout->addWidget(label);
    layout->addWidget(field);
}

void BatchLoginDialog::addButtons(QVBoxLayout *layout)
{
    auto *cancel = new QPushButton(QStringLiteral("取消"), this);
    cancel->setObjectName(QStringLiteral("cancelButton"));
    cancel->setStyleSheet(theme::translucentButtonStyle());
    cancel->setAutoDefault(false);
    loginButton_->setObjectName(QStringLiteral("loginButton"));
    loginButton_->setStyleSheet(theme::gradientButtonStyle());
    loginButton_->setDefault(true);
    auto *row = new QHBoxLayout;
    row->setSpacing(theme::margin());
    row->addWidget(cancel, 1);
    row->addWidget(loginButton_, 1);
    layout->addLayout(row);
    setTabOrder(accountEdit_, passwordEdit_);
    setTabOrder(passwordEdit_->lastInTabOrder(), cancel);
    setTabOrder(cancel, loginButton_);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(loginButton_, &QPushButton::clicked, this, &BatchLoginDialog::onLoginClicked);
}

void BatchLoginDialog::onLoginClicked()
{
    if (request_->isActive())
        return;
    const QString account = accountEdit_->text();
    const QString password = passwordEdit_->text();
    for (LineEdit *field : {accountEdit_, passwordEdit_}) {
        if (field->text().isEmpty()) {
            field->setFocus();
            Toast::show(this, field->placeholderText());
            return;
        }
    }
    overlay_->showText(QStringLiteral("验证中..."));
    FormBody body;
    body.addRaw(QStringLiteral("username"), account).addRaw(QStringLiteral("password"), password);
    request_->start(QStringLiteral("&m=public&a=dologin"), body.bytes(),
                    [this, account, password](const ServiceReply &reply) {
                        onReply(reply, account, password);
                    });
}

void BatchLoginDialog::onReply(const ServiceReply &reply, const QString &account,
                               const QString &password)
{
    overlay_->hideOverlay();
    switch (reply.outcome) {
    case ServiceReply::Outcome::Success:
        if (const Callback callback = std::exchange(callback_, nullptr))
            callback(true, account, password);
        accept();
        break;
    case ServiceReply::Outcome::Refused:
        passwordEdit_->setFocus();
        passwordEdit_->selectAll();
        showServiceFailure(this, reply, reply.message);
        break;
    case ServiceReply::Outcome::CertificateRefused:
        showCertificateRefused(this, reply.message);
        break;
    case ServiceReply::Outcome::NoAnswer:
        Toast::show(this, QStringLiteral("验证失败!"));
        break;
    }
}

void BatchLoginDialog::done(int result)
{
    request_->cancel();
    QDialog::done(result);
}

/// The frames of the fields are painted by the dialog and follow the focus.
bool BatchLoginDialog::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    return QDialog::eventFilter(watched, event);
}

void BatchLoginDialog::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintLoginPanel(&painter, this);
    painter.setBrush(colours::toColor(colours::surface));
    for (const LineEdit *field : {accountEdit_, passwordEdit_}) {
        const bool focused = field->hasFocus();
        const qreal width = focused ? theme::focusWidth() : theme::hairline();
        painter.setPen(QPen(colours::toColor(focused ? colours::accent : colours::outline), width));
        painter.drawRoundedRect(
            QRectF(field->geometry()).adjusted(-width / 2, -width / 2, width / 2, width / 2),
            theme::radius(), theme::radius());
    }
}

void BatchLoginDialog::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!event->spontaneous())
        fade_.start();
}
