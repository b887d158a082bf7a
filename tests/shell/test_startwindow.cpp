#include "app/account/credentials.h"
#include "app/account/loginnew.h"
#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "app/shell/choosetools.h"
#include "app/shell/startwindow.h"
#include "distribution/fjhome.h"
#include "tests/support/democlient.h"

#include <QApplication>
#include <QPointer>
#include <QTableView>
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
    void findsTheAddress()
    {
        const QString address = QStringLiteral("https://a");
        for (const auto &[arguments, found] :
             {std::pair(QStringLiteral("tool --login-data x"), QString()),
              {QStringLiteral("tool --url-host https://a --parent-window 7"), address},
              {QStringLiteral("tool --url-host https://b --url-host https://a"), address},
              {QStringLiteral("tool --url-host"), QString()},
              {QStringLiteral("tool --URL-host https://a"), QString()}})
            QCOMPARE(urlHostIn(arguments.split(QLatin1Char(' '))), found);
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

    void opensTheDistributionFromSavedLoginData()
    {
        DemoClient demo;
        demo.reset();
        const QJsonObject shop{{QStringLiteral("id"), QStringLiteral("102")},
                               {QStringLiteral("name"), QStringLiteral("滨江店")}};
        K::instance()->saveLoginData({{QStringLiteral("UID"), QStringLiteral("9001")},
                                      {QStringLiteral("EID"), QStringLiteral("3102")},
                                      {QStringLiteral("SUPERID"), QStringLiteral("7002")},
                                      {QStringLiteral("shop_data"), QJsonArray{shop}}});
        AccountContext::shopId.clear();
        AccountContext::selectedShopId.clear();
        K::instance()->openStartWindow(1);
        QPointer<FJHome> window = topLevel<FJHome>();
        QVERIFY(window && window->isVisible() && window->isMaximized());
        QCOMPARE(window->splitType(), DesignFileSplitTypes::Distribution);
        auto *orders = window->findChild<QTableView *>(QStringLiteral("orderTable"));
        QTRY_VERIFY(orders->model()->rowCount() > 0);
        QCOMPARE(demo.requests(QStringLiteral("order_list_type_1")).size(), 1);
        window->close();
        QTRY_VERIFY(!window);
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
        QCOMPARE(launcher->loginReply()[QStringLiteral("UID")].toString(), AccountContext::uid);
        QTRY_VERIFY(!login);
        launcher->close();
        QTRY_VERIFY(!launcher);
    }
};

QTEST_MAIN(TestStartWindow)
#include "test_startwindow.moc"
