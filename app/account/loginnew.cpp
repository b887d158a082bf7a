#include "app/account/loginnew.h"

#include "app/account/credentials.h"
#include "app/account/loginpanel.h"
#include "app/account/loginreply.h"
#include "app/context/accountcontext.h"
#include "app/context/installation.h"
#include "app/context/k.h"
#include "look/colours.h"
#include "net/formbody.h"
#include "net/servicecall.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"
#include "widgets/frame/macwindowmanager.h"
#include "widgets/frame/titlebar.h"
#include "widgets/inputs/customcheckboxnew.h"
#include "widgets/inputs/inputs.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"
#include "widgets/windows/spinner.h"
#include "widgets/windows/windowkeys.h"

#include <QDebug>
#include <QDir>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>
#include <QWindowStateChangeEvent>

namespace {

constexpr int fadeInMs = 300;
constexpr int fadeOutMs = 500;
constexpr int successShownMs = 1000;

QString captionStyle(QRgb colour)
{
    return QStringLiteral("color: %1; font-size: %2px;")
        .arg(colours::css(colour), K::scaledPxString(12));
}

QString idleText()
{
    return QStringLiteral("登录");
}

QString noServiceText()
{
    return QStringLiteral("尚未配置服务端地址，无法登录。\n请在 %1 的 [service] 一节中写入 url = "
                          "https://…，或设置环境变量 TESSAVO_SERVICE_URL，然后重新启动程序。")
        .arg(QDir::toNativeSeparators(Installation::standardFile()));
}

QLabel *centredLabel(const QString &text, QWidget *parent)
{
    auto *label = new PlainLabel(text, parent);
    label->setAlignment(Qt::AlignCenter);
    label->setStyleSheet(captionStyle(colours::muted));
    return label;
}

QLabel *logoLabel(QWidget *parent)
{
    auto *label = new PlainLabel(parent);
    label->setObjectName(QStringLiteral("logoLabel"));
    label->setAlignment(Qt::AlignCenter);
    const QPixmap logo(QStringLiteral(":/login/image/login/logo1.png"));
    if (!logo.isNull()) {
        const qreal density = label->devicePixelRatioF();
        QPixmap scaled =
            logo.scaledToWidth(qRound(K::scaledPx(200) * density), Qt::SmoothTransformation);
        scaled.setDevicePixelRatio(density);
        label->setPixmap(scaled);
    }
    return label;
}

} // namespace

LoginNew::LoginNew(QWidget *parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint)
    , titleBar_(new TitleBar(this))
    , accountCaption_(new PlainLabel(QStringLiteral("账号"), this))
    , accountEdit_(new LineEdit(this))
    , passwordCaption_(new PlainLabel(QStringLiteral("密码"), this))
    , passwordEdit_(new LineEdit(this))
    , rememberBox_(new CustomCheckBoxNew(QStringLiteral("记住密码"), this))
    , buttonBlock_(new QWidget(this))
    , loginButton_(new QPushButton(idleText(), buttonBlock_))
    , busyRow_(new QWidget(buttonBlock_))
    , cancelButton_(new QPushButton(QStringLiteral("取消"), busyRow_))
    , request_(new LatestCall(this))
    , successShown_(this)
    , fade_(this, "windowOpacity")
{
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Tessavo"));
    setStyleSheet(theme::windowStyle());

    titleBar_->setPlain(true);
    titleBar_->setMaximizable(false);
    addKeyList(this);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(K::scaledPx(30), K::scaledPx(40), K::scaledPx(30), K::scaledPx(40));
    layout->setSpacing(0);
    layout->addWidget(titleBar_);
    layout->addStretch(2);
    layout->addWidget(logoLabel(this));
    layout->addSpacing(K::scaledPx(10)); // stays when a low screen takes the stretches
    layout->addStretch(3);
    buildFields(layout);
    layout->addSpacing(K::scaledPx(40));
    buildButtons(layout);
    layout->addStretch(2);
    auto *version = centredLabel(QStringLiteral("版本号:") + AccountContext::appVersion, this);
    version->setObjectName(QStringLiteral("versionLabel"));
    layout->addWidget(version);
    placeOnScreen();

    orderTabs();

    fade_.setDuration(fadeInMs);
    fade_.setStartValue(0.0);
    fade_.setEndValue(1.0);
    fade_.setEasingCurve(QEasingCurve::OutCubic);
    successShown_.setObjectName(QStringLiteral("successShown"));
    successShown_.setSingleShot(true);
    successShown_.setInterval(successShownMs);

    connect(&successShown_, &QTimer::timeout, this, &LoginNew::handOver);
    connect(titleBar_, &TitleBar::minimizeRequested, this, &LoginNew::onMinimizeClicked);
    connect(titleBar_, &TitleBar::closeRequested, this, &LoginNew::onCloseClicked);
    MacWindowManager *manager = MacWindowManager::instance();
    manager->watch(this);
    connect(manager, &MacWindowManager::windowRestored, this, &LoginNew::onWindowRestored);

    fillFromSavedCredentials();
}

LoginNew::~LoginNew()
{
    // A field that dies with the focus loses it first, when nothing of this class is left to hear
    // it.
    accountEdit_->disconnect(this);
    passwordEdit_->disconnect(this);
}

void LoginNew::buildFields(QVBoxLayout *layout)
{
    accountEdit_->setObjectName(QStringLiteral("accountEdit"));
    accountEdit_->setPlaceholderText(QStringLiteral("请输入账号"));
    accountEdit_->setClearable(true);
    passwordEdit_->setObjectName(QStringLiteral("passwordEdit"));
    passwordEdit_->setPlaceholderText(QStringLiteral("请输入密码"));
    passwordEdit_->setPassword(true);
    rememberBox_->setObjectName(QStringLiteral("rememberPasswordBox"));

    addField(layout, accountCaption_, accountEdit_);
    layout->addSpacing(K::scaledPx(14));
    addField(layout, passwordCaption_, passwordEdit_);
    layout->addSpacing(K::scaledPx(12));
    layout->addWidget(rememberBox_, 0, Qt::AlignLeft);
}

void LoginNew::addField(QVBoxLayout *layout, QLabel *caption, LineEdit *field)
{
    caption->setBuddy(field);
    colourCaptionOf(field, colours::heading);
    field->setFixedHeight(K::scaledPx(38));
    layout->addWidget(caption);
    layout->addSpacing(K::scaledPx(6));
    layout->addWidget(field);
    connect(field, &LineEdit::focused, this, [this, field] { onInputFocused(field); });
    connect(field, &LineEdit::unfocused, this, [this, field] { onInputUnfocused(field); });
}

void LoginNew::buildButtons(QVBoxLayout *layout)
{
    loginButton_->setObjectName(QStringLiteral("loginButton"));
    loginButton_->setFixedHeight(K::scaledPx(42));
    loginButton_->setCursor(Qt::PointingHandCursor);
    // On the block: the look of the success is set on the button itself, on top of this one.
    buttonBlock_->setStyleSheet(theme::primaryButtonStyle());
    auto *block = new QVBoxLayout(buttonBlock_);
    block->setContentsMargins(0, 0, 0, 0);
    block->setSpacing(theme::spacing());
    block->addWidget(loginButton_);
    block->addWidget(busyRow_);
    layout->addWidget(buttonBlock_);

    cancelButton_->setObjectName(QStringLiteral("cancelButton"));
    cancelButton_->setStyleSheet(theme::secondaryButtonStyle());
    auto *spinner = new Spinner(busyRow_);
    spinner->setFixedSize(K::scaledPx(18), K::scaledPx(18));
    auto *row = new QHBoxLayout(busyRow_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(theme::spacing());
    row->addStretch();
    row->addWidget(spinner);
    row->addWidget(cancelButton_);
    row->addStretch();
    QSizePolicy policy = busyRow_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    busyRow_->setSizePolicy(policy);
    busyRow_->hide();

    connect(loginButton_, &QPushButton::clicked, this, &LoginNew::onLoginClicked);
    connect(cancelButton_, &QPushButton::clicked, this, &LoginNew::onCancelClicked);
}

void LoginNew::orderTabs()
{
    setTabOrder(accountEdit_, passwordEdit_);
    QWidget *before = passwordEdit_->lastInTabOrder();
    for (QWidget *next :
         std::initializer_list<QWidget *>{rememberBox_, loginButton_, cancelButton_,
                                          titleBar_->minimizeButton(), titleBar_->closeButton()}) {
        setTabOrder(before, next);
        before = next;
    }
}

void LoginNew::placeOnScreen()
{
    QSize size(K::scaledPx(381), K::scaledPx(551));
    if (const QScreen *screen = QGuiApplication::primaryScreen()) {
        const QRect available = screen->availableGeometry();
        // Small laptops at 200 % are lower than the window; its gaps give way.
        size = size.boundedTo(available.size()).expandedTo(layout()->minimumSize());
        QRect place(QPoint(), size);
        place.moveCenter(available.center());
        move(place.topLeft());
    }
    setFixedSize(size);
}

void LoginNew::fillFromSavedCredentials()
{
    const Credentials saved = CredentialsFile().read();
    accountEdit_->setText(saved.account);
    if (saved.remembered) {
        passwordEdit_->setText(saved.password);
        rememberBox_->setChecked(true);
    }
    (saved.account.isEmpty() ? accountEdit_ : passwordEdit_)->setFocus();
}

void LoginNew::saveCredentials() const
{
    // Not being able to remember is no reason not to log in.
    CredentialsFile().write(
        {accountEdit_->text(), passwordEdit_->text(), rememberBox_->isChecked()});
}

void LoginNew::setBusy(bool busy)
{
    busy_ = busy ? 1 : 0;
    loginButton_->setText(busy ? QStringLiteral("登录中...") : idleText());
    loginButton_->setCursor(busy ? Qt::BusyCursor : Qt::PointingHandCursor);
    // Read-only rather than disabled: the focus stays where the user left it.
    accountEdit_->setReadOnly(busy);
    passwordEdit_->setReadOnly(busy);
    if (!busy && cancelButton_->hasFocus())
        loginButton_->setFocus();
    busyRow_->setVisible(busy);
}

void LoginNew::onLoginClicked()
{
    if (busy_)
        return;
    const QString account = accountEdit_->text().trimmed();
    const QString password = passwordEdit_->text().trimmed();
    if (account.isEmpty()) {
        accountEdit_->setFocus();
        MessageBox::warning(this, QStringLiteral("请输入账号"));
        return;
    }
    if (password.isEmpty()) {
        passwordEdit_->setFocus();
        MessageBox::warning(this, QStringLiteral("请输入密码"));
        return;
    }
    if (AccountContext::baseUrl.isEmpty()) {
        MessageBox::warning(this, noServiceText());
        return;
    }
    if (rememberBox_->isChecked())
        saveCredentials();
    setBusy(true);
    FormBody body;
    body.addRaw(QStringLiteral("username"), account).addRaw(QStringLiteral("password"), password);
    request_->start(QStringLiteral("&m=public&a=dologin"), body.bytes(),
                    [this](const ServiceReply &reply) { readReply(reply); });
}

void LoginNew::readReply(const ServiceReply &reply)
{
    if (reply.isSuccess()) {
        QJsonObject object = reply.object;
        object.remove(QStringLiteral("code"));
        succeed(object);
        return;
    }
    setBusy(false);
    if (reply.outcome == ServiceReply::Outcome::Refused) {
        MessageBox::warning(this, reply.message.isEmpty()
                                      ? QStringLiteral("服务拒绝了请求，但没有说明原因")
                                      : reply.message);
    } else if (reply.outcome == ServiceReply::Outcome::CertificateRefused) {
        showCertificateRefused(this, reply.message);
    }
}

void LoginNew::succeed(const QJsonObject &reply)
{
    busyRow_->hide();
    loginButton_->setText(QStringLiteral("✓ 登录成功"));
    buttonBlock_->setStyleSheet(
        theme::buttonStyle(colours::loginSucceeded, colours::loginSucceeded));
    loginButton_->setStyleSheet(theme::loginSucceededStyle());
    loginButton_->unsetCursor();
    K::instance()->saveLoginData(reply);
    enterAccount(LoginReply::read(reply));
    saveCredentials();
    reply_ = reply;
    successShown_.start();
}

void LoginNew::handOver()
{
    fade_.stop();
    fade_.setDuration(fadeOutMs);
    fade_.setStartValue(1.0);
    fade_.setEndValue(0.0);
    fade_.setEasingCurve(QEasingCurve::InCubic);
    connect(&fade_, &QPropertyAnimation::finished, this, &LoginNew::close);
    fade_.start();
    emit loggedIn(reply_);
}

void LoginNew::onCancelClicked()
{
    if (!request_->isActive())
        return;
    request_->cancel();
    setBusy(false);
}

void LoginNew::onCloseClicked()
{
    close();
}

void LoginNew::onMinimizeClicked()
{
    MacWindowManager::instance()->minimizeOrFallBack(this);
}

void LoginNew::colourCaptionOf(const LineEdit *field, QRgb colour)
{
    QLabel *caption = field == accountEdit_ ? accountCaption_ : passwordCaption_;
    caption->setStyleSheet(captionStyle(colour));
}

void LoginNew::onInputFocused(const LineEdit *field)
{
    colourCaptionOf(field, colours::accent);
}

void LoginNew::onInputUnfocused(const LineEdit *field)
{
    colourCaptionOf(field, colours::heading);
}

void LoginNew::onWindowRestored()
{
    qDebug() << "LoginNew: 收到窗口恢复信号";
}

void LoginNew::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange)
        return;
    const Qt::WindowStates before = static_cast<QWindowStateChangeEvent *>(event)->oldState();
    qDebug() << "窗口状态变化: 从" << before << "到" << windowState();
    if (before.testFlag(Qt::WindowMinimized) && !isMinimized())
        qDebug() << "从最小化恢复";
}

void LoginNew::closeEvent(QCloseEvent *event)
{
    // Whoever closes the window does not want what an answer still under way would open.
    request_->cancel();
    successShown_.stop();
    QWidget::closeEvent(event);
}

void LoginNew::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Escape:
        onCancelClicked();
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter: {
        auto *button = qobject_cast<QAbstractButton *>(focusWidget());
        if (button && !button->isCheckable())
            button->click();
        else
            onLoginClicked();
        break;
    }
    default:
        QWidget::keyPressEvent(event);
    }
}

void LoginNew::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // The window system moves windows best; where it does not, we follow the mouse.
    if (!windowHandle() || !windowHandle()->startSystemMove())
        grabbedAt_ = event->pos();
}

void LoginNew::mouseMoveEvent(QMouseEvent *event)
{
    if (grabbedAt_)
        move(event->globalPos() - *grabbedAt_);
}

void LoginNew::mouseReleaseEvent(QMouseEvent *)
{
    grabbedAt_.reset();
}

void LoginNew::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintLoginPanel(&painter, this);
}

void LoginNew::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    if (!event->spontaneous())
        fade_.start();
}
