#include "files/contenthash.h"
#include "ledger/ledger.h"
#include "marks/run/choicemarks.h"
#include "marks/run/filelook.h"
#include "pictures/cameradata.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QFile>
#include <QFileInfo>
#include <QSemaphore>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QtEndian>

using namespace marks;

namespace {

const OrderIdentity order{"101"_s, "1"_s, "p1"_s};

/// What a camera writes of the moment, as the head of a raw file or within a JPEG.
QByteArray exifOf(const QByteArray &time)
{
    const auto number = [](auto value) {
        const auto bytes = qToLittleEndian(value);
        return QByteArray(reinterpret_cast<const char *>(&bytes), int(sizeof bytes));
    };
    const auto entry = [&](quint16 tag, quint16 type, quint32 count, quint32 value) {
        return number(tag) + number(type) + number(count) + number(value);
    };
    constexpr quint32 secondDirectory = 8 + 2 + 12 + 4;
    constexpr quint32 text = secondDirectory + 2 + 12 + 4;
    return "II*" + QByteArray(1, '\0') + number(quint32(8)) + number(quint16(1)) +
           entry(0x8769, 4, 1, secondDirectory) + number(quint32(0)) + number(quint16(1)) +
           entry(0x9003, 2, 20, text) + number(quint32(0)) + time + QByteArray(1, '\0');
}

QByteArray jpegTaken(const QByteArray &time)
{
    return withCameraData("\xff\xd8\xff\xd9", {exifOf(time), {}});
}

} // namespace

class TestChoiceMarks : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        disk_ = std::make_unique<QTemporaryDir>();
        choices_ = std::make_unique<ChoiceMarks>();
    }
    void cleanup()
    {
        choices_.reset();
        diskPool().waitForDone();
    }

    void comparesWithTheTarget();
    void readsWhenPhotosWereTaken();
    void theNewestChoiceCounts();
    void keepsWhatItKnows();
    void waitsForNoDisk();
    void findsNamesFreeInEveryFolder();
    void remembersEarlierImports();

private:
    QString path(const QString &name) const { return disk_->filePath(name); }
    /// The files are on the card; their targets lie in the folder "target".
    Choice choiceOf(const QStringList &names, const QString &shotDate = {}) const
    {
        Choice choice;
        choice.order = order;
        choice.folders.append(wireForm(path("target"_s)));
        choice.shotDate = shotDate;
        choice.fileWord = "照片"_s;
        for (const QString &name : names)
            choice.files.append({path("card/"_s + name), wireForm(path("target/"_s + name))});
        return choice;
    }
    Mark markOf(const QString &name) const
    {
        return choices_->marksOf(order).value(path("card/"_s + name));
    }

    std::unique_ptr<QTemporaryDir> disk_;
    std::unique_ptr<ChoiceMarks> choices_;
};

void TestChoiceMarks::comparesWithTheTarget()
{
    writeFile(path("card/new.jpg"_s), "1");
    writeFile(path("card/same.jpg"_s), "equal");
    writeFile(path("card/size.jpg"_s), "longer");
    writeFile(path("card/bytes.jpg"_s), "abcde");
    writeFile(path("target/SAME.jpg"_s), "equal");
    writeFile(path("target/size.jpg"_s), "short");
    writeFile(path("target/bytes.jpg"_s), "abcdf");
    QSignalSpy told(choices_.get(), &ChoiceMarks::changed);
    choices_->sync(
        {choiceOf({"new.jpg"_s, "same.jpg"_s, "size.jpg"_s, "bytes.jpg"_s, "gone.jpg"_s})});
    QVERIFY(!told.isEmpty());
    QTRY_VERIFY(!choices_->isLooking());
    QCOMPARE(markOf("new.jpg"_s), Mark::New);
    QCOMPARE(markOf("same.jpg"_s), Mark::Imported);
    QCOMPARE(markOf("size.jpg"_s), Mark::Differs);
    QCOMPARE(markOf("bytes.jpg"_s), Mark::Differs);
    QCOMPARE(markOf("gone.jpg"_s), Mark::None);

    choices_->sync({});
    QVERIFY(choices_->looks().isEmpty());
}

void TestChoiceMarks::readsWhenPhotosWereTaken()
{
    writeFile(path("card/a.jpg"_s), jpegTaken("2026:11:22 09:30:00"));
    writeFile(path("card/b.CR2"_s), exifOf("2026:11:22 10:30:00"));
    writeFile(path("card/sent by chat.jpg"_s), jpegTaken({})); // tells nothing
    const QString plain = writeFile(path("card/c.raf"_s), "no data of a camera");
    const QDateTime fileTime(QDate(2026, 11, 20), QTime(12, 0));
    QFile file(plain);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(fileTime, QFileDevice::FileModificationTime));
    file.close();
    Choice choice =
        choiceOf({"a.jpg"_s, "b.CR2"_s, "sent by chat.jpg"_s, "c.raf"_s}, "2026-11-20"_s);
    choices_->sync({choice});
    QTRY_VERIFY(!choices_->isLooking());
    const auto sentence = [this] {
        const OrderLook look = choices_->looks().first();
        return captureSentence(look.captures, look.shootingDay, look.fileWord);
    };
    QCOMPARE(sentence(), "部分照片拍摄于 11-22，订单拍照日期 11-20"_s);

    choice.fileTime = FileTime::IsNone;
    choices_->sync({choice});
    QTRY_VERIFY(!choices_->isLooking());
    QCOMPARE(sentence(), "照片拍摄于 11-22，订单拍照日期 11-20"_s);
}

void TestChoiceMarks::theNewestChoiceCounts()
{
    for (const char *name : {"a.jpg", "b.jpg"}) {
        writeFile(path("card/"_s + QString::fromLatin1(name)), name);
        writeFile(path("target/"_s + QString::fromLatin1(name)), name);
    }
    choices_->sync({choiceOf({"a.jpg"_s})});
    choices_->sync({choiceOf({"b.jpg"_s})});
    QTRY_VERIFY(!choices_->isLooking());
    diskPool().waitForDone();
    QCoreApplication::processEvents();
    QCOMPARE(choices_->marksOf(order),
             (QHash<QString, Mark>{{path("card/b.jpg"_s), Mark::Imported}}));
}

void TestChoiceMarks::keepsWhatItKnows()
{
    writeFile(path("card/a.jpg"_s), "a");
    writeFile(path("card/b.jpg"_s), "b");
    writeFile(path("target/a.jpg"_s), "a");
    choices_->sync({choiceOf({"a.jpg"_s, "b.jpg"_s})});
    QTRY_COMPARE(markOf("a.jpg"_s), Mark::Imported);
    choices_->sync({choiceOf({"a.jpg"_s})});
    QCOMPARE(markOf("a.jpg"_s), Mark::Imported); // at once: no flicker
    QTRY_VERIFY(!choices_->isLooking());

    // What was read of a file that is another one by now does not count.
    writeFile(path("target/a.jpg"_s), "x");
    QFile changed(path("target/a.jpg"_s));
    QVERIFY(changed.open(QIODevice::ReadWrite));
    QVERIFY(changed.setFileTime(QDateTime(QDate(2020, 1, 1), QTime(0, 0)),
                                QFileDevice::FileModificationTime));
    changed.close();
    choices_->sync({choiceOf({"a.jpg"_s, "b.jpg"_s})});
    QTRY_COMPARE(markOf("a.jpg"_s), Mark::Differs);
}

void TestChoiceMarks::waitsForNoDisk()
{
    writeFile(path("card/a.jpg"_s), "a");
    // The share takes no more looks while these hang.
    QSemaphore release;
    QSemaphore begun;
    QObject context;
    constexpr int looksAtOnce = 2;
    for (int hanging = 0; hanging < looksAtOnce; ++hanging) {
        onDisk(
            &context, path("target"_s),
            [&] {
                begun.release();
                release.acquire();
            },
            [] {});
    }
    begun.acquire(looksAtOnce);
    choices_->sync({choiceOf({"a.jpg"_s})});
    QVERIFY(choices_->isLooking());
    QCoreApplication::processEvents();
    QCOMPARE(markOf("a.jpg"_s), Mark::None);
    choices_->stop(); // an import begins
    QVERIFY(!choices_->isLooking());
    release.release(looksAtOnce);
    diskPool().waitForDone();
    QCoreApplication::processEvents();
    QCOMPARE(markOf("a.jpg"_s), Mark::None);

    choices_->sync({choiceOf({"a.jpg"_s})}); // it is over
    QTRY_COMPARE(markOf("a.jpg"_s), Mark::New);
}

void TestChoiceMarks::findsNamesFreeInEveryFolder()
{
    writeFile(path("photos/img_1_2.jpg"_s));
    writeFile(path("raw/IMG_1_3.CR2"_s));
    const QString photo = path("card/IMG_1.JPG"_s);
    const QString raw = path("card/IMG_1.CR2"_s);
    RenameRequest request{
        order,
        {{photo, "IMG_1.JPG"_s, true}, {raw, "IMG_1.CR2"_s, true}},
        {photo},
        {wireForm(path("photos"_s)), wireForm(path("raw"_s)), wireForm(path("not there yet"_s))}};
    const auto names = findNewNames({request}).names.value(order);
    QCOMPARE(names, (QHash<QString, QString>{{photo, "IMG_1_4.JPG"_s}, {raw, "IMG_1_4.CR2"_s}}));
}

void TestChoiceMarks::remembersEarlierImports()
{
    Ledger ledger(path("ledger"_s));
    ledger.makeCurrent();
    const auto imported = [&](const OrderIdentity &of, const QString &name, const QString &target) {
        const QString source = path("card/"_s + name);
        const QFileInfo info(source);
        ledger::NewCopy copy;
        copy.source = source;
        copy.sourceBytes = info.size();
        copy.sourceModifiedMs = info.lastModified().toMSecsSinceEpoch();
        copy.target = wireForm(path(target));
        const auto run = ledger.beginRun({{"9001"_s, "101"_s, ledger::Work::ImportOriginals}, {}});
        const auto ids = ledger.beginCopies(run, {of, "TS10004-1"_s, {}}, {copy});
        const QByteArray hash = readContent(source).hash;
        ledger.finishCopy(ids.first(), {Proof::Cache, hash, hash, info.size()});
        QVERIFY(ledger.waitUntilWritten());
    };
    for (const char *name : {"other.jpg", "renamed.jpg", "deleted.jpg"})
        writeFile(path("card/"_s + QString::fromLatin1(name)), name);
    imported({"101"_s, "2"_s, "p2"_s}, "other.jpg"_s, "elsewhere/other.jpg"_s);
    imported(order, "renamed.jpg"_s, "target/renamed_2.jpg"_s);
    imported(order, "deleted.jpg"_s, "target/deleted.jpg"_s);
    writeFile(path("target/renamed_2.jpg"_s), "renamed.jpg");
    choices_->sync({choiceOf({"other.jpg"_s, "renamed.jpg"_s, "deleted.jpg"_s})});
    QTRY_VERIFY(!choices_->isLooking());
    QCOMPARE(markOf("other.jpg"_s), Mark::OtherOrder);
    QCOMPARE(markOf("renamed.jpg"_s), Mark::Imported);
    QCOMPARE(markOf("deleted.jpg"_s), Mark::New);
    const auto lines = linesOf(choices_->looks(), true);
    QCOMPARE(lines.last().text,
             "1 个文件 %1 已导入 TS10004-1"_s.arg(QDate::currentDate().toString("MM-dd"_s)));
}

QTEST_GUILESS_MAIN(TestChoiceMarks)
#include "test_choicemarks.moc"
