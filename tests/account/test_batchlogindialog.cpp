#include "app/account/batchlogindialog.h"
#include "app/account/credentials.h"
#include "app/context/accountcontext.h"
#include "tests/support/democlient.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/loadingoverlay.h"
#include "widgets/messagebox.h"
#include "widgets/toast.h"

#include <QPushButton>

namespace {

const QString dologin = QStringLiteral("dologin");

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
        AccountContext::uid = QStringLiteral("9001");
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
        CredentialsFile().write({QStringLiteral("demo01"), QStringLiteral("secret"), true});
        open();
        QCOMPARE(account()->text(), QStringLiteral("demo01"));
        QCOMPARE(password()->text(), QString()); // what is to be proved is not filled in
        QTRY_COMPARE(focusName(), QStringLiteral("passwordEdit"));
        QTest::keyClicks(password(), QStringLiteral("abc123"));
        QTest::keyClick(password(), Qt::Key_Return);
        QCOMPARE(overlay()->text(), QStringLiteral("验证中..."));
        QTRY_VERIFY(!dialog_);
        QCOMPARE(confirmed_, QStringList({QStringLiteral("demo01 abc123")}));
        QVERIFY(demo_.requests(dologin).first()[QStringLiteral("body")].toString().startsWith(
            QStringLiteral("username=demo01&password=abc123&token=")));
        QCOMPARE(AccountContext::uid, QStringLiteral("9001"));
        QVERIFY(AccountContext::shopList.isEmpty());
    }

    void aWrongPasswordIsToldAndCanBeMended()
    {
        open();
        QCOMPARE(account()->text(), QString());
        type(QStringLiteral("demo01"), QStringLiteral("wrong"));
        press("loginButton");
        QTRY_VERIFY(!overlay()->isVisible());
        const auto shown = MessageBox::takeShown();
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().text, QStringLiteral("账号或密码错误"));
        QCOMPARE(shown.first().title, QStringLiteral("温馨提示"));
        QVERIFY(dialog_->isVisible() && confirmed_.isEmpty());
        type(QStringLiteral("demo01"), QStringLiteral("abc123"));
        press("loginButton");
        QTRY_VERIFY(!dialog_);
        QCOMPARE(confirmed_.size(), 1);
    }

    void withoutAnAnswer()
    {
        open();
        type(QStringLiteral("demo01"), QStringLiteral("abc123"));
        for (const char *kind : {"drop", "http-error", "broken-json", "array"}) {
            demo_.misbehave(dologin, QLatin1String(kind));
            press("loginButton");
            QTRY_VERIFY2(!overlay()->isVisible(), kind);
            QCOMPARE(Toast::currentText(dialog_), QStringLiteral("验证失败!"));
            QVERIFY(dialog_->isVisible() && confirmed_.isEmpty());
            QVERIFY(MessageBox::takeShown().isEmpty());
        }
        demo_.misbehave(dologin, QStringLiteral("code-number"));
        press("loginButton");
        QTRY_VERIFY(!overlay()->isVisible());
        QCOMPARE(MessageBox::takeShown().size(), 1);
        QVERIFY(confirmed_.isEmpty());
    }

    void asksForWhatIsMissing()
    {
        open();
        press("loginButton");
        QCOMPARE(Toast::currentText(dialog_), QStringLiteral("请输入账号"));
        type(QStringLiteral("demo01"), QString());
        press("loginButton");
        QCOMPARE(Toast::currentText(dialog_), QStringLiteral("请输入密码"));
        QVERIFY(demo_.requests(dologin).isEmpty());
    }

    void cancels_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("button") << false;
        QTest::newRow("Escape") << true;
    }
    void cancels()
    {
        QFETCH(bool, byKey);
        demo_.misbehave(dologin, QStringLiteral("hold"));
        open();
        type(QStringLiteral("demo01"), QStringLiteral("abc123"));
        press("loginButton");
        QTRY_COMPARE(demo_.state().value(QStringLiteral("held")).toInt(), 1);
        QTest::keyClick(overlay(), Qt::Key_Escape); // the waiting first
        QTRY_VERIFY(!overlay()->isVisible());
        QVERIFY(dialog_->isVisible());
        if (byKey)
            QTest::keyClick(dialog_, Qt::Key_Escape);
        else
            press("cancelButton");
        QTRY_VERIFY(!dialog_);
        demo_.release();
        QVERIFY(confirmed_.isEmpty());
    }

    void goesThroughTheFieldsByKeyboard()
    {
        open();
        QTRY_COMPARE(focusName(), QStringLiteral("accountEdit"));
        QCOMPARE(tabOrder(4), QStringLiteral("accountEdit passwordEdit cancelButton loginButton"));
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
    LineEdit *account() { return dialog_->findChild<LineEdit *>(QStringLiteral("accountEdit")); }
    LineEdit *password() { return dialog_->findChild<LineEdit *>(QStringLiteral("passwordEdit")); }
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
