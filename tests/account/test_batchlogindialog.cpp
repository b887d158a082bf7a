#include "app/account/batchlogindialog.h"
#include "app/account/credentials.h"
#include "app/context/accountcontext.h"
#include "tests/support/datarows.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/windows/loadingoverlay.h"

#include <QPushButton>

namespace {

const QString dologin = "dologin"_s;

} // namespace

/// The dialog by mouse and keys, against the demo service.
class TestBatchLoginDialog : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        demo_.reset();
        MessageBox::setScripted(true);
        MessageBox::takeShown();
        QFile::remove(CredentialsFile().path());
        AccountContext::uid = "9001"_s;
        confirmed_.clear();
        showActive(&owner_);
    }
    void cleanup()
    {
        demo_.release();
        delete dialog_;
    }

    void confirms()
    {
        CredentialsFile().write({"demo01"_s, "secret"_s, true});
        open();
        QCOMPARE(account()->text(), "demo01"_s);
        QCOMPARE(password()->text(), QString()); // what is to be proved is not filled in
        QTRY_COMPARE(focusName(), "passwordEdit"_s);
        QTest::keyClicks(password(), "abc123"_s);
        QTest::keyClick(password(), Qt::Key_Return);
        QCOMPARE(overlay()->text(), "验证中..."_s);
        QTRY_VERIFY(!dialog_);
        QCOMPARE(confirmed_, QStringList({"demo01 abc123"_s}));
        QVERIFY(demo_.requests(dologin).first()["body"_s].toString().startsWith(
            "username=demo01&password=abc123&token="_s));
        QCOMPARE(AccountContext::uid, "9001"_s);
        QVERIFY(AccountContext::shopList.isEmpty());
    }

    void aWrongPasswordIsToldAndCanBeMended()
    {
        open();
        QCOMPARE(account()->text(), QString());
        type("demo01"_s, "wrong"_s);
        press("loginButton");
        QTRY_VERIFY(!overlay()->isVisible());
        const auto shown = MessageBox::takeShown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().text, "账号或密码错误"_s);
        QCOMPARE(shown.first().title, "温馨提示"_s);
        QVERIFY(dialog_->isVisible() && confirmed_.isEmpty());
        type("demo01"_s, "abc123"_s);
        press("loginButton");
        QTRY_VERIFY(!dialog_);
        QCOMPARE(confirmed_.size(), 1);
    }

    void withoutAnAnswer()
    {
        open();
        type("demo01"_s, "abc123"_s);
        for (const char *kind : {"drop", "array"}) {
            demo_.misbehave(dologin, QLatin1String(kind));
            press("loginButton");
            QTRY_VERIFY2(!overlay()->isVisible(), kind);
            QCOMPARE(Toast::currentText(dialog_), "验证失败!"_s);
            QVERIFY(dialog_->isVisible() && confirmed_.isEmpty());
            QVERIFY(MessageBox::takeShown().isEmpty());
        }
    }

    void asksForWhatIsMissing()
    {
        open();
        press("loginButton");
        QCOMPARE(Toast::currentText(dialog_), "请输入账号"_s);
        type("demo01"_s, QString());
        press("loginButton");
        QCOMPARE(Toast::currentText(dialog_), "请输入密码"_s);
        QVERIFY(demo_.requests(dologin).isEmpty());
    }

    void cancels()
    {
        demo_.hold(dologin);
        open();
        type("demo01"_s, "abc123"_s);
        press("loginButton");
        QTRY_COMPARE(demo_.held(), 1);
        QTest::keyClick(overlay(), Qt::Key_Escape); // the waiting first
        QTRY_VERIFY(!overlay()->isVisible());
        QVERIFY(dialog_->isVisible());
        QTest::keyClick(dialog_, Qt::Key_Escape);
        QTRY_VERIFY(!dialog_);
        demo_.release();
        open();
        press("cancelButton");
        QTRY_VERIFY(!dialog_);
        QVERIFY(confirmed_.isEmpty());
    }

    void goesThroughTheFieldsByKeyboard()
    {
        open();
        QTRY_COMPARE(focusName(), "accountEdit"_s);
        QCOMPARE(tabOrder(5),
                 "accountEdit passwordEdit showPasswordButton cancelButton loginButton"_s);
        // What is typed is not to be taken for what only asks for it.
        const QPalette shown = password()->palette();
        QVERIFY(shown.color(QPalette::PlaceholderText) != shown.color(QPalette::Text));
    }

private:
    void open()
    {
        dialog_ = new BatchLoginDialog(
            &owner_, [this](bool success, const QString &account, const QString &password) {
                if (success)
                    confirmed_.append(account + QLatin1Char(' ') + password);
            });
        dialog_->open();
        QVERIFY(QTest::qWaitForWindowActive(dialog_));
    }
    LineEdit *account() { return dialog_->findChild<LineEdit *>("accountEdit"_s); }
    LineEdit *password() { return dialog_->findChild<LineEdit *>("passwordEdit"_s); }
    LoadingOverlay *overlay() { return dialog_->findChild<LoadingOverlay *>(); }
    void press(const char *name)
    {
        QTest::mouseClick(dialog_->findChild<QPushButton *>(QLatin1String(name)), Qt::LeftButton);
    }
    void type(const QString &accountText, const QString &passwordText)
    {
        account()->clear();
        QTest::keyClicks(account(), accountText);
        password()->clear();
        QTest::keyClicks(password(), passwordText);
    }

    DemoClient demo_;
    QWidget owner_;
    QPointer<BatchLoginDialog> dialog_;
    QStringList confirmed_;
};

QTEST_MAIN(TestBatchLoginDialog)
#include "test_batchlogindialog.moc"
