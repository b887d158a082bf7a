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
    void readsTheInstallation_data();
    void readsTheInstallation();
    void looksBesideTheProgram();
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

void TestContext::readsTheInstallation_data()
{
    QTest::addColumn<QByteArray>("environment"); // url, ca-file, tls-verify
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("expected"); // the same; <> is the folder, - the address compiled in
    const auto row = [](const char *name, const char *environment, const QByteArray &file,
                        const char *expected) {
        QTest::newRow(name) << QByteArray(environment) << file << QString::fromUtf8(expected);
    };
    const QByteArray whole = "; made by the installer\r\n[Service]\r\nURL = https://a.example/\r\n"
                             "ca-file = \"certs\\a,b.pem\"\r\ntls-verify = none\r\n";
    row("nothing", "||", "", "-||1");
    row("file", "||", whole, "https://a.example|<>/certs\\a,b.pem|0");
    row("with a mark", "||", "\xef\xbb\xbf" + whole, "https://a.example|<>/certs\\a,b.pem|0");
    const QString marked = QStringLiteral("\ufeff[service]\nurl=http://x\n");
    row("UTF-16", "||",
        QByteArray(reinterpret_cast<const char *>(marked.utf16()), marked.size() * 2),
        "http://x||1");
    row("environment", " https://b.example:8443// | /c.pem |yes", whole,
        "https://b.example:8443|/c.pem|1");
    row("only none is none", "||None", whole, "https://a.example|<>/certs\\a,b.pem|1");
    row("no verification", "||none", "[service]\ntls-verify=yes\n", "-||0");
    row("absolute path", "||", "[service]\nca-file=//nas/x/c.pem\n", "-|//nas/x/c.pem|1");
    row("no address", "studio.example||", "[service]\nurl=ftp://x\n", "-||1");
    row("address in the file is none", "||", "[service]\nurl=https://\ntls-verify=off\n", "-||1");
    row("bad in the environment", "nonsense||", whole, "https://a.example|<>/certs\\a,b.pem|0");
    row("other section", "||", "url=https://x\n[other]\nurl=https://y\nnonsense\n", "-||1");
}

void TestContext::readsTheInstallation()
{
    QFETCH(QByteArray, environment);
    QFETCH(QByteArray, file);
    QTemporaryDir folder;
    QFile ini(folder.filePath(QStringLiteral("tessavo-tools.ini")));
    if (!file.isEmpty()) {
        QVERIFY(ini.open(QIODevice::WriteOnly));
        ini.write(file);
        ini.close();
    }
    const QList<QByteArray> set = environment.split('|');
    qputenv("TESSAVO_SERVICE_URL", set.at(0));
    qputenv("TESSAVO_CA_FILE", set.at(1));
    qputenv("TESSAVO_TLS_VERIFY", set.at(2));
    const Installation read = Installation::read(ini.fileName());
    QString told = QStringLiteral("%1|%2|%3")
                       .arg(read.serviceUrl, read.caFile)
                       .arg(int(read.verifiesCertificates));
    told.replace(folder.path(), QStringLiteral("<>"));
    told.replace(QStringLiteral(TESSAVO_DEFAULT_SERVICE_URL), QStringLiteral("-"));
    QTEST(told, "expected");
}

void TestContext::looksBesideTheProgram()
{
    QCOMPARE(Installation::standardFile(),
             QCoreApplication::applicationDirPath() + QStringLiteral("/tessavo-tools.ini"));
}

QTEST_GUILESS_MAIN(TestContext)
#include "test_context.moc"
