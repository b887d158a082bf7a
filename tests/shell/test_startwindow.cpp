#include "app/account/credentials.h"
#include "app/account/loginnew.h"
#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "app/shell/choosetools.h"
#include "app/shell/startwindow.h"
#include "tests/support/democlient.h"

#include <QApplication>
#include <QPointer>
#include <QTest>

namespace {

template <typename Window> Window *topLevel()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget *each : windows) {
        if (auto *window = qobject_cast<Window *>(each))
            return window;
    }
    return nullptr;
}

} // namespace

class TestStartWindow : public QObject
{
    Q_OBJECT

private slots:
    void findsTheAddress_data()
    {
        QTest::addColumn<QString>("arguments");
        QTest::addColumn<QString>("address");
        QTest::newRow("none") << "tool --login-data x" << QString();
        QTest::newRow("given") << "tool --url-host https://a --parent-window 7"
                               << "https://a";
        QTest::newRow("twice") << "tool --url-host https://a --url-host https://b"
                               << "https://b";
        QTest::newRow("nothing follows") << "tool --url-host" << QString();
        QTest::newRow("other case") << "tool --URL-host https://a" << QString();
    }

    void findsTheAddress()
    {
        QFETCH(QString, arguments);
        QTEST(urlHostIn(arguments.split(QLatin1Char(' '))), "address");
    }

    void startsFromSavedLoginData()
    {
        const QJsonObject shop{{QStringLiteral("id"), QStringLiteral("5")},
                               {QStringLiteral("goodsfoldernamerule"), QStringLiteral("[]")}};
        K::instance()->saveLoginData({{QStringLiteral("UID"), QStringLiteral("77")},
                                      {QStringLiteral("shop_data"), QJsonArray{shop}}});
        AccountContext::shopId = QStringLiteral("before");
        K::instance()->openStartWindow(2);
        QCOMPARE(AccountContext::uid, QStringLiteral("77"));
        QCOMPARE(AccountContext::shopList.size(), 1);
        QCOMPARE(AccountContext::shopList.first().goodsfoldernamerule, QString());
        QCOMPARE(AccountContext::shopId, QStringLiteral("before"));
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void leadsFromLoginToLauncher()
    {
        DemoClient().reset();
        CredentialsFile().write({QStringLiteral("demo01"), QStringLiteral("abc123"), true});
        K::instance()->openStartWindow(0);
        QPointer<LoginNew> login = topLevel<LoginNew>();
        QVERIFY(login && login->isVisible());
        QTest::keyClick(login, Qt::Key_Return);
        QTRY_VERIFY(topLevel<ChooseTools>());
        QPointer<ChooseTools> launcher = topLevel<ChooseTools>();
        QVERIFY(launcher->isVisible());
        QCOMPARE(launcher->loginReply().value(QStringLiteral("UID")).toString(),
                 AccountContext::uid);
        QTRY_VERIFY(!login);
        launcher->close();
        QTRY_VERIFY(!launcher);
    }
};

QTEST_MAIN(TestStartWindow)
#include "test_startwindow.moc"
