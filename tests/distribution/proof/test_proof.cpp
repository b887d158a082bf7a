#include "distribution/proof/oldfiles.h"
#include "distribution/proof/orderproof.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/text.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>

using Ending = FileOutcome::Ending;

Q_DECLARE_METATYPE(FileOutcome::Ending)

namespace {

const QString card = "设计分件"_s;
const QDateTime now({2026, 11, 23}, {18, 5, 7});
const QString putAwayTo = "旧文件/2026-11-23 18-05-07/"_s;

} // namespace

class TestProof : public QObject
{
    Q_OBJECT

private slots:
    void init() { folder_ = std::make_unique<QTemporaryDir>(); }

    /// A run was to write a.jpg; b.jpg is another file.
    void comparesTheFolder_data()
    {
        // files: what stands, "name=content"; earlier: what the ledger knows
        addColumns<QString, Ending, QStringList, QString>(
            {"stands", "ending", "earlier", "expected"});
        newRow("in place", "a.jpg=new", Ending::Written, QStringList(), "1/1");
        newRow("in another case", "A.JPG=new", Ending::Written, QStringList(), "1/1");
        newRow("its own source", "a.jpg=else", Ending::IsSource, QStringList(), "1/1");
        newRow("not written", "", Ending::NotWritten, QStringList(), "0/1 没有写入");
        newRow("not replaced", "a.jpg=older", Ending::NotWritten, QStringList("a.jpg"_s),
               "0/1 没有写入，仍是以前的文件 others:1");
        newRow("gone", "", Ending::Written, QStringList(), "0/1 写入后不见了");
        newRow("of another size", "a.jpg=newer", Ending::Written, QStringList(),
               "0/1 大小与写入时不同");
        newRow("moved away before", "a.jpg=new 旧文件/x/b.jpg=1", Ending::Written,
               QStringList("旧文件/x/b.jpg"_s), "1/1");
        newRow("foreign", "a.jpg=new b.jpg=1", Ending::Written, QStringList(), "1/1 others:1");
        newRow("earlier", "a.jpg=new x/b.jpg=1", Ending::Written, QStringList("x/b.jpg"_s),
               "1/1 earlier:x/b.jpg others:1");
        newRow("earlier, in this run too", "a.jpg=new", Ending::Written, QStringList("a.jpg"_s),
               "1/1");
        newRow("earlier, gone", "a.jpg=new", Ending::Written, QStringList("b.jpg"_s), "1/1");
        newRow("earlier, of another size", "a.jpg=new b.jpg=1", Ending::Written,
               QStringList("b.jpg size"_s), "1/1 others:1");
        newRow("earlier, of another time", "a.jpg=new b.jpg=1", Ending::Written,
               QStringList("b.jpg time"_s), "1/1 others:1");
        newRow("earlier, of another card", "a.jpg=new b.jpg=1", Ending::Written,
               QStringList("b.jpg card"_s), "1/1 other card:b.jpg others:1");
        newRow("earlier, elsewhere", "a.jpg=new ../b.jpg=1", Ending::Written,
               QStringList("../b.jpg"_s), "1/1");
    }

    void comparesTheFolder()
    {
        QFETCH(QString, stands);
        QFETCH(Ending, ending);
        QFETCH(QStringList, earlier);
        QVERIFY(QDir().mkpath(at({})));
        const QStringList standing = stands.split(QLatin1Char(' '), Qt::SkipEmptyParts);
        for (const QString &file : standing)
            writeFile(at(file.section(QLatin1Char('='), 0, 0)),
                      file.section(QLatin1Char('='), 1).toUtf8());
        QVector<EarlierFile> known;
        for (const QString &each : qAsConst(earlier))
            known.append(asItStands(each.section(QLatin1Char(' '), 0, 0),
                                    each.section(QLatin1Char(' '), 1)));
        FileOutcome file;
        file.target = at("a.jpg"_s);
        file.ending = ending;
        file.size = 3;
        const OrderProof proof = orderproof::prove(at({}), {file}, known, card);
        QVERIFY(proof.isRead);
        QStringList told{"%1/%2"_s.arg(proof.inPlace).arg(proof.expected)};
        for (const MissingFile &missing : proof.missing)
            told.append(orderproof::textOf(missing.why));
        for (const EarlierFile &each : proof.earlier)
            told.append("earlier:"_s + QDir(at({})).relativeFilePath(each.path));
        for (const EarlierFile &each : proof.ofOtherCards)
            told.append("other card:"_s + QDir(at({})).relativeFilePath(each.path));
        if (proof.others > 0)
            told.append("others:%1"_s.arg(proof.others));
        QTEST(told.join(QLatin1Char(' ')), "expected");
    }

    void tellsThatItCouldNotLook()
    {
        QVERIFY(!orderproof::prove(at("none"_s), {}, {}, card).isRead);
    }

    void followsNoLinks()
    {
        const QString elsewhere = folder_->filePath("elsewhere"_s);
        writeFile(elsewhere + "/b.jpg"_s, "1");
        QVERIFY(QDir().mkpath(at({})));
        if (!linkFolder(elsewhere, at("x"_s)))
            QSKIP("no links here");
        const EarlierFile through = asItStands("x/b.jpg"_s);
        QVERIFY(orderproof::prove(at({}), {}, {through}, card).earlier.isEmpty());
        const PutAway result = oldfiles::putAway(at({}), {through}, now);
        QCOMPARE(result.moved, 0);
        QCOMPARE(result.problems.size(), 1);
        QVERIFY(result.problems.first().contains("链接"_s));
        QCOMPARE(filesBelow(elsewhere), QStringList("b.jpg"_s));
        QVERIFY(!QFileInfo::exists(at("旧文件"_s)));
    }

    void putsAway_data()
    {
        // change: to a/b.jpg since it was looked at
        addColumns<QString, QString, QStringList>({"change", "problem", "expected"});
        newRow("unchanged", "", "", QStringList{putAwayTo + "a/b.jpg"_s, putAwayTo + "c.jpg"_s});
        const QStringList stays{"a/b.jpg"_s, putAwayTo + "c.jpg"_s};
        newRow("larger", "larger", "文件已变化，保留", stays);
        newRow("of another time", "touched", "文件已变化，保留", stays);
        newRow("protected", "protected", "文件只读，保留", stays);
        newRow("gone", "gone", "文件已变化，保留", QStringList(putAwayTo + "c.jpg"_s));
        newRow("a folder of that second", "clash", "",
               QStringList{"旧文件/2026-11-23 18-05-07 (2)/a/b.jpg"_s,
                           "旧文件/2026-11-23 18-05-07 (2)/c.jpg"_s, putAwayTo + "a/b.jpg"_s});
    }

    void putsAway()
    {
        QFETCH(QString, change);
        QFETCH(QString, problem);
        writeFile(at("a/b.jpg"_s), "12");
        writeFile(at("c.jpg"_s), "3");
        const QVector<EarlierFile> files{asItStands("a/b.jpg"_s), asItStands("c.jpg"_s)};
        if (change == "larger"_s)
            writeFile(at("a/b.jpg"_s), "123");
        else if (change == "touched"_s)
            touch(at("a/b.jpg"_s));
        else if (change == "protected"_s)
            QFile::setPermissions(at("a/b.jpg"_s), QFile::ReadOwner);
        else if (change == "gone"_s)
            QFile::remove(at("a/b.jpg"_s));
        else if (change == "clash"_s)
            writeFile(at(putAwayTo + "a/b.jpg"_s), "x");
        const PutAway result = oldfiles::putAway(at({}), files, now);
        QCOMPARE(result.problems.join(QString()).section(": "_s, 1), problem);
        QCOMPARE(result.moved, problem.isEmpty() ? 2 : 1);
        QTEST(filesBelow(at({})), "expected");
        QFile::setPermissions(at("a/b.jpg"_s), QFile::ReadOwner | QFile::WriteOwner);
    }

    void leavesEverythingWhereOldFilesIsNoFolder_data()
    {
        addColumns<bool>({"link"});
        newRow("a file", false);
        newRow("a link", true);
    }

    void leavesEverythingWhereOldFilesIsNoFolder()
    {
        QFETCH(bool, link);
        writeFile(at("c.jpg"_s), "3");
        const QString elsewhere = folder_->filePath("elsewhere"_s);
        QVERIFY(QDir().mkpath(elsewhere));
        if (!link)
            writeFile(at("旧文件"_s), "somebody's");
        else if (!linkFolder(elsewhere, at("旧文件"_s)))
            QSKIP("no links here");
        const PutAway result = oldfiles::putAway(at({}), {asItStands("c.jpg"_s)}, now);
        QCOMPARE(result.moved, 0);
        QCOMPARE(result.problems.size(), 1);
        QCOMPARE(readFile(at("c.jpg"_s)), QByteArray("3"));
        QCOMPARE(filesBelow(elsewhere), QStringList());
    }

private:
    QString at(const QString &path) const
    {
        const QString order = folder_->filePath("TS10001-服务1"_s);
        return path.isEmpty() ? order : QDir::cleanPath(order + QLatin1Char('/') + path);
    }

    /// As the ledger would know it, but for what \a differs.
    EarlierFile asItStands(const QString &path, const QString &differs = {}) const
    {
        const QFileInfo file(at(path));
        EarlierFile earlier{
            file.filePath(), file.size(), file.lastModified().toMSecsSinceEpoch(), card, {}};
        if (differs == "size"_s)
            ++earlier.size;
        else if (differs == "time"_s)
            ++earlier.modified;
        else if (differs == "card"_s)
            earlier.tool = "下载原始档"_s;
        return earlier;
    }

    static void touch(const QString &path)
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime({2020, 1, 1}, {}), QFileDevice::FileModificationTime));
    }

    std::unique_ptr<QTemporaryDir> folder_;
};

QTEST_GUILESS_MAIN(TestProof)
#include "test_proof.moc"
