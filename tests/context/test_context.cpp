#include "app/context/accountcontext.h"
#include "app/context/installation.h"
#include "app/context/k.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDataStream>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

class TestContext : public QObject
{
    Q_OBJECT

private slots:
    void scales_data()
    {
        addColumns<float, float, float, int>({"logical", "physical", "scale", "thirteen"});
        newRow("unscaled", 96.F, 90.F, 1.0F, 15);
        newRow("150 %", 144.F, 144.F, 1.5F, 19);
        newRow("200 %", 192.F, 90.F, 2.0F, 26);
        newRow("dense panel", 96.F, 192.F, 2.0F, 26);
        newRow("coarse screen", 76.8F, 60.F, 1.0F, 15);
        newRow("no density", 0.F, 0.F, 1.0F, 15);
    }

    void scales()
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

    void loginDataComesBack()
    {
        QTemporaryDir folder;
        AccountContext::dataFolder = folder.filePath("deep/er/"_s);
        const QJsonObject data{{"EID"_s, "5"_s}, {"name"_s, "婚 \"😀\""_s}};
        bool done = false;
        K::instance()->saveLoginData(data,
                                     [&done](const QVariantMap &map) { done = map.isEmpty(); });
        QVERIFY(done);
        QCOMPARE(K::instance()->loadLoginData(), data);

        // The stored form: a big-endian length in bytes, then UTF-16.
        QFile file(AccountContext::dataFolder + "loginData"_s);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.read(4).toHex(),
                 QByteArray::number(file.size() - 4, 16).rightJustified(8, '0'));
        QCOMPARE(file.read(2), QByteArray("\0{", 2));
#ifdef Q_OS_UNIX
        const auto rights = [&file] {
            return int(QFile::permissions(file.fileName()) & ~(QFile::ReadUser | QFile::WriteUser));
        };
        QCOMPARE(rights(), int(QFile::ReadOwner | QFile::WriteOwner));
        QVERIFY(file.setPermissions(QFile::Permissions(0x6644))); // as a copy may have
        QCOMPARE(K::instance()->loadLoginData(), data);
        QCOMPARE(rights(), int(QFile::ReadOwner | QFile::WriteOwner));
#endif
    }

    void damagedLoginData_data()
    {
        const auto stored = [](const QString &text) {
            QByteArray bytes;
            QDataStream stream(&bytes, QIODevice::WriteOnly);
            stream.setVersion(10);
            stream << text;
            return bytes;
        };
        QTest::addColumn<QByteArray>("bytes");
        newRow("empty", QByteArray());
        newRow("cut", stored("{\"EID\": \"5\"}"_s).chopped(3));
        newRow("length of gigabytes", QByteArray("\x7f\xff\xff\xf0zz", 6));
        newRow("odd length", QByteArray("\0\0\0\3abc", 7));
        newRow("no object", stored("[1]"_s));
        newRow("no JSON", stored("{\"EID\": "_s));
        newRow("null text", stored(QString()));
    }

    void damagedLoginData()
    {
        QFETCH(QByteArray, bytes);
        QTemporaryDir folder;
        AccountContext::dataFolder = folder.path() + QLatin1Char('/');
        writeFile(AccountContext::dataFolder + "loginData"_s, bytes);
        QVERIFY(K::instance()->loadLoginData().isEmpty());
    }

    void readsTheInstallation_data()
    {
        // environment: url, ca-file, tls-verify, and for some rows verify of imports; expected: the
        // same; <> is the folder, - the address compiled in
        addColumns<QByteArray, QByteArray, QString>({"environment", "file", "expected"});
        const auto row = [](const char *name, const char *environment, const QByteArray &file,
                            const char *expected) {
            newRow(name, QByteArray(environment), file, QString::fromUtf8(expected));
        };
        const QByteArray whole =
            "; made by the installer\r\n[Service]\r\nURL = https://a.example/\r\n"
            "ca-file = \"certs\\a,b.pem\"\r\ntls-verify = none\r\n";
        row("nothing", "||", "", "-||1");
        row("file", "||", whole, "https://a.example|<>/certs\\a,b.pem|0");
        row("with a mark", "||", "\xef\xbb\xbf" + whole, "https://a.example|<>/certs\\a,b.pem|0");
        const QString marked = QChar(0xfeff) + "[service]\nurl=http://x\n"_s;
        row("UTF-16", "||",
            QByteArray(reinterpret_cast<const char *>(marked.utf16()), marked.size() * 2),
            "http://x||1");
        row("environment", " https://b.example:8443// | /c.pem |yes", whole,
            "https://b.example:8443|/c.pem <>/certs\\a,b.pem|1");
        row("neither yes nor none", "||perhaps", whole, "https://a.example|<>/certs\\a,b.pem|0");
        row("only none is none", "||None", "[service]\ntls-verify=off\n", "-||1");
        row("no verification", "||none", "[service]\ntls-verify=yes\n", "-||0");
        row("absolute path", "||", "[service]\nca-file=//nas/x/c.pem\n", "-|//nas/x/c.pem|1");
        row("no address", "studio.example||", "[service]\nurl=ftp://x\n", "-||1");
        row("address in the file is none", "||", "[service]\nurl=https://\n", "-||1");
        row("bad in the environment", "nonsense||", whole, "https://a.example|<>/certs\\a,b.pem|0");
        row("imports by size", "||", "[import]\nverify = size\n", "-||1|0");
        row("imports read back", "|||read-back", "[import]\nverify=size\n", "-||1|1");
        row("imports looked at somehow", "|||none", "[import]\nverify=size\n", "-||1|0");
        row("other section", "||", "url=https://x\n[other]\nurl=https://y\nnonsense\n", "-||1");
        row("no ledger", "||", "[ledger]\nenabled = no\n", "-||1|1|0");
        row("a ledger after all", "||||yes", "[ledger]\nenabled = no\n", "-||1|1|1");
    }

    void readsTheInstallation()
    {
        QFETCH(QByteArray, environment);
        QFETCH(QByteArray, file);
        QTemporaryDir folder;
        QFile ini(folder.filePath("tessavo-tools.ini"_s));
        if (!file.isEmpty()) {
            QVERIFY(ini.open(QIODevice::WriteOnly));
            ini.write(file);
            ini.close();
        }
        const QList<QByteArray> set = environment.split('|');
        qputenv("TESSAVO_SERVICE_URL", set.at(0));
        qputenv("TESSAVO_CA_FILE", set.at(1));
        qputenv("TESSAVO_TLS_VERIFY", set.at(2));
        qputenv("TESSAVO_IMPORT_VERIFY", set.value(3));
        qputenv("TESSAVO_LEDGER", set.value(4));
        const Installation read = Installation::read(ini.fileName());
        const bool compiledIn = read.serviceUrl == QString::fromUtf8(TESSAVO_DEFAULT_SERVICE_URL);
        QString told = "%1|%2|%3"_s.arg(compiledIn ? "-"_s : read.serviceUrl,
                                        read.caFiles.join(QLatin1Char(' ')),
                                        QString::number(int(read.verifiesCertificates)));
        told.replace(folder.path(), "<>"_s);
        QFETCH(QString, expected);
        const int further = expected.count(QLatin1Char('|'));
        if (further >= 3)
            told += QLatin1Char('|') + QString::number(int(read.readsImportsBack));
        if (further >= 4)
            told += QLatin1Char('|') + QString::number(int(read.keepsLedger));
        QCOMPARE(told, expected);
    }
};

QTEST_GUILESS_MAIN(TestContext)
#include "test_context.moc"
