#include "files/chosenfiles.h"
#include "files/pathgate.h"
#include "files/paths.h"
#include "files/safename.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

class TestPaths : public QObject
{
    Q_OBJECT

private slots:
    void safeNames_data()
    {
        addColumns<QString, QString>({"name", "safe"});
        newRow("harmless", "IMG_0001 (2).JPG"_s, "IMG_0001 (2).JPG"_s);
        newRow("signs of URLs", "a#b%c&d+e😀.jpg"_s, "a#b%c&d+e😀.jpg"_s);
        newRow("leading dot", ".hidden"_s, ".hidden"_s);
        newRow("separators", "..\\..\\x/y"_s, ".._.._x_y"_s);
        newRow("illegal", "a<b>c:d\"e|f?g*"_s, "a_b_c_d_e_f_g_"_s);
        newRow("control", "a\tb\x7f"_s, "a_b_"_s);
        newRow("trailing dots", "张三. . "_s, "张三"_s);
        newRow("dot", "."_s, "_"_s);
        newRow("dots", ".."_s, "_"_s);
        newRow("blank", "   "_s, "_"_s);
        newRow("empty", QString(), "_"_s);
        newRow("device", "nul"_s, "nul_"_s);
        newRow("device with suffix", "Com1.tar.gz"_s, "Com1_.tar.gz"_s);
        newRow("device with blank", "CON .jpg"_s, "CON _.jpg"_s);
        newRow("device with superscript", "LPT²"_s, "LPT²_"_s);
        newRow("half a character", "a"_s + QChar(0xD83D) + "b"_s + QChar(0xDE00) + ".jpg"_s,
               "a_b_.jpg"_s);
        newRow("byte order mark", QChar(QChar::ByteOrderMark) + "a.jpg"_s, "_a.jpg"_s);
        newRow("no device", "COM10.jpg"_s, "COM10.jpg"_s);
        newRow("console", "CONSOLE"_s, "CONSOLE"_s);
    }

    void safeNames()
    {
        QFETCH(QString, name);
        QFETCH(QString, safe);
        QCOMPARE(safeFileName(name), safe);
        QCOMPARE(safeFileName(safe), safe);
    }

    void longNamesKeepTheirSuffix()
    {
        const QString fits = QString(200, QLatin1Char('x')) + ".jpg"_s;
        QCOMPARE(safeFileName(fits), fits);
        const QString device = safeFileName("con."_s + QString(300, QLatin1Char('x')));
        QCOMPARE(device, "con_."_s + QString(250, QLatin1Char('x')));
        for (const QString &letter : {"x"_s, "婚"_s, "😀"_s}) {
            const QString cut = safeFileName(letter.repeated(400) + ".jpeg"_s);
            QVERIFY(cut.endsWith(".jpeg"_s));
            QVERIFY(cut.size() > 60);
            QVERIFY(cut.toUtf8().size() <= 255 || cut.size() <= 255);
            // Whole characters only: half a surrogate pair would not survive the way to UTF-8 and
            // back.
            QCOMPARE(QString::fromUtf8(cut.toUtf8()), cut);
            QCOMPARE(cut.left(cut.size() - 5).remove(letter), QString());
        }
    }

    void gate_data()
    {
        using pathgate::Flaw;
        addColumns<QString, int>({"path", "flaw"});
        const auto row = [](Flaw flaw, const char *path) {
            newRow(path, QString::fromUtf8(path), int(flaw));
        };
        row(Flaw::None, "\\\\nas\\photos");
        row(Flaw::None, "//nas/photos/2024/..a/b c.~1");
#ifdef Q_OS_WIN
        row(Flaw::None, "d:/photos\\婚 #1 100%&+😀.jpg");
        row(Flaw::NotAbsolute, "\\photos");
        row(Flaw::Illegal, "D:\\photos:x");
#else
        row(Flaw::None, "/tmp/photos:x/婚 #1 100%&+😀.jpg");
        row(Flaw::None, "\\tmp\\.\\photos\\");
        row(Flaw::NotAbsolute, "D:\\photos");
#endif
        row(Flaw::Illegal, "\\\\nas\\photos:x");
        row(Flaw::Illegal, "//nas/photos/a\nb");
        row(Flaw::Empty, " ");
        for (const char *path : {"photos", "C:photos", "C:", "~/photos", "./photos", "未选择"})
            row(Flaw::NotAbsolute, path);
        for (const char *path : {"..", "../photos", "//nas/photos/..", "//nas/p/../x",
                                 "/tmp/... /x", "D:\\p\\..\\x", "\\\\..\\x\\y", "/tmp/.. /x"})
            row(Flaw::LeadsUp, path);
        for (const char *path : {"CON", "//nas/photos/nul.txt/x", "/tmp/Com1", "\\\\.\\COM1",
                                 "\\\\?\\D:\\photos", "\\??\\D:\\photos", "//nas/p/LPT² .jpg"})
            row(Flaw::Device, path);
    }

    void gate()
    {
        QFETCH(QString, path);
        QFETCH(int, flaw);
        QCOMPARE(int(pathgate::flawOf(path)), flaw);
        const pathgate::Refusal refusal{"A100-1 张三"_s, path, pathgate::Flaw(flaw)};
        QCOMPARE(refusal.isRefused(), flaw != 0);
        QVERIFY(refusal.text().contains(refusal.order) && refusal.text().contains(path));
    }

    void gateKeepsPathsInTheirFolder_data()
    {
        addColumns<QString, QString, bool>({"path", "folder", "below"});
        const QString order = "\\\\nas\\photos\\07-A1"_s;
        newRow("below", "//NAS/photos/07-a1/90/x.jpg"_s, order, true);
        newRow("dots and blanks", "\\\\nas\\photos.\\.\\07-A1 \\x.jpg"_s, order + "\\"_s, true);
        newRow("two spellings of one letter", "//nas/photos/07-A1/é/x"_s,
               "//nas/photos/07-A1/e\u0301"_s, true);
        newRow("itself", order + "\\"_s, order, false);
        newRow("beside", order + "-2\\x.jpg"_s, order, false);
        newRow("above", "//nas/photos"_s, order, false);
        newRow("and out again", order + "\\..\\x.jpg"_s, order, false);
        newRow("other share", "//nas/other/07-A1/x.jpg"_s, order, false);
        newRow("share and folder", "/nas/photos/07-A1/x.jpg"_s, order, false);
        newRow("of no folder", order + "\\x.jpg"_s, QString(), false);
        newRow("of a relative folder", order + "\\x.jpg"_s, "nas"_s, false);
    }

    void gateKeepsPathsInTheirFolder()
    {
        QFETCH(QString, path);
        QFETCH(QString, folder);
        QTEST(pathgate::isBelow(path, folder), "below");
    }

    void dropsNameWhatCannotBeRead()
    {
        const QTemporaryDir root;
        for (const char *name :
             {"b/10.JPG", "b/9.jpg", "b/c/1.nef", "b/c/1.txt", "b/2.TXT", "a.jpg",
              "b/.hidden/x.jpg", "b/.x.jpg", "b/.note", "closed/x.jpg", "elsewhere/x.jpg"})
            writeFile(root.filePath(QString::fromLatin1(name)));
        linkFolder(root.filePath("elsewhere"_s), root.filePath("b/link"_s));
        const QString closed = root.filePath("closed"_s);
        const QFile::Permissions open = QFile::permissions(closed);
        QFile::setPermissions(closed, {});
        const bool isClosed = !QDir(closed).isReadable(); // an administrator may read everything
        QStringList hiding = isClosed ? QStringList(closed) : QStringList();
        const UnreadableFolder nameless(root.filePath("b"_s));
        if (!nameless.path.isEmpty())
            hiding.prepend(nameless.path);
        QStringList paths = {root.filePath("a.jpg"_s), root.filePath("b"_s),
                             root.filePath("b/9.jpg"_s)};
        if (isClosed)
            paths.append(closed);
        const auto dropped = chosenfiles::expandDrop(paths, "图片 (*.jpg *.nef);;所有 (*.*)"_s);
        QFile::setPermissions(closed, open);
        QStringList found = dropped.files;
        found.replaceInStrings(root.path() + QLatin1Char('/'), QString());
        QCOMPARE(found.join(QLatin1Char(' ')), "a.jpg b/9.jpg b/10.JPG b/c/1.nef"_s);
        QCOMPARE(chosenfiles::ignoredNotice(dropped.ignored),
                 "已忽略 3 个不支持的文件：.txt 2 个，隐藏文件 1 个"_s);
        QCOMPARE(dropped.unreadable, hiding);
    }

    void shootDates_data()
    {
        addColumns<QString, QString>({"text", "folders"});
        newRow("one digit", "2024-3-7", "2024/03/07");
        newRow("two digits", "2024-11-30", "2024/11/30");
        newRow("empty parts drop", "-2024--3-7-", "2024/03/07");
        newRow("empty", "", "1970/01/01");
        newRow("two parts", "2024-03", "1970/01/01");
        newRow("four parts", "2024-03-07-1", "1970/01/01");
    }

    void shootDates()
    {
        QFETCH(QString, text);
        const ShootDate date = parseShootDate(text);
        QTEST((QStringList{date.year, date.month, date.day}.join(QLatin1Char('/'))), "folders");
        QCOMPARE(formatDate(2024, 5, 7), "2024-05-07"_s);
    }

    void importFolders_data()
    {
        addColumns<QString, QString, QString>({"changedKey", "value", "folder"});
        const QString root = "\\\\nas\\photos"_s;
        const auto row = [&root](const char *title, const char *key, const char *value,
                                 const char *below) {
            newRow(title, QString::fromLatin1(key), QString::fromUtf8(value),
                   root + QString::fromUtf8(below));
        };
        row("whole", "", "", "\\2024\\03\\07-A100-2_张三_李四");
        row("no service", "photoNum", "", "\\2024\\03\\07-A100_张三_李四");
        row("no man", "mname", "", "\\2024\\03\\07-A100-2_李四");
        row("no woman", "wname", "", "\\2024\\03\\07-A100-2_张三");
        row("hostile name", "wname", "..\\..\\x/y", "\\2024\\03\\07-A100-2_张三_.._.._x_y");
        row("placeholder as name", "mname", "%1%7", "\\2024\\03\\07-A100-2_%1%7_李四");
        row("hostile year", "shotdate_year", "..", "\\_\\03\\07-A100-2_张三_李四");
        row("dot at the end", "wname", "李四.", "\\2024\\03\\07-A100-2_张三_李四");
        newRow("configured", "importPath", "\\\\other\\x#1", "\\\\other\\x#1");
    }

    void importFolders()
    {
        QFETCH(QString, changedKey);
        QFETCH(QString, value);
        QMap<QString, QString> order = {
            {"importPublicPath"_s, "\\\\nas\\photos"_s},
            {"shotdate_year"_s, "2024"_s},
            {"shotdate_month"_s, "03"_s},
            {"shotdate_day"_s, "07"_s},
            {"orderNumber"_s, "A100"_s},
            {"photoNum"_s, "2"_s},
            {"mname"_s, "张三"_s},
            {"wname"_s, "李四"_s},
        };
        if (!changedKey.isEmpty())
            order.insert(changedKey, value);
        QTEST(composeImportPath(order), "folder");
    }

    void servicePaths_data()
    {
        addColumns<QString, QString>({"path", "submitted"});
        newRow("mounted", "/Volumes/photos/2024/x", "\\\\nas\\photos\\2024\\x");
        newRow("mounted, small", "/volumes/photos/x", "\\\\nas\\photos\\x");
        newRow("capitals stay", "/VOLUMES/photos/x", "\\VOLUMES\\photos\\x");
        newRow("inside", "/data/Volumes/x", "\\data\\Volumes\\x");
        newRow("share", "\\\\srv\\p\\x", "\\\\srv\\p\\x");
        newRow("drive", "D:/p/x", "D:\\p\\x");
        newRow("empty", "", "");
    }

    void servicePaths()
    {
        QFETCH(QString, path);
        QTEST(convertPathForService(path, "nas"_s), "submitted");
    }

    void shareHosts_data()
    {
        addColumns<QString, QString>({"orderPath", "host"});
        newRow("unc", "\\\\nas\\photos", "nas");
        newRow("slashes", "//nas/photos", "nas");
        newRow("drive", "D:\\photos", "studio.example");
        newRow("none", "", "studio.example");
        newRow("no host", "\\\\", "studio.example");
    }

    void shareHosts()
    {
        QFETCH(QString, orderPath);
        QTEST(shareHostOf(orderPath, "https://studio.example:8443"_s), "host");
    }
};

QTEST_GUILESS_MAIN(TestPaths)
#include "test_paths.moc"
