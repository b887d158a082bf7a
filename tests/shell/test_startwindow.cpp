#include "app/account/credentials.h"
#include "app/account/loginnew.h"
#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "app/shell/choosetools.h"
#include "app/shell/startwindow.h"
#include "distribution/window/fjhome.h"
#include "tests/support/democlient.h"
#include "tests/support/text.h"

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
        const QString address = "https://a"_s;
        for (const auto &[arguments, found] :
             {std::pair("tool --login-data x"_s, QString()),
              {"tool --url-host https://a --parent-window 7"_s, address},
              {"tool --url-host https://b --url-host https://a"_s, address},
              {"tool --url-host"_s, QString()},
              {"tool --URL-host https://a"_s, QString()}})
            QCOMPARE(urlHostIn(arguments.split(QLatin1Char(' '))), found);
    }

    void startsFromSavedLoginData()
    {
        const QJsonObject shop{{"id"_s, "5"_s}, {"goodsfoldernamerule"_s, "[]"_s}};
        K::instance()->saveLoginData({{"UID"_s, "77"_s}, {"shop_data"_s, QJsonArray{shop}}});
        AccountContext::shopId = "before"_s;
        K::instance()->openStartWindow(2);
        QCOMPARE(AccountContext::uid, "77"_s);
        QCOMPARE(AccountContext::shopList.size(), 1);
        QCOMPARE(AccountContext::shopList.first().goodsfoldernamerule, QString());
        QCOMPARE(AccountContext::shopId, "before"_s);
        QVERIFY(QApplication::topLevelWidgets().isEmpty());
    }

    void opensTheDistributionFromSavedLoginData()
    {
        DemoClient demo;
        demo.reset();
        const QJsonObject shop{{"id"_s, "102"_s}, {"name"_s, "滨江店"_s}};
        K::instance()->saveLoginData({{"UID"_s, "9001"_s},
                                      {"EID"_s, "3102"_s},
                                      {"SUPERID"_s, "7002"_s},
                                      {"shop_data"_s, QJsonArray{shop}}});
        AccountContext::shopId.clear();
        AccountContext::selectedShopId.clear();
        K::instance()->openStartWindow(int(StartMode::Distribution));
        QPointer<FJHome> window = topLevel<FJHome>();
        QVERIFY(window && window->isVisible() && window->isMaximized());
        QCOMPARE(window->splitType(), DesignFileSplitTypes::Distribution);
        auto *orders = window->findChild<QTableView *>("orderTable"_s);
        QTRY_VERIFY(orders->model()->rowCount() > 0);
        QCOMPARE(demo.requests("order_list_type_1"_s).size(), 1);
        window->close();
        QTRY_VERIFY(!window);
    }

    void leadsFromLoginToLauncher()
    {
        DemoClient().reset();
        CredentialsFile().write({"demo01"_s, "abc123"_s, true});
        K::instance()->openStartWindow(int(StartMode::Login));
        QPointer<LoginNew> login = topLevel<LoginNew>();
        QVERIFY(login && login->isVisible());
        QTest::keyClick(login, Qt::Key_Return);
        QTRY_VERIFY(topLevel<ChooseTools>());
        QPointer<ChooseTools> launcher = topLevel<ChooseTools>();
        QVERIFY(launcher->isVisible());
        QCOMPARE(launcher->loginReply()["UID"_s].toString(), AccountContext::uid);
        QTRY_VERIFY(!login);
        launcher->close();
        QTRY_VERIFY(!launcher);
    }
};

QTEST_MAIN(TestStartWindow)
#include "test_startwindow.moc"
