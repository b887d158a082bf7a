#include "app/context/accountcontext.h"
#include "app/diagnosis/diagnosis.h"
#include "app/diagnosis/logring.h"
#include "app/diagnosis/masking.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <memory>

class TestDiagnosis : public QObject
{
    Q_OBJECT

private slots:
    void masks_data()
    {
        addColumns<QString, QString>({"line", "shown"});
        newRow("nothing to hide", "订单 TS10004 导片进度: 3/12 (25%)",
               "订单 TS10004 导片进度: 3/12 (25%)");
        newRow("telephone", "联系 13912345678，或 +86 139-1234-5678", "联系 ***，或 ***");
        newRow("number of an order", "订单号 202611241391234567812",
               "订单号 202611241391234567812");
        newRow("land line", "电话 0571-87654321", "电话 ***");
        newRow("mail", "from a.b+c@studio.example now", "from *** now");
        newRow("Windows path",
               R"(文件拷贝完成: D:\2026\11-24\TS10004-1 王小姐\IMG_1.JPG, 状态: 成功, 信息: )",
               R"(文件拷贝完成: D:\2026\11-24\TS10004-1 某\IMG_1.JPG, 状态: 成功, 信息: )");
        newRow("share", R"(目标文件路径： \\nas\照片\王先生)", R"(目标文件路径： \\nas\某\某)");
        newRow("quoted path", R"(others can read "/home/li/照片/loginData")",
               R"(others can read "/home/***/某/loginData")");
        newRow("name of a photo", "照片导入完成：失败: TS1 - 王小姐01.jpg 第 3",
               "照片导入完成：失败: TS1 - 某01.jpg 第 3");
        newRow("what is sent",
               R"(paras:  "keyword=王小姐&name=Wang&shopid=12&date=2026-11-24&m=" 90)",
               R"(paras:  "keyword=***&name=***&shopid=12&date=2026-11-24&m=" 90)");
        newRow("what is sent, without quotes", "paras:  password=secret&id=7",
               "paras:  password=***&id=7");
        newRow("password in JSON", R"({"password": "p1", "id": 3})",
               R"({"password": "***", "id": 3})");
        newRow("token", "url: https://s/?token=abc&id=3", "url: https://s/?token=***&id=3");
        newRow("digest", "key 5f0c2a9e7d41b6839a0e4c7b21f3d8a6.", "key ***.");
    }

    void masks()
    {
        QFETCH(QString, line);
        QFETCH(QString, shown);
        QCOMPARE(masked(line), shown);
        QCOMPARE(masked("前\n"_s + line + "\n后"_s), "前\n"_s + shown + "\n后"_s);
    }

    /// The newest lines are always there, in order and whole, in no more room than is allowed.
    void theLogTurnsRound()
    {
        const QTemporaryDir folder;
        constexpr int fileBytes = 1000;
        for (int run = 0; run < 2; ++run) {
            LogRing ring(folder.path(), fileBytes);
            for (int line = 0; line < 400; ++line)
                ring.write("line %1"_s.arg(1000 + run * 400 + line));
        }
        const QStringList files = LogRing::filesIn(folder.path());
        QCOMPARE(files.size(), LogRing::files);
        QByteArray all;
        for (const QString &file : files) {
            const QByteArray content = readFile(file);
            QVERIFY(content.size() <= fileBytes);
            all.prepend(content);
        }
        QVERIFY(all.size() > 3 * fileBytes);
        QVERIFY2(all.endsWith("line 1798\nline 1799\n"), all.right(60).constData());
        const int first = all.left(all.indexOf('\n')).right(4).toInt();
        QCOMPARE(all.count('\n'), 1800 - first);
        LogRing::clear(folder.path());
        QVERIFY(LogRing::filesIn(folder.path()).isEmpty());
    }

    /// Somebody holds the older files: the newest begins anew, and is no larger for it.
    void olderFilesThatCannotBeMoved()
    {
        const QTemporaryDir folder;
        for (int age = 1; age < LogRing::files; ++age)
            writeFile(folder.filePath("tessavo-tools.%1.log/held"_s.arg(age)));
        constexpr int fileBytes = 1000;
        {
            LogRing ring(folder.path(), fileBytes);
            for (int line = 0; line < 400; ++line)
                ring.write("line %1"_s.arg(1000 + line));
        }
        const QByteArray newest = readFile(folder.filePath("tessavo-tools.log"_s));
        QVERIFY2(newest.endsWith("line 1399\n"), newest.right(60).constData());
        QVERIFY(newest.size() <= fileBytes);
    }

    void aSecondProgramWritesElsewhere()
    {
        const QTemporaryDir folder;
        auto first = std::make_unique<LogRing>(folder.path());
        first->write("first"_s);
        QTRY_COMPARE(LogRing::filesIn(folder.path()).size(), 1);
        auto second = std::make_unique<LogRing>(folder.path());
        second->write("second"_s);
        QTRY_COMPARE(LogRing::filesIn(folder.path()).size(), 2);
        LogRing::clear(folder.path()); // what is being written stays
        second.reset();
        const QStringList files = LogRing::filesIn(folder.path());
        QCOMPARE(files.size(), 2);
        QCOMPARE(readFile(files.at(0)), QByteArray("first\n"));
        QCOMPARE(readFile(files.at(1)), QByteArray("second\n"));
    }

    void whatIsLoggedIsKeptAndPrinted()
    {
        const QTemporaryDir folder;
        static QStringList printed;
        const QtMessageHandler before = qInstallMessageHandler(
            [](QtMsgType, const QMessageLogContext &, const QString &text) { printed += text; });
        {
            LogRing ring(folder.path());
            ring.install();
            qWarning("a %d", 1);
        }
        qWarning("b");
        qInstallMessageHandler(before);
        QCOMPARE(printed, QStringList({"a 1"_s, "b"_s}));
        const QByteArray kept = readFile(LogRing::filesIn(folder.path()).value(0));
        QVERIFY2(kept.endsWith(" W default: a 1\n"), kept.constData());
    }

    void aFolderThatCannotBeMade()
    {
        const QTemporaryDir folder;
        const QString file = writeFile(folder.filePath("file"_s), "x");
        LogRing ring(file + "/log"_s);
        ring.write("lost"_s);
        QVERIFY(LogRing::filesIn(file).isEmpty());
    }

    void gathersAndSaves_data()
    {
        addColumns<bool, QString>({"answers", "service"});
        newRow("answers", true, "有应答：HTTP 404");
        newRow("silent", false, "没有应答：");
    }

    void gathersAndSaves()
    {
        QFETCH(bool, answers);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, this, [&server] {
            server.nextPendingConnection()->write(
                "HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n");
        });
        AccountContext::baseUrl = "http://127.0.0.1:%1"_s.arg(server.serverPort());
        if (!answers)
            server.close();
        const QTemporaryDir folder;
        const QString log = folder.filePath("log"_s);
        {
            LogRing ring(log);
            ring.write("客户 13912345678"_s);
        }
        Diagnosis diagnosis(log);
        QSignalSpy collected(&diagnosis, &Diagnosis::collected);
        diagnosis.collect();
        QTRY_COMPARE(collected.size(), 1);
        const auto files = collected.first().first().value<QVector<DiagnosisFile>>();
        QStringList names;
        for (const DiagnosisFile &file : files)
            names += file.name;
        QCOMPARE(names.join(QLatin1Char(' ')),
                 "versions.txt settings.txt service.txt tessavo-tools.log"_s);
        QVERIFY(files.at(0).text.contains(AccountContext::appVersion));
        QFETCH(QString, service);
        QVERIFY2(files.at(2).text.startsWith(service), qPrintable(files.at(2).text));
        QCOMPARE(files.at(3).text, "客户 ***\n"_s);

        QSignalSpy saved(&diagnosis, &Diagnosis::saved);
        diagnosis.save(files, folder.path());
        QTRY_COMPARE(saved.size(), 1);
        QCOMPARE(saved.first().at(1).toString(), QString());
        QCOMPARE(readFile(saved.first().at(0).toString() + "/tessavo-tools.log"_s),
                 QByteArray("客户 ***\n"));
        diagnosis.save(files, writeFile(folder.filePath("file"_s)));
        QTRY_COMPARE(saved.size(), 2);
        QVERIFY(!saved.last().at(1).toString().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestDiagnosis)
#include "test_diagnosis.moc"
