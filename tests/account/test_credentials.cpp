#include "app/account/credentials.h"
#include "app/account/loginreply.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

class TestCredentials : public QObject
{
    Q_OBJECT

private slots:
    void writesAndReads_data()
    {
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("remembered");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("remembered")
            << "demo01"
            << "abc123" << true << QByteArray("username=demo01\npassword=YWJjMTIz\nremember=1\n");
        QTest::newRow("not remembered")
            << "demo01"
            << "" << false << QByteArray("username=demo01\nremember=0\n");
        QTest::newRow("untrimmed")
            << "  demo 01 "
            << " p " << true << QByteArray("username=  demo 01 \npassword=IHAg\nremember=1\n");
        QTest::newRow("Chinese password")
            << "a=b"
            << "密码" << true << QByteArray("username=a=b\npassword=5a+G56CB\nremember=1\n");
    }

    void writesAndReads()
    {
        QFETCH(QString, account);
        QFETCH(QString, password);
        QFETCH(bool, remembered);
        QTemporaryDir folder;
        const CredentialsFile file(folder.filePath(QStringLiteral("not/yet/there")));
        QCOMPARE(file.read().account, QString());
        QVERIFY(file.write({account, password, remembered}));
        QFile written(file.path());
        QVERIFY(written.open(QIODevice::ReadOnly));
        QTEST(written.readAll(), "bytes");
        const Credentials read = file.read();
        QCOMPARE(read.account, account);
        QCOMPARE(read.password, password);
        QCOMPARE(read.remembered, remembered);
        QCOMPARE(QFileInfo(file.path()).dir().entryList(QDir::Files).size(), 1);
    }

    void readsDamagedFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("password");
        QTest::addColumn<bool>("remembered");
        const auto with = [](const QByteArray &password) {
            return "username=a\npassword=" + password + "\nremember=1\n";
        };
        QTest::newRow("empty") << QByteArray() << ""
                               << "" << false;
        QTest::newRow("other order, line ends and keys")
            << QByteArray("remember=1\r\nenterprise_id=7\r\npassword=YWJjMTIz\r\nusername=a\r\n")
            << "a"
            << "abc123" << true;
        QTest::newRow("remember is not 1")
            << QByteArray("username=a\npassword=YWJjMTIz\nremember=10\n") << "a"
            << "" << false;
        QTest::newRow("keys are case-sensitive")
            << QByteArray("Username=a\n username=b\nremember=1\n") << ""
            << "" << true;
        QTest::newRow("cut in the password") << QByteArray("username=a\npassword=YWJj") << "a"
                                             << "" << false;
        QTest::newRow("cut in the account") << QByteArray("username=demo") << "demo"
                                            << "" << false;
        QTest::newRow("length not Base64") << with("YWJjMT") << "a"
                                           << "" << true;
        QTest::newRow("characters not Base64") << with("YWJj*MTIz") << "a"
                                               << "" << true;
        QTest::newRow("blank in front") << with(" YWJjMTIz") << "a"
                                        << "" << true;
        QTest::newRow("data behind the padding") << with("YWI=MTIz") << "a"
                                                 << "" << true;
        QTest::newRow("text not Latin") << with("密码密码") << "a"
                                        << "" << true;
        QTest::newRow("bytes not UTF-8") << with("/v8=") << "a"
                                         << "" << true;
        QTest::newRow("half a character") << with("5a8=") << "a"
                                          << "" << true;
        QTest::newRow("binary") << QByteArray("\xff\xfe\0\0username=a\0\n", 16) << ""
                                << "" << false;
        QTest::newRow("huge") << with(QByteArray(1000000, 'A')) << ""
                              << "" << false;
    }

    void readsDamagedFiles()
    {
        QFETCH(QByteArray, bytes);
        QTemporaryDir folder;
        const CredentialsFile file(folder.path());
        QFile damaged(file.path());
        QVERIFY(damaged.open(QIODevice::WriteOnly));
        damaged.write(bytes);
        damaged.close();
        const Credentials read = file.read();
        QTEST(read.account, "account");
        QTEST(read.password, "password");
        QTEST(read.remembered, "remembered");
    }

    void keepsTheSecretToItsOwner()
    {
        QTemporaryDir folder;
        const CredentialsFile file(folder.path());
        QFile open(file.path());
        QVERIFY(open.open(QIODevice::WriteOnly));
        open.setPermissions(QFile::Permissions(0x6666));
        open.close();
        QVERIFY(file.write({QStringLiteral("a\npassword=eA=="), QStringLiteral("secret"), true}));
#ifndef Q_OS_WIN
        const auto others =
            QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
        QVERIFY(!(QFile::permissions(file.path()) & others));
#endif
        QCOMPARE(file.read().password, QStringLiteral("secret"));
        QCOMPARE(file.read().account, QStringLiteral("a password=eA=="));
    }

    void cannotWrite()
    {
        QTemporaryDir folder;
        const CredentialsFile file(folder.path());
        QVERIFY(QDir().mkpath(file.path())); // a folder lies in its place
        QVERIFY(!file.write({QStringLiteral("a"), QString(), false}));
        QCOMPARE(file.read().account, QString());
    }

    void entersTheAccount_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("saved");
        QTest::addColumn<QString>("identity"); // super id, eid, uid, shop id
        QTest::addColumn<QString>("shops");
        const QByteArray whole = R"({"SUPERID":"1","EID":"2","UID":"3","shop_data":[)"
                                 R"({"id":"101","name":"一店","goodsfoldernamerule":"[1]"},)"
                                 R"({"id":102,"name":"二店"},"nonsense"]})";
        QTest::newRow("login") << whole << false << "1 2 3 101"
                               << "101 一店 [1];102 二店 ;";
        QTest::newRow("saved login") << whole << true << "1 2 3 before"
                                     << "101 一店 ;102 二店 ;";
        QTest::newRow("no shops") << QByteArray(R"({"SUPERID":1,"EID":2,"UID":3})") << false
                                  << "1 2 3 before"
                                  << "";
        QTest::newRow("nothing") << QByteArray("{}") << true << "   before"
                                 << "";
    }

    void entersTheAccount()
    {
        QFETCH(QByteArray, reply);
        QFETCH(bool, saved);
        AccountContext::shopId = QStringLiteral("before");
        AccountContext::shopList = {{QStringLiteral("0"), {}, {}, {}}};
        const QJsonObject object = QJsonDocument::fromJson(reply).object();
        if (saved)
            enterSavedAccount(LoginReply::readSaved(object));
        else
            enterAccount(LoginReply::read(object));
        const QString identity = QStringList({AccountContext::superId, AccountContext::eid,
                                              AccountContext::uid, AccountContext::shopId})
                                     .join(QLatin1Char(' '));
        QTEST(identity, "identity");
        QString shops;
        for (const ShopRecord &shop : qAsConst(AccountContext::shopList))
            shops += QStringLiteral("%1 %2 %3;").arg(shop.id, shop.name, shop.goodsfoldernamerule);
        QTEST(shops, "shops");
    }
};

QTEST_GUILESS_MAIN(TestCredentials)
#include "test_credentials.moc"
