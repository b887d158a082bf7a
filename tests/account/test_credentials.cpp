#include "app/account/credentials.h"
#include "app/account/loginreply.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

namespace {

QString told(const Credentials &credentials)
{
    return "%1|%2|%3"_s.arg(credentials.account, credentials.password).arg(credentials.remembered);
}

} // namespace

class TestCredentials : public QObject
{
    Q_OBJECT

private slots:
    void writesAndReads()
    {
        const struct
        {
            Credentials credentials;
            QByteArray bytes;
        } rows[] = {
            {{"demo01"_s, "abc123"_s, true}, "username=demo01\npassword=YWJjMTIz\nremember=1\n"},
            {{"demo01"_s, QString(), false}, "username=demo01\nremember=0\n"},
            {{"  demo 01 "_s, " p "_s, true}, "username=  demo 01 \npassword=IHAg\nremember=1\n"},
            {{"a=b"_s, "密码"_s, true}, "username=a=b\npassword=5a+G56CB\nremember=1\n"}};
        for (const auto &row : rows) {
            QTemporaryDir folder;
            const CredentialsFile file(folder.filePath("not/yet/there"_s));
            QCOMPARE(told(file.read()), "||0"_s);
            QVERIFY(file.write(row.credentials));
            QCOMPARE(readFile(file.path()), row.bytes);
            QCOMPARE(told(file.read()), told(row.credentials));
            QCOMPARE(QFileInfo(file.path()).dir().entryList(QDir::Files).size(), 1);
        }
    }

    void readsDamagedFiles_data()
    {
        // expected: account, password, remembered
        addColumns<QByteArray, QString>({"bytes", "expected"});
        const auto row = [](const char *name, const QByteArray &bytes, const char *expected) {
            newRow(name, bytes, expected);
        };
        row("empty", "", "||0");
        row("other order, line ends and keys",
            "remember=1\r\nenterprise_id=7\r\npassword=YWJjMTIz\r\nusername=a\r\n", "a|abc123|1");
        row("remember is not 1", "username=a\npassword=YWJjMTIz\nremember=10\n", "a||0");
        row("keys are case-sensitive", "Username=a\n username=b\nremember=1\n", "||1");
        row("cut in the password", "username=a\npassword=YWJj", "a||0");
        row("cut in the account", "username=demo", "demo||0");
        row("binary", QByteArray("\xff\xfe\0\0username=a\0\n", 16), "||0");
        const auto with = [](const QByteArray &password) {
            return "username=a\npassword=" + password + "\nremember=1\n";
        };
        row("huge", with(QByteArray(1000000, 'A')), "||0");
        row("characters not Base64", with("YWJj*MTIz"), "a||1");
        row("data behind the padding", with("YWI=MTIz"), "a||1");
        row("bytes not UTF-8", with("/v8="), "a||1");
        row("half a character", with("5a8="), "a||1");
    }

    void readsDamagedFiles()
    {
        QFETCH(QByteArray, bytes);
        QTemporaryDir folder;
        const CredentialsFile file(folder.path());
        writeFile(file.path(), bytes);
        QTEST(told(file.read()), "expected");
    }

    void keepsTheSecretToItsOwner()
    {
        QTemporaryDir folder;
        const CredentialsFile file(folder.path());
        QFile open(file.path());
        QVERIFY(open.open(QIODevice::WriteOnly));
        open.setPermissions(QFile::Permissions(0x6666));
        open.close();
        QVERIFY(file.write({"a\npassword=eA=="_s, "secret"_s, true}));
#ifndef Q_OS_WIN
        const auto others =
            QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(file.path()) & others));
#endif
        QCOMPARE(told(file.read()), "a password=eA==|secret|1"_s);
#ifndef Q_OS_WIN
        // As an earlier version, or a copy from elsewhere, may have left it.
        QVERIFY(QFile::setPermissions(file.path(), QFile::Permissions(0x6644)));
        QCOMPARE(told(file.read()), "a password=eA==|secret|1"_s);
        QVERIFY(!(QFile::permissions(file.path()) & others));
#endif
    }

    void liesAmongTheUsersSettings()
    {
        QCoreApplication::setApplicationName("tessavo_tools"_s);
#ifdef Q_OS_WIN
        const char settings[] = "LOCALAPPDATA"; // stays on this machine
#else
        const char settings[] = "XDG_CONFIG_HOME";
#endif
        QCOMPARE(CredentialsFile().path(),
                 QDir::fromNativeSeparators(qEnvironmentVariable(settings)) +
                     "/tessavo_tools/login_config.txt"_s);
    }

    void cannotWrite()
    {
        QTemporaryDir folder;
        const CredentialsFile file(folder.path());
        QVERIFY(QDir().mkpath(file.path())); // a folder lies in its place
        QVERIFY(!file.write({"a"_s, QString(), false}));
        QCOMPARE(file.read().account, QString());
    }

    void entersTheAccount_data()
    {
        // expected: super id, eid, uid, shop id; the shops
        addColumns<QByteArray, bool, QString>({"reply", "saved", "expected"});
        const QByteArray whole = R"({"SUPERID":"1","EID":"2","UID":"3","shop_data":[)"
                                 R"({"id":"101","name":"一店","goodsfoldernamerule":"[1]"},)"
                                 R"({"id":102,"name":"二店"},"nonsense"]})";
        const QByteArray withoutShops = R"({"SUPERID":1,"EID":2,"UID":3})";
        newRow("login", whole, false, "1 2 3 101;101 一店 [1];102 二店 ");
        newRow("saved login", whole, true, "1 2 3 before;101 一店 ;102 二店 ");
        newRow("no shops", withoutShops, false, "1 2 3 before");
        newRow("nothing", QByteArray("{}"), true, "   before");
    }

    void entersTheAccount()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, saved);
        AccountContext::shopId = "before"_s;
        AccountContext::shopList = {{"0"_s, {}, {}, {}}};
        const QJsonObject object = QJsonDocument::fromJson(reply).object();
        if (saved)
            enterSavedAccount(LoginReply::readSaved(object));
        else
            enterAccount(LoginReply::read(object));
        QString now = "%1 %2 %3 %4"_s.arg(AccountContext::superId, AccountContext::eid,
                                          AccountContext::uid, AccountContext::shopId);
        for (const ShopRecord &shop : qAsConst(AccountContext::shopList))
            now += ";%1 %2 %3"_s.arg(shop.id, shop.name, shop.goodsfoldernamerule);
        QTEST(now, "expected");
    }
};

QTEST_GUILESS_MAIN(TestCredentials)
#include "test_credentials.moc"
