#include "marks/rules/capturedays.h"
#include "marks/rules/marklines.h"
#include "marks/rules/renaming.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

Q_DECLARE_METATYPE(std::optional<marks::StandingFile>)
Q_DECLARE_METATYPE(QVector<marks::KnownCopy>)
Q_DECLARE_METATYPE(marks::Hashes)
Q_DECLARE_METATYPE(marks::Mark)

using namespace marks;

namespace {

const OrderIdentity thisOrder{"101"_s, "1"_s, "p1"_s};
const OrderIdentity otherOrder{"101"_s, "2"_s, "p2"_s};
const QString source = "/card/IMG_1.JPG"_s;
const QString standingPath = "/orders/1/IMG_1.JPG"_s;
const QString renamedPath = "/orders/1/IMG_1_2.JPG"_s;

StandingFile standing(qint64 size, qint64 modified = 7, const QString &path = standingPath)
{
    return {path, size, modified};
}

KnownCopy copyFor(const OrderIdentity &order, const QByteArray &content,
                  const std::optional<StandingFile> &stands, bool isSame = false)
{
    KnownCopy copy;
    copy.order = order;
    copy.orderNumber = "TS10004-1"_s;
    copy.day = QDate(QDate::currentDate().year(), 11, 22);
    copy.isSameSource = isSame;
    copy.sourceHash = content;
    copy.targetHash = content;
    copy.standing = stands;
    return copy;
}

KnownCopy upright(KnownCopy copy)
{
    copy.isUpright = true;
    copy.targetHash = "turned";
    return copy;
}

MarkedFile marked(Mark mark, const QString &path = source)
{
    MarkedFile file;
    file.file = {path, "\\\\nas\\1\\"_s + path.section(QLatin1Char('/'), -1), 5, 7};
    file.mark = mark;
    return file;
}

QDateTime at(const QString &time)
{
    return QDateTime::fromString(time, "yyyy-MM-dd HH:mm"_s);
}

Captures taken(const QStringList &times, int chosen = 0)
{
    Captures captures;
    for (const QString &time : times)
        captures.photos.append({source, at(time), false});
    captures.lookedAt = times.size();
    captures.chosen = qMax(chosen, times.size());
    return captures;
}

} // namespace

class TestMarkRules : public QObject
{
    Q_OBJECT

private slots:
    void judgesAFile_data();
    void judgesAFile();
    void saysWhatMatters();
    void listsWhatALineIsAbout();
    void renamesWhatBelongsTogether_data();
    void renamesWhatBelongsTogether();
    void tellsDaysThatDiffer_data();
    void tellsDaysThatDiffer();
    void samplesEvenly();
};

void TestMarkRules::judgesAFile_data()
{
    using Copies = QVector<KnownCopy>;
    using Stands = std::optional<StandingFile>;
    addColumns<Stands, Copies, Hashes, Mark, QStringList>(
        {"standing", "copies", "hashes", "mark", "toRead"});
    const Stands none;
    const QStringList nothing;
    const QStringList bothFiles = {standingPath, source};
    const Hashes equal = {{source, "a"}, {standingPath, "a"}};
    const Hashes unequal = {{source, "a"}, {standingPath, "b"}};
    const Hashes unreadable = {{source, ""}, {standingPath, ""}};

    newRow("nothing speaks of it", none, Copies{}, Hashes{}, Mark::New, nothing);
    newRow("another size stands", Stands(standing(4)), Copies{}, Hashes{}, Mark::Differs, nothing);
    newRow("the same size stands, unread", Stands(standing(5)), Copies{}, Hashes{}, Mark::Comparing,
           bothFiles);
    newRow("equal content stands", Stands(standing(5, 8)), Copies{}, equal, Mark::Imported,
           nothing);
    newRow("other content of the same size stands", Stands(standing(5)), Copies{}, unequal,
           Mark::Differs, nothing);
    newRow("neither can be read", Stands(standing(5)), Copies{}, unreadable, Mark::Differs,
           nothing);

    const Copies same = {copyFor(thisOrder, "a", standing(5), true)};
    newRow("the very file, its copy as it was", Stands(standing(5)), same, Hashes{}, Mark::Imported,
           nothing);
    newRow("its copy was replaced by another size", Stands(standing(4)),
           Copies{copyFor(thisOrder, "a", standing(4), true)}, Hashes{}, Mark::Differs, nothing);
    newRow("its copy was touched: what is in it counts", Stands(standing(5, 9)),
           Copies{copyFor(thisOrder, "a", standing(5, 9), true)}, Hashes{}, Mark::Comparing,
           bothFiles);
    newRow("its copy was deleted", none, Copies{copyFor(thisOrder, "a", none, true)}, Hashes{},
           Mark::New, nothing);
    newRow("its copy stands under another name", none,
           Copies{copyFor(thisOrder, "a", standing(5, 7, renamedPath), true)}, Hashes{},
           Mark::Imported, nothing);

    const Copies twin = {copyFor(thisOrder, "a", standing(5))};
    newRow("another card's file of that name, size and time", Stands(standing(5)), twin, Hashes{},
           Mark::Comparing, QStringList{source, standingPath});
    newRow("which is the same photo", Stands(standing(5)), twin, Hashes{{source, "a"}},
           Mark::Imported, nothing);
    newRow("which is another photo", Stands(standing(5)), twin,
           Hashes{{source, "c"}, {standingPath, "a"}}, Mark::Differs, nothing);
    newRow("only sizes were checked, on another card", Stands(standing(5)),
           Copies{copyFor(thisOrder, {}, standing(5))}, Hashes{}, Mark::Comparing, bothFiles);

    newRow("an upright copy, unread", Stands(standing(9)),
           Copies{upright(copyFor(thisOrder, "a", standing(9), true))}, Hashes{}, Mark::Comparing,
           QStringList{standingPath});
    newRow("an upright copy", Stands(standing(9)),
           Copies{upright(copyFor(thisOrder, "a", standing(9), true))},
           Hashes{{standingPath, "turned"}}, Mark::Imported, nothing);

    const Copies elsewhere = {copyFor(otherOrder, "a", none, true)};
    newRow("imported for another order", none, elsewhere, Hashes{}, Mark::OtherOrder, nothing);
    newRow("perhaps imported for another order", none, Copies{copyFor(otherOrder, "a", none)},
           Hashes{}, Mark::Comparing, QStringList{source});
    newRow("and it would replace a file here", Stands(standing(4)), elsewhere, Hashes{},
           Mark::Differs, nothing);
    newRow("for both orders", Stands(standing(5)), same + elsewhere, Hashes{}, Mark::Imported,
           nothing);
}

void TestMarkRules::judgesAFile()
{
    QFETCH(std::optional<StandingFile>, standing);
    QFETCH(QVector<KnownCopy>, copies);
    QFETCH(Hashes, hashes);
    QFETCH(QStringList, toRead);
    Evidence evidence;
    evidence.file = {source, "\\\\nas\\1\\IMG_1.JPG"_s, 5, 7};
    evidence.standing = standing;
    evidence.copies = copies;

    MarkedFile judged = judge(evidence, thisOrder, hashes);
    QTEST(judged.mark, "mark");
    judged.toRead.sort();
    toRead.sort();
    QCOMPARE(judged.toRead, toRead);

    evidence.isReadable = false;
    QCOMPARE(judge(evidence, thisOrder, hashes).mark, Mark::None);
}

void TestMarkRules::saysWhatMatters()
{
    OrderLook look;
    look.marks.order = thisOrder;
    look.marks.orderNumber = "TS10001-1"_s;
    look.fileWord = "照片"_s;
    look.shootingDay = QDate(2026, 11, 20);
    look.marks.files = {marked(Mark::Differs, "/c/1"_s), marked(Mark::Imported, "/c/2"_s),
                        marked(Mark::New, "/c/3"_s), marked(Mark::OtherOrder, "/c/4"_s),
                        marked(Mark::Comparing, "/c/5"_s)};
    look.marks.files[0].elsewhere = copyFor(otherOrder, "a", {});
    look.marks.files[3].elsewhere = copyFor(otherOrder, "a", {});
    look.captures = taken({"2026-11-22 10:00"_s});

    const auto texts = [](const QVector<OrderLook> &looks, bool mayRename) {
        QStringList all;
        const auto lines = linesOf(looks, mayRename);
        for (const Line &line : lines) {
            QString text = line.text;
            for (const Way way : line.ways)
                text += " ["_s + textOf(way) + "]"_s;
            all.append(text);
        }
        return all;
    };
    const QString captured = "照片拍摄于 11-22，订单拍照日期 11-20 [查看]"_s;
    QCOMPARE(
        texts({look}, true),
        (QStringList{"1 个同名文件内容不同，导入将替换 [查看] [跳过] [改名导入]"_s,
                     "1 个已导入 [跳过]"_s, "2 个文件 11-22 已导入 TS10004-1 [查看]"_s, captured}));
    QCOMPARE(texts({look}, false).constFirst(), "1 个同名文件内容不同，导入将替换 [查看] [跳过]"_s);

    OrderLook second = look;
    second.marks.order = otherOrder;
    second.marks.orderNumber = "TS10002-1"_s;
    second.marks.files = {marked(Mark::Differs)};
    second.captures = {};
    QCOMPARE(texts({look, second}, true).constFirst(),
             "2 个同名文件内容不同，导入将替换 [查看] [跳过] [改名导入]"_s);
    QCOMPARE(texts({look, second}, true).constLast(), "TS10001-1 "_s + captured);
    QCOMPARE(linesOf({look, second}, true).constFirst().sources.value(otherOrder),
             QSet<QString>{source});

    OrderLook good = look;
    good.marks.files = {marked(Mark::New)};
    good.captures = taken({"2026-11-20 10:00"_s});
    QCOMPARE(texts({good}, true), QStringList());
}

void TestMarkRules::listsWhatALineIsAbout()
{
    OrderLook look;
    look.marks.order = thisOrder;
    look.marks.files = {marked(Mark::New, "/c/1"_s), marked(Mark::Differs)};
    look.marks.files[1].standing = standing(4, 6);
    const Line line = linesOf({look}, true).constFirst();
    const QVector<Detail> details = detailsOf(line, {look});
    QCOMPARE(details.size(), 1);
    QCOMPARE(details.first().file.source, source);
    QCOMPARE(details.first().otherPath, standingPath);
    QCOMPARE(details.first().other->size, 4);
}

void TestMarkRules::renamesWhatBelongsTogether_data()
{
    addColumns<QStringList, QStringList, QStringList, QStringList>(
        {"chosen", "wanted", "standing", "names"});
    const QStringList trio = {"/c/101/IMG_1.JPG"_s, "/c/101/IMG_1.CR2"_s, "/c/101/img_1.xmp"_s};
    newRow("photo, raw file and side file", trio, QStringList{"/c/101/IMG_1.JPG"_s}, QStringList{},
           QStringList{"IMG_1_2.JPG"_s, "IMG_1_2.CR2"_s, "IMG_1_2.xmp"_s});
    newRow("by the raw file, whose side file bears its whole name",
           QStringList{"/c/IMG_1.JPG"_s, "/c/IMG_1.CR2"_s, "/c/IMG_1.CR2.xmp"_s},
           QStringList{"/c/IMG_1.CR2"_s}, QStringList{},
           QStringList{"IMG_1_2.JPG"_s, "IMG_1_2.CR2"_s, "IMG_1_2.CR2.xmp"_s});
    newRow("a number taken in any folder, in any case", trio, QStringList{"/c/101/IMG_1.JPG"_s},
           QStringList{"img_1_2.nef"_s, "IMG_1_3.xmp"_s},
           QStringList{"IMG_1_4.JPG"_s, "IMG_1_4.CR2"_s, "IMG_1_4.xmp"_s});
    newRow("a number taken by what is chosen", QStringList{"/c/IMG_1.JPG"_s, "/c/IMG_1_2.CR2"_s},
           QStringList{"/c/IMG_1.JPG"_s}, QStringList{},
           QStringList{"IMG_1_3.JPG"_s, "IMG_1_2.CR2"_s});
    newRow("another folder's are others", QStringList{"/c/100/IMG_1.JPG"_s} + trio,
           QStringList{"/c/101/IMG_1.CR2"_s}, QStringList{},
           QStringList{"IMG_1.JPG"_s, "IMG_1_2.JPG"_s, "IMG_1_2.CR2"_s, "IMG_1_2.xmp"_s});
    newRow("two folders at once", QStringList{"/c/100/IMG_1.JPG"_s, "/c/101/IMG_1.JPG"_s},
           QStringList{"/c/100/IMG_1.JPG"_s, "/c/101/IMG_1.JPG"_s}, QStringList{},
           QStringList{"IMG_1_2.JPG"_s, "IMG_1_3.JPG"_s});
    newRow("points within a name", QStringList{"/c/2026.11.20.jpg"_s, "/c/2026.11.21.jpg"_s},
           QStringList{"/c/2026.11.20.jpg"_s}, QStringList{},
           QStringList{"2026.11.20_2.jpg"_s, "2026.11.21.jpg"_s});
    newRow("imported ones stay", QStringList{"/c/IMG_1.JPG"_s, "/c/IMG_1.CR2 (imported)"_s},
           QStringList{"/c/IMG_1.JPG"_s}, QStringList{},
           QStringList{"IMG_1_2.JPG"_s, "IMG_1.CR2"_s});
}

void TestMarkRules::renamesWhatBelongsTogether()
{
    QFETCH(QStringList, chosen);
    QFETCH(QStringList, wanted);
    QFETCH(QStringList, standing);
    QVector<renaming::File> files;
    for (QString path : chosen) {
        const bool isImported = path.endsWith(" (imported)"_s);
        path = path.section(QLatin1Char(' '), 0, 0);
        files.append({path, path.section(QLatin1Char('/'), -1), !isImported});
    }
    const auto names = renaming::renamed(files, QSet<QString>(wanted.cbegin(), wanted.cend()),
                                         renaming::takenBases(standing));
    QStringList got;
    for (const renaming::File &file : qAsConst(files))
        got.append(names.value(file.source, file.name));
    QTEST(got, "names");

    // A number is not lost where a name is as long as a name may be.
    const QString longest = QString(251, QLatin1Char('n')) + ".JPG"_s;
    const auto shortened =
        renaming::renamed({{"/c/"_s + longest, longest}}, {"/c/"_s + longest}, {});
    QVERIFY(shortened.value("/c/"_s + longest).endsWith("n_2.JPG"_s));
    QVERIFY(shortened.value("/c/"_s + longest).size() <= 255);
}

void TestMarkRules::tellsDaysThatDiffer_data()
{
    addColumns<QStringList, int, QString, QString>({"times", "chosen", "shotDate", "sentence"});
    newRow("its own day", QStringList{"2026-11-20 00:01"_s, "2026-11-20 23:59"_s}, 0, "2026-11-20",
           "");
    newRow("the night after", QStringList{"2026-11-20 22:00"_s, "2026-11-21 02:30"_s}, 0,
           "2026-11-20", "");
    newRow("another day", QStringList{"2026-11-22 09:00"_s, "2026-11-22 10:00"_s}, 0, "2026-11-20",
           "照片拍摄于 11-22，订单拍照日期 11-20");
    newRow("the day before", QStringList{"2026-11-19 23:00"_s}, 0, "2026-11-20",
           "照片拍摄于 11-19，订单拍照日期 11-20");
    newRow("several days, its own among them",
           QStringList{"2026-11-20 09:00"_s, "2026-11-22 09:00"_s, "2026-11-21 09:00"_s}, 0,
           "2026-11-20", "部分照片拍摄于 11-21、11-22，订单拍照日期 11-20");
    newRow("many days",
           QStringList{"2026-11-01 09:00"_s, "2026-11-03 09:00"_s, "2026-11-05 09:00"_s,
                       "2026-11-09 09:00"_s},
           0, "2026-11-20", "照片拍摄于 11-01 至 11-09，订单拍照日期 11-20");
    newRow("another year", QStringList{"2025-12-31 09:00"_s}, 0, "2026-1-2",
           "照片拍摄于 2025-12-31，订单拍照日期 2026-01-02");
    newRow("a sample", QStringList{"2026-11-22 09:00"_s}, 900, "2026-11-20 08:00:00",
           "照片拍摄于 11-22，订单拍照日期 11-20（抽查 1/900）");
    newRow("no shooting day", QStringList{"2026-11-22 09:00"_s}, 0, "", "");
    newRow("no day at all", QStringList{"2026-11-22 09:00"_s}, 0, "0000-00-00", "");
    newRow("nothing told", QStringList{}, 3, "2026-11-20", "");
}

void TestMarkRules::tellsDaysThatDiffer()
{
    QFETCH(QStringList, times);
    QFETCH(int, chosen);
    QFETCH(QString, shotDate);
    QTEST(captureSentence(taken(times, chosen), shootingDayOf(shotDate), "照片"_s), "sentence");
}

void TestMarkRules::samplesEvenly()
{
    QCOMPARE(sampleOf(3, 10), (QVector<int>{0, 1, 2}));
    QCOMPARE(sampleOf(10, 4), (QVector<int>{0, 3, 6, 9}));
    QCOMPARE(sampleOf(5, 1), QVector<int>{0});
    QCOMPARE(sampleOf(0, 5), QVector<int>());
}

QTEST_GUILESS_MAIN(TestMarkRules)
#include "test_markrules.moc"
