#include "app/context/accountcontext.h"
#include "cardcheck/run/cardcheckrun.h"
#include "files/paths.h"
#include "ledger/ledger.h"
#include "net/servicecall.h"
#include "platform/pathform.h"
#include "tests/support/datarows.h"
#include "tests/support/democlient.h"
#include "tests/support/files.h"
#include "tests/support/patience.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"

#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTransform>

using evidence::State;
using verdict::Light;

namespace {

const ledger::OrderKey order{{"101"_s, "50001"_s, "800001"_s}, "TS10001-1"_s, "王小姐"_s};

/// What the machine reads counts as read past its memory, wherever the test's folders lie.
ContentReading readProved(const QString &path, const platform::TransferControl &control)
{
    ContentReading reading = filereadings::readAsItIs(path, control);
    if (reading.isRead())
        reading.proof = Proof::Medium;
    return reading;
}

void keepTime(const QString &path, const QDateTime &time)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

} // namespace
Q_DECLARE_METATYPE(Light)

/// A card with a photo, a raw file and what the camera writes beside them, imported by this
/// machine, against the demo service and a ledger of its own.
class TestCardCheckRun : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        demo_.reset();
        AccountContext::uid = "9001"_s;
        folder_ = std::make_unique<QTemporaryDir>();
        card_ = folder_->filePath("card"_s);
        ledger_ = std::make_unique<Ledger>(folder_->filePath("ledger"_s));
        ledger_->makeCurrent();
        request_ = {card_, {"101"_s, "7001"_s, "3101"_s}, {}};
        writeFile(card_ + "/DCIM/INDEX.DAT"_s, "camera");
        writeFile(card_ + "/DCIM/100X/A.JPG"_s, QByteArray(5000, 'a'));
        writeFile(card_ + "/DCIM/100X/B.CR2"_s, QByteArray(7000, 'b'));
        photo_ = import("A.JPG"_s, "原片"_s);
        raw_ = import("B.CR2"_s, "原始档"_s);
    }

    void cleanup()
    {
        demo_.release();
        run_.reset();
        ledger_.reset();
    }

    void isGreen()
    {
        check();
        QCOMPARE(verdict::of(findings()).headline, "可以格式化"_s);
        QCOMPARE(run_->progress().filesDone, 3);
        QCOMPARE(run_->progress().bytesDone, 2 * 12000);
        // Each order is asked for once.
        QCOMPARE(demo_.requests("getorder_pics"_s).size(), 1);
    }

    void tellsWhatIsWrong_data()
    {
        addColumns<Light, QString>({"light", "headline"});
        newRow("flipped", Light::Red, "不能格式化（1 个内容不同）");
        newRow("gone", Light::Red, "不能格式化（1 个目标缺失）");
        newRow("shorter", Light::Red, "不能格式化（1 个内容不同）");
        newRow("new on the card", Light::Red, "不能格式化（1 个未导入）");
        newRow("off the books", Light::Amber, "不建议格式化（1 个已复制未登记）");
        newRow("refused", Light::Amber, "不建议格式化（2 个未能向服务端核实登记）");
        newRow("stale answer", Light::Amber, "不建议格式化（2 个未能向服务端核实登记）");
        newRow("other branch", Light::Amber, "不建议格式化（2 个未能向服务端核实登记）");
        newRow("only the folder", Light::Amber, "不建议格式化（只核对了卡上的一个文件夹）");
        newRow("no ledger", Light::Red, "不能格式化（2 个未导入）");
    }

    void tellsWhatIsWrong()
    {
        const QByteArray fault = QTest::currentDataTag();
        if (fault == "flipped")
            replace(raw_, QByteArray(6999, 'b') + 'x');
        else if (fault == "gone")
            QVERIFY(QFile::remove(photo_));
        else if (fault == "shorter")
            replace(raw_, QByteArray(6999, 'b'));
        else if (fault == "new on the card")
            writeFile(card_ + "/DCIM/100X/C.JPG"_s, "new");
        else if (fault == "off the books")
            forgetPhoto();
        else if (fault == "refused")
            demo_.refuse("getorder_pics"_s, "不行"_s);
        else if (fault == "stale answer") {
            check(); // whose answer comes again
            demo_.misbehave("getorder_pics"_s, "stale"_s);
        } else if (fault == "other branch")
            request_.who.shopId = "102"_s;
        else if (fault == "only the folder")
            request_.root = card_ + "/DCIM"_s;
        else if (fault == "no ledger")
            ledger_.reset();
        check();
        QTEST(verdict::of(findings()).light, "light");
        QTEST(verdict::of(findings()).headline, "headline");
    }

    /// Where the test's folder lies decides what reading it proves; never more than that.
    void neverClaimsMoreThanWasRead()
    {
        check(filereadings::readAsItIs);
        const bool isProved = isReadPastCache(filereadings::readAsItIs(photo_, {}).proof);
        QCOMPARE(verdict::of(findings()).light, isProved ? Light::Green : Light::Amber);
    }

    void findsWhatOthersImported()
    {
        ledger_.reset();
        QVERIFY(QFile::rename(raw_, QFileInfo(raw_).path() + "/B_1.CR2"_s)); // renamed on import
        request_.orders = {{order, wireForm(orderFolder())}};
        check();
        QCOMPARE(verdict::of(findings()).headline, "不建议格式化（1 个已复制未登记）"_s);
        QCOMPARE(stateOf("A.JPG"_s), State::Verified);
        QCOMPARE(findings().files.at(1).place.target.section(QLatin1Char('\\'), -1), "B_1.CR2"_s);
    }

    /// Cards keep local time: an hour more or less is the same file, two hours are another one,
    /// which is sought by name and size then.
    void findsFilesAfterTheClocksWereChanged_data()
    {
        addColumns<int, QString>({"hours", "headline"});
        newRow("on", 1, "可以格式化");
        newRow("back", -1, "可以格式化");
        newRow("otherwise", 2, "不能格式化（1 个未导入）");
    }

    void findsFilesAfterTheClocksWereChanged()
    {
        QFETCH(int, hours);
        const QString photo = card_ + "/DCIM/100X/A.JPG"_s;
        keepTime(photo, QFileInfo(photo).lastModified().addSecs(hours * 3600));
        check();
        QTEST(verdict::of(findings()).headline, "headline");
    }

    void knowsCamerasCards_data()
    {
        addColumns<QString, bool>({"path", "known"});
        newRow("photos", "DCIM/100X/A.JPG", true);
        newRow("small letters", "dcim/A.JPG", true);
        newRow("videos", "PRIVATE/M4ROOT/CLIP/A.MP4", true);
        newRow("older videos", "MP_ROOT/100/A.MP4", true);
        newRow("deeper", "backup/DCIM/A.JPG", false);
        newRow("a file", "DCIM", false);
        newRow("a stick", "photos/A.JPG", false);
    }

    void knowsCamerasCards()
    {
        QFETCH(QString, path);
        const QTemporaryDir drive;
        writeFile(drive.filePath(path), "x");
        QTEST(cardlister::isCamerasCard(drive.path()), "known");
    }

    /// Another machine has turned it: told by what can be seen, and never enough for green.
    void knowsAnUprightCopyByItsLooks_data()
    {
        addColumns<QString>({"headline"});
        newRow("turned", "不建议格式化（1 张看来是别处导入的转正副本，无法逐字节证明）");
        newRow("another picture", "不能格式化（1 个内容不同）");
        newRow("cut short", "不能格式化（1 个内容不同）");
        newRow("still lying", "不能格式化（1 个内容不同）");
    }

    void knowsAnUprightCopyByItsLooks()
    {
        const QByteArray what = QTest::currentDataTag();
        const QImage shot = cornerPicture({120, 80});
        writeFile(card_ + "/DCIM/100X/T.JPG"_s, jpegOf(shot, 6));
        QImage upright = shot.transformed(QTransform().rotate(90));
        if (what == "another picture")
            upright.invertPixels();
        QByteArray copy = jpegOf(upright, what == "still lying" ? 6 : 1, 80);
        if (what == "cut short")
            copy.chop(copy.size() / 2);
        registerFile(writeFile(orderFolder() + "/all/T.JPG"_s, copy));
        request_.orders = {{order, wireForm(orderFolder())}};
        check();
        QTEST(verdict::of(findings()).headline, "headline");
    }

    void noticesThatTheCardChanges()
    {
        check([this](const QString &path, const platform::TransferControl &control) {
            if (path.endsWith("A.JPG"_s) && path.startsWith(card_))
                writeFile(card_ + "/DCIM/100X/Z.JPG"_s, "one more");
            return readProved(path, control);
        });
        QCOMPARE(verdict::of(findings()).headline, "不建议格式化（卡上的文件在核对中有变化）"_s);
    }

    void saysNothingWhenCancelled()
    {
        demo_.hold("getorder_pics"_s);
        begin(readProved);
        QTRY_COMPARE(demo_.held(), 1);
        run_->cancel();
        QVERIFY(!run_->isRunning());
        demo_.release();
        QCOMPARE(verdict::of(findings()).light, Light::None);
    }

    /// A copy in the card's own folder goes with the card.
    void countsNoCopyOnTheCard()
    {
        const QString onCard = writeFile(card_ + "/backup/A.JPG"_s, QByteArray(5000, 'a'));
        record(card_ + "/DCIM/100X/A.JPG"_s, onCard);
        QVERIFY(QFile::remove(photo_));
        check();
        QCOMPARE(verdict::of(findings()).light, Light::Red);
    }

private:
    QString orderFolder() { return demo_.share() + "/cardcheck"_s; }

    /// Copies a file of the card into the order's folder, registers and records it.
    QString import(const QString &name, const QString &sub)
    {
        const QString source = card_ + "/DCIM/100X/"_s + name;
        const QString target =
            writeFile(orderFolder() + "/%1/%2"_s.arg(sub, name), readFile(source));
        registerFile(target);
        record(source, target);
        return target;
    }

    void record(const QString &source, const QString &target)
    {
        const QFileInfo file(source);
        ledger::NewCopy copy;
        copy.source = source;
        copy.sourceBytes = file.size();
        copy.sourceModifiedMs = file.lastModified().toMSecsSinceEpoch();
        copy.target = wireForm(target);
        const ledger::RunId run =
            ledger_->beginRun({{"9001"_s, "101"_s, ledger::Work::ImportOriginals}, "李"_s});
        ledger_->finishCopy(ledger_->beginCopies(run, order, {copy}).first(), {});
        ledger_->endRun(run);
    }

    static void registerFile(const QString &path)
    {
        ask("&m=order&a=savepicpath"_s,
            "shopid=101&order_photo_id=800001&path="_s + wireForm(path));
    }

    void forgetPhoto()
    {
        const QString list =
            ask(orderfiles::listAction, "shopid=101&order_photo_id=800001&timestamp=1"_s)
                .object.value("images_yuanpian"_s)[0]["id"_s]
                .toString();
        ask("&m=order&a=delete_pics"_s, "shopid=101&order_photo_id=800001&ids="_s + list);
    }

    static ServiceReply ask(const QString &action, const QString &body)
    {
        QObject owner;
        ServiceReply answer;
        bool answered = false;
        callService(&owner, action, body.toUtf8(), [&](const ServiceReply &reply) {
            answer = reply;
            answered = true;
        });
        if (!QTest::qWaitFor([&] { return answered; }, patienceMs) || !answer.isSuccess())
            qFatal("no answer to %s", qUtf8Printable(action));
        return answer;
    }

    /// With the time that it had.
    static void replace(const QString &path, const QByteArray &content)
    {
        const QDateTime time = QFileInfo(path).lastModified();
        writeFile(path, content);
        keepTime(path, time);
    }

    void begin(const filereadings::Reader &read)
    {
        run_ = std::make_unique<CardCheckRun>(read);
        run_->start(request_);
    }

    void check(const filereadings::Reader &read = readProved)
    {
        begin(read);
        QTRY_VERIFY(!run_->isRunning());
    }

    const verdict::Findings &findings() const { return run_->findings(); }

    State stateOf(const QString &name) const
    {
        for (const evidence::CheckedFile &file : findings().files) {
            if (file.file.name() == name)
                return file.state;
        }
        qFatal("no such file");
    }

    DemoClient demo_;
    std::unique_ptr<QTemporaryDir> folder_;
    std::unique_ptr<Ledger> ledger_;
    std::unique_ptr<CardCheckRun> run_;
    CardCheckRun::Request request_;
    QString card_;
    QString photo_; ///< in the order's folder
    QString raw_;
};

QTEST_GUILESS_MAIN(TestCardCheckRun)

#include "test_cardcheckrun.moc"
