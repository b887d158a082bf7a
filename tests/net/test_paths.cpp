#include "net/paths.h"
#include "net/safename.h"

#include <QtTest>

class TestPaths : public QObject
{
    Q_OBJECT

private slots:
    void safeNames_data();
    void safeNames();
    void longNamesKeepTheirSuffix();
    void shootDates_data();
    void shootDates();
    void importFolders_data();
    void importFolders();
    void servicePaths_data();
    void servicePaths();
    void shareHosts_data();
    void shareHosts();
};

void TestPaths::safeNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("safe");
    const auto row = [](const char *title, const QString &name, const QString &safe) {
        QTest::newRow(title) << name << safe;
    };
    row("harmless", QStringLiteral("IMG_0001 (2).JPG"), QStringLiteral("IMG_0001 (2).JPG"));
    row("signs of URLs", QStringLiteral("a#b%c&d+e😀.jpg"), QStringLiteral("a#b%c&d+e😀.jpg"));
    row("leading dot", QStringLiteral(".hidden"), QStringLiteral(".hidden"));
    row("separators", QStringLiteral("..\\..\\x/y"), QStringLiteral(".._.._x_y"));
    row("illegal", QStringLiteral("a<b>c:d\"e|f?g*"), QStringLiteral("a_b_c_d_e_f_g_"));
    row("control", QStringLiteral("a\tb\x7f"), QStringLiteral("a_b_"));
    row("trailing dots", QStringLiteral("张三. . "), QStringLiteral("张三"));
    row("dot", QStringLiteral("."), QStringLiteral("_"));
    row("dots", QStringLiteral(".."), QStringLiteral("_"));
    row("blank", QStringLiteral("   "), QStringLiteral("_"));
    row("empty", QString(), QStringLiteral("_"));
    row("device", QStringLiteral("nul"), QStringLiteral("nul_"));
    row("device with suffix", QStringLiteral("Com1.tar.gz"), QStringLiteral("Com1_.tar.gz"));
    row("device with blank", QStringLiteral("CON .jpg"), QStringLiteral("CON _.jpg"));
    row("device with superscript", QStringLiteral("LPT²"), QStringLiteral("LPT²_"));
    row("no device", QStringLiteral("COM10.jpg"), QStringLiteral("COM10.jpg"));
    row("console", QStringLiteral("CONSOLE"), QStringLiteral("CONSOLE"));
}

void TestPaths::safeNames()
{
    QFETCH(QString, name);
    QFETCH(QString, safe);
    QCOMPARE(safeFileName(name), safe);
    QCOMPARE(safeFileName(safe), safe);
}

void TestPaths::longNamesKeepTheirSuffix()
{
    const QString fits = QString(200, QLatin1Char('x')) + QStringLiteral(".jpg");
    QCOMPARE(safeFileName(fits), fits);
    for (const QString &letter : {QStringLiteral("x"), QStringLiteral("婚"), QStringLiteral("😀")}) {
        const QString cut = safeFileName(letter.repeated(400) + QStringLiteral(".jpeg"));
        QVERIFY(cut.endsWith(QStringLiteral(".jpeg")));
        QVERIFY(cut.size() > 60);
        QVERIFY(cut.toUtf8().size() <= 255 || cut.size() <= 255);
        // Whole characters only: half a surrogate pair would not survive the way to UTF-8 and back.
        QCOMPARE(QString::fromUtf8(cut.toUtf8()), cut);
        QCOMPARE(cut.left(cut.size() - 5).remove(letter), QString());
    }
}

void TestPaths::shootDates_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("folders");
    QTest::newRow("one digit") << "2024-3-7"
                               << "2024/03/07";
    QTest::newRow("two digits") << "2024-11-30"
                                << "2024/11/30";
    QTest::newRow("empty parts drop") << "-2024--3-7-"
                                      << "2024/03/07";
    QTest::newRow("empty") << ""
                           << "1970/01/01";
    QTest::newRow("two parts") << "2024-03"
                               << "1970/01/01";
    QTest::newRow("four parts") << "2024-03-07-1"
                                << "1970/01/01";
}

void TestPaths::shootDates()
{
    QFETCH(QString, text);
    const ShootDate date = parseShootDate(text);
    QTEST((QStringList{date.year, date.month, date.day}.join(QLatin1Char('/'))), "folders");
    QCOMPARE(formatDate(2024, 5, 7), QStringLiteral("2024-05-07"));
}

void TestPaths::importFolders_data()
{
    QTest::addColumn<QString>("changedKey");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("folder");
    const QString root = QStringLiteral("\\\\nas\\photos");
    const auto row = [&root](const char *title, const char *key, const char *value,
                             const char *below) {
        QTest::newRow(title) << QString::fromLatin1(key) << QString::fromUtf8(value)
                             << root + QString::fromUtf8(below);
    };
    row("whole", "", "", "\\2024\\03\\07-A100-2_张三_李四");
    row("no service", "photoNum", "", "\\2024\\03\\07-A100_张三_李四");
    row("no man", "mname", "", "\\2024\\03\\07-A100-2_李四");
    row("no woman", "wname", "", "\\2024\\03\\07-A100-2_张三");
    row("hostile name", "wname", "..\\..\\x/y", "\\2024\\03\\07-A100-2_张三_.._.._x_y");
    row("placeholder as name", "mname", "%1%7", "\\2024\\03\\07-A100-2_%1%7_李四");
    row("hostile year", "shotdate_year", "..", "\\_\\03\\07-A100-2_张三_李四");
    row("dot at the end", "wname", "李四.", "\\2024\\03\\07-A100-2_张三_李四");
    QTest::newRow("configured") << "importPath"
                                << "\\\\other\\x#1"
                                << "\\\\other\\x#1";
}

void TestPaths::importFolders()
{
    QFETCH(QString, changedKey);
    QFETCH(QString, value);
    QMap<QString, QString> order = {
        {QStringLiteral("importPublicPath"), QStringLiteral("\\\\nas\\photos")},
        {QStringLiteral("shotdate_year"), QStringLiteral("2024")},
        {QStringLiteral("shotdate_month"), QStringLiteral("03")},
        {QStringLiteral("shotdate_day"), QStringLiteral("07")},
        {QStringLiteral("orderNumber"), QStringLiteral("A100")},
        {QStringLiteral("photoNum"), QStringLiteral("2")},
        {QStringLiteral("mname"), QStringLiteral("张三")},
        {QStringLiteral("wname"), QStringLiteral("李四")},
    };
    if (!changedKey.isEmpty())
        order.insert(changedKey, value);
    QTEST(composeImportPath(order), "folder");
}

void TestPaths::servicePaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("submitted");
    QTest::newRow("mounted") << "/Volumes/photos/2024/x"
                             << "\\\\nas\\photos\\2024\\x";
    QTest::newRow("mounted, small") << "/volumes/photos/x"
                                    << "\\\\nas\\photos\\x";
    QTest::newRow("capitals stay") << "/VOLUMES/photos/x"
                                   << "\\VOLUMES\\photos\\x";
    QTest::newRow("inside") << "/data/Volumes/x"
                            << "\\data\\Volumes\\x";
    QTest::newRow("share") << "\\\\srv\\p\\x"
                           << "\\\\srv\\p\\x";
    QTest::newRow("drive") << "D:/p/x"
                           << "D:\\p\\x";
    QTest::newRow("empty") << ""
                           << "";
}

void TestPaths::servicePaths()
{
    QFETCH(QString, path);
    QTEST(convertPathForService(path, QStringLiteral("nas")), "submitted");
}

void TestPaths::shareHosts_data()
{
    QTest::addColumn<QString>("orderPath");
    QTest::addColumn<QString>("host");
    QTest::newRow("unc") << "\\\\nas\\photos"
                         << "nas";
    QTest::newRow("slashes") << "//nas/photos"
                             << "nas";
    QTest::newRow("drive") << "D:\\photos"
                           << "studio.example";
    QTest::newRow("none") << ""
                          << "studio.example";
    QTest::newRow("no host") << "\\\\"
                             << "studio.example";
}

void TestPaths::shareHosts()
{
    QFETCH(QString, orderPath);
    QTEST(shareHostOf(orderPath, QStringLiteral("https://studio.example:8443")), "host");
}

QTEST_GUILESS_MAIN(TestPaths)
#include "test_paths.moc"
