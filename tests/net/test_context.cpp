#include "app/context/accountcontext.h"
#include "app/context/installation.h"
#include "app/context/k.h"

#include <QDataStream>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

class TestContext : public QObject
{
    Q_OBJECT

private slots:
    void scales_data();
    void scales();
    void loginDataComesBack();
    void damagedLoginData_data();
    void damagedLoginData();
    void entryPointKeepsTheFirstAddress();
    void readsTheInstallation();
};

void TestContext::scales_data()
{
    QTest::addColumn<float>("logical");
    QTest::addColumn<float>("physical");
    QTest::addColumn<float>("scale");
    QTest::addColumn<int>("thirteen");
    QTest::newRow("unscaled") << 96.F << 90.F << 1.0F << 15;
    QTest::newRow("150 %") << 144.F << 144.F << 1.5F << 19;
    QTest::newRow("200 %") << 192.F << 90.F << 2.0F << 26;
    QTest::newRow("dense panel") << 96.F << 192.F << 2.0F << 26;
    QTest::newRow("coarse screen") << 76.8F << 60.F << 1.0F << 15;
    QTest::newRow("no density") << 0.F << 0.F << 1.0F << 15;
}

void TestContext::scales()
{
    QFETCH(float, logical);
    QFETCH(float, physical);
    QFETCH(float, scale);
    K::uiScale = K::scaleFor(logical, physical);
    QCOMPARE(K::uiScale, scale);
    QTEST(K::scaledPx(13), "thirteen");
    QCOMPARE(K::scaledPxString(13), QString::number(K::scaledPx(13)));
    K::uiScale = 1.0F;
}

void TestContext::loginDataComesBack()
{
    QTemporaryDir folder;
    AccountContext::dataFolder = folder.filePath(QStringLiteral("deep/er/"));
    const QJsonObject data{{QStringLiteral("EID"), QStringLiteral("5")},
                           {QStringLiteral("name"), QStringLiteral("婚 \"😀\"")}};
    bool done = false;
    K::instance()->saveLoginData(data, [&done](const QVariantMap &map) { done = map.isEmpty(); });
    QVERIFY(done);
    QCOMPARE(K::instance()->loadLoginData(), data);

    // The stored form: a big-endian length in bytes, then UTF-16.
    QFile file(AccountContext::dataFolder + QStringLiteral("loginData"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.read(4).toHex(), QByteArray::number(file.size() - 4, 16).rightJustified(8, '0'));
    QCOMPARE(file.read(2), QByteArray("\0{", 2));
#ifdef Q_OS_UNIX
    QCOMPARE(int(QFileInfo(file).permissions() & ~(QFile::ReadUser | QFile::WriteUser)),
             int(QFile::ReadOwner | QFile::WriteOwner));
#endif
}

void TestContext::damagedLoginData_data()
{
    const auto stored = [](const QString &text) {
        QByteArray bytes;
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(10);
        stream << text;
        return bytes;
    };
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut") << stored(QStringLiteral("{\"EID\": \"5\"}")).chopped(3);
    QTest::newRow("length of gigabytes") << QByteArray("\x7f\xff\xff\xf0zz", 6);
    QTest::newRow("odd length") << QByteArray("\0\0\0\3abc", 7);
    QTest::newRow("no object") << stored(QStringLiteral("[1]"));
    QTest::newRow("no JSON") << stored(QStringLiteral("{\"EID\": "));
    QTest::newRow("null text") << stored(QString());
}

void TestContext::damagedLoginData()
{
    QFETCH(QByteArray, bytes);
    QTemporaryDir folder;
    AccountContext::dataFolder = folder.path() + QLatin1Char('/');
    QFile file(AccountContext::dataFolder + QStringLiteral("loginData"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
    file.close();
    QVERIFY(K::instance()->loadLoginData().isEmpty());
}

void TestContext::entryPointKeepsTheFirstAddress()
{
    const QString entry = AccountContext::indexUrl;
    QVERIFY(entry.endsWith(QStringLiteral("/index.php?")));
    const QString before = AccountContext::baseUrl;
    AccountContext::baseUrl = QStringLiteral("https://other.example");
    QCOMPARE(AccountContext::indexUrl, entry);
    AccountContext::baseUrl = before;
}

void TestContext::readsTheInstallation()
{
    qputenv("TESSAVO_SERVICE_URL", " https://studio.example/ ");
    qputenv("TESSAVO_TLS_VERIFY", "None");
    QCOMPARE(Installation::read().serviceUrl, QStringLiteral("https://studio.example"));
    QVERIFY(Installation::read().verifiesCertificates);
    qputenv("TESSAVO_TLS_VERIFY", "none");
    QVERIFY(!Installation::read().verifiesCertificates);
    qunsetenv("TESSAVO_SERVICE_URL");
    QVERIFY(Installation::read().serviceUrl.startsWith(QStringLiteral("https://")));
}

QTEST_GUILESS_MAIN(TestContext)
#include "test_context.moc"
