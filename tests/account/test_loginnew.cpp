#include "app/account/credentials.h"
#include "app/account/loginnew.h"
#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "net/servicecall.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/inputs/customcheckboxnew.h"

#include <QDir>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>

namespace {

const QString dologin = "dologin"_s;
const QString success = "✓ 登录成功"_s;

/// The window as its user sees it.
struct Window
{
    Window() { showActive(&login); }

    template <typename Child> Child *child(const char *name)
    {
        return login.findChild<Child *>(QLatin1String(name));
    }
    LineEdit *account() { return child<LineEdit>("accountEdit"); }
    LineEdit *password() { return child<LineEdit>("passwordEdit"); }
    CustomCheckBoxNew *remember() { return child<CustomCheckBoxNew>("rememberPasswordBox"); }
    QPushButton *button() { return child<QPushButton>("loginButton"); }
    QPushButton *cancel() { return child<QPushButton>("cancelButton"); }

    void type(const QString &accountText, const QString &passwordText)
    {
        account()->clear();
        QTest::keyClicks(account(), accountText);
        password()->clear();
        QTest::keyClicks(password(), passwordText);
    }
    void press() { QTest::mouseClick(button(), Qt::LeftButton); }
    void logIn()
    {
        type("demo01"_s, "abc123"_s);
        press();
    }
    bool isIdle() { return button()->text() == "登录"_s && !cancel()->isVisible(); }

    LoginNew login;
    QSignalSpy loggedIn{&login, &LoginNew::loggedIn};
};

} // namespace

class TestLoginNew : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        demo_.reset();
        MessageBox::setScripted(true);
        MessageBox::takeShown();
        QFile::remove(CredentialsFile().path());
        QDir(AccountContext::dataFolder).removeRecursively();
        AccountContext::shopList.clear();
        AccountContext::shopId.clear();
        AccountContext::uid.clear();
    }

    void logsIn()
    {
        Window window;
        window.type("  demo01 "_s, "abc123 "_s);
        QTest::mouseClick(window.remember(), Qt::LeftButton);
        window.press();
        QVERIFY(window.cancel()->isVisible());
        QTRY_COMPARE(window.button()->text(), success);
        QVERIFY(!window.cancel()->isVisible());
        QCOMPARE(AccountContext::uid, "9001"_s);
        QCOMPARE(AccountContext::shopList.size(), 3);
        QCOMPARE(AccountContext::shopId, AccountContext::shopList.first().id);
        window.press(); // busy to the end

        QTRY_COMPARE(window.loggedIn.size(), 1);
        const auto reply = window.loggedIn.first().first().toJsonObject();
        QVERIFY(reply.contains("shop_data"_s));
        QVERIFY(!reply.contains("code"_s));
        QCOMPARE(K::instance()->loadLoginData(), reply);
        const Credentials saved = CredentialsFile().read();
        QCOMPARE(saved.account, "  demo01 "_s);
        QCOMPARE(saved.password, "abc123 "_s);
        QTRY_VERIFY(!window.login.isVisible());

        const QJsonArray requests = demo_.requests(dologin);
        QCOMPARE(requests.size(), 1);
        QVERIFY(requests.first()["body"_s].toString().startsWith(
            "username=demo01&password=abc123&token="_s));
    }

    void remembersOnlyWhenAsked()
    {
        demo_.misbehave(dologin, "missing-fields"_s, {{"fields"_s, QJsonArray{"shop_data"_s}}});
        AccountContext::shopId = "before"_s;
        Window window;
        window.logIn();
        QVERIFY(!QFile::exists(CredentialsFile().path())); // only a success writes it then
        QTRY_COMPARE(window.loggedIn.size(), 1);
        QCOMPARE(CredentialsFile().read().account, "demo01"_s);
        QCOMPARE(CredentialsFile().read().password, QString());
        QVERIFY(AccountContext::shopList.isEmpty());
        QCOMPARE(AccountContext::shopId, "before"_s);
    }

    void fillsInWhatWasSaved()
    {
        const QString password = "secret"_s;
        for (const bool remembered : {true, false}) {
            CredentialsFile().write({"demo02"_s, password, remembered});
            Window window;
            QCOMPARE(window.account()->text(), "demo02"_s);
            QCOMPARE(window.password()->text(), remembered ? password : QString());
            QCOMPARE(window.remember()->isChecked(), remembered);
            QTRY_VERIFY(window.password()->hasFocus());
        }
    }

    void isRefused()
    {
        Window window;
        window.type("demo01"_s, "wrong"_s);
        window.remember()->setFocus();
        keyToFocus(Qt::Key_Return); // logs in, and leaves the box as it is
        QVERIFY(!window.remember()->isChecked());
        QTRY_VERIFY(window.isIdle());
        const auto shown = MessageBox::takeShown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().kind, MessageBox::Kind::Warning);
        QCOMPARE(shown.first().title, "温馨提示"_s);
        QCOMPARE(shown.first().text, "账号或密码错误"_s);
        QVERIFY(window.loggedIn.isEmpty());
        QVERIFY(AccountContext::uid.isEmpty());

        window.type("demo01"_s, "abc123"_s);
        QTest::keyClick(window.password(), Qt::Key_Return);
        QTRY_COMPARE(window.button()->text(), success);
    }

    void asksForWhatIsMissing()
    {
        const QString noAccount = "请输入账号"_s;
        const QString blank = " \u3000"_s;
        for (const auto &[account, password, text] : {std::tuple(QString(), QString(), noAccount),
                                                      {blank, "abc123"_s, noAccount},
                                                      {"demo01"_s, blank, "请输入密码"_s}}) {
            Window window;
            window.account()->setText(account);
            window.password()->setText(password);
            QTest::keyClick(window.account(), Qt::Key_Enter);
            const auto shown = MessageBox::takeShown();
            QCOMPARE(shown.size(), 1);
            QCOMPARE(shown.first().text, text);
            QVERIFY(window.isIdle());
            QVERIFY(demo_.requests().isEmpty());
        }
    }

    void tellsThatNoServiceIsConfigured()
    {
        const QString address = std::exchange(AccountContext::baseUrl, QString());
        Window window;
        window.logIn();
        AccountContext::baseUrl = address;
        const auto shown = MessageBox::takeShown();
        QCOMPARE(shown.size(), 1);
        QVERIFY(shown.first().text.contains("尚未配置服务端地址"_s));
        QVERIFY(window.isIdle() && demo_.requests().isEmpty());
    }

    void sendsOneRequestAtATime()
    {
        demo_.hold(dologin);
        Window window;
        window.type("demo01"_s, "abc123"_s);
        QTest::mouseDClick(window.button(), Qt::LeftButton);
        QTest::keyClick(window.password(), Qt::Key_Return);
        QTRY_COMPARE(demo_.requests(dologin).size(), 1);
        window.press();
        demo_.release();
        QTRY_COMPARE(window.loggedIn.size(), 1);
        QCOMPARE(demo_.requests(dologin).size(), 1);
    }

    void staysSilentWithoutAnAnswer()
    {
        for (const char *kind : {"drop", "array"}) {
            demo_.misbehave(dologin, QLatin1String(kind));
            Window window;
            window.logIn();
            QVERIFY(!window.isIdle());
            QTRY_VERIFY2(window.isIdle(), kind);
            QVERIFY(MessageBox::takeShown().isEmpty());
            window.press();
            QTRY_COMPARE(window.button()->text(), success);
        }
    }

    void isCancelled()
    {
        demo_.hold(dologin, 2);
        Window window;
        window.logIn();
        QTRY_COMPARE(demo_.requests(dologin).size(), 1);
        QTest::keyClick(window.password(), Qt::Key_Escape);
        QVERIFY(window.isIdle());
        QVERIFY(!window.login.findChild<LatestCall *>()->isActive());
        window.press();
        QTRY_COMPARE(demo_.requests(dologin).size(), 2);
        QTest::mouseClick(window.cancel(), Qt::LeftButton);
        QVERIFY(window.isIdle());
        demo_.release();
        window.press(); // the answers given up do not disturb the next
        QTRY_COMPARE(window.button()->text(), success);
    }

    void opensNothingOnceClosed()
    {
        Window window;
        auto *shown = window.child<QTimer>("successShown");
        shown->setInterval(3600 * 1000);
        window.logIn();
        QTRY_VERIFY(shown->isActive());
        QTest::mouseClick(window.child<QWidget>("closeButton"), Qt::LeftButton);
        QVERIFY(!window.login.isVisible());
        QVERIFY(!shown->isActive());
    }

    void goesThroughTheFieldsByKeyboard()
    {
        Window window;
        QTRY_VERIFY(window.account()->hasFocus());
        QCOMPARE(tabOrder(7), "accountEdit passwordEdit showPasswordButton rememberPasswordBox"
                              " loginButton minimizeButton closeButton"_s);
    }

private:
    DemoClient demo_;
};

QTEST_MAIN(TestLoginNew)
#include "test_loginnew.moc"
