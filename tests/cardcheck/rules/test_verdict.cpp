#include "cardcheck/rules/verdict.h"
#include "files/paths.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QTest>

#include <functional>

using namespace evidence;
using verdict::Light;

namespace {

const OrderIdentity order{"101"_s, "50001"_s, "800001"_s};
const QByteArray hash(16, 'a');
const QByteArray otherHash(16, 'b');

/// What a check of one file has found, piece by piece, before anything is concluded.
struct Evidence
{
    Reading card{Reading::Outcome::Read, 8, hash, Proof::Medium};
    Reading target{Reading::Outcome::Read, 8, hash, Proof::Server};
    Place place{
        {order, "TS10001-1"_s, {}}, R"(\\nas\photos\TS10001\原片\A.JPG)"_s, 1, false, {}, {}};
    ServiceList list{order,
                     ServiceList::State::Answered,
                     {wirePathKey(R"(\\NAS\photos\TS10001\原片\a.jpg)"_s)},
                     {},
                     {}};
    QString name = "A.JPG"_s;
    verdict::Findings findings;

    Evidence()
    {
        findings.isFinished = true;
        findings.card.isListed = true;
        findings.card.root = "/media/card"_s;
    }

    CheckedFile file(const QString &fileName) const
    {
        CheckedFile checked;
        checked.file = {"/media/card/DCIM/100X/"_s + fileName, "DCIM/100X/"_s + fileName, 8, 1,
                        cardfiles::kindOf(fileName)};
        checked.place = place;
        checked.state = stateOf(card, place, target, &list);
        return checked;
    }

    verdict::Verdict conclude() const
    {
        verdict::Findings all = findings;
        all.files.append(file(name));
        return verdict::of(all);
    }
};

using Spoil = std::function<void(Evidence &)>;

} // namespace
Q_DECLARE_METATYPE(Spoil)
Q_DECLARE_METATYPE(Light)

class TestVerdict : public QObject
{
    Q_OBJECT

private slots:
    void isGreenWhenAllIsProved()
    {
        const verdict::Verdict all = Evidence().conclude();
        QCOMPARE(all.light, Light::Green);
        QCOMPARE(all.headline, "可以格式化"_s);
        QCOMPARE(all.notes, QStringList{"1 个文件在存储上逐字节一致"_s});
    }

    /// One thing is wrong with one file of two, or with the check.
    void isNeverGreen_data()
    {
        addColumns<Spoil, Light, QString>({"spoil", "light", "headline"});
        const auto row = [](const char *tag, Light light, const QString &reason, Spoil spoil) {
            QTest::newRow(tag) << std::move(spoil) << light << reason;
        };
        using Outcome = Reading::Outcome;
        const auto red = [](const QString &reason) { return "不能格式化（%1）"_s.arg(reason); };
        const auto amber = [](const QString &reason) { return "不建议格式化（%1）"_s.arg(reason); };
        row("one byte different", Light::Red, red("1 个内容不同"_s),
            [](Evidence &e) { e.target.hash = otherHash; });
        row("target shorter", Light::Red, red("1 个内容不同"_s),
            [](Evidence &e) { e.target.bytes = 7; });
        row("no bytes compared", Light::Red, red("1 个内容不同"_s), [](Evidence &e) {
            e.target.hash.clear();
            e.card.hash.clear();
        });
        row("target gone", Light::Red, red("1 个目标缺失"_s), [](Evidence &e) {
            e.target = {Outcome::Missing, -1, {}, Proof::None};
        });
        row("target on the card itself", Light::Red, red("1 个的副本也在这张卡上"_s),
            [](Evidence &e) { e.target.outcome = Outcome::OnCard; });
        row("one file short", Light::Red, red("1 个未导入"_s), [](Evidence &e) {
            CheckedFile unknown = e.file("B.CR2"_s);
            unknown.state = State::NotImported;
            e.findings.files.append(unknown);
        });
        row("target replaced during the check", Light::Amber, amber("1 个在核对中有变化"_s),
            [](Evidence &e) { e.target.outcome = Outcome::Changed; });
        row("source written during the check", Light::Amber, amber("1 个在核对中有变化"_s),
            [](Evidence &e) { e.card.outcome = Outcome::Changed; });
        row("card unreadable", Light::Amber, amber("1 个无法读取"_s),
            [](Evidence &e) { e.card.outcome = Outcome::Unreadable; });
        row("card pulled", Light::Amber, amber("1 个无法读取"_s),
            [](Evidence &e) { e.card.outcome = Outcome::Missing; });
        row("target unreadable", Light::Amber, amber("1 个无法读取"_s),
            [](Evidence &e) { e.target.outcome = Outcome::Unreadable; });
        row("target not read", Light::Amber, amber("1 个未核对"_s),
            [](Evidence &e) { e.target = {}; });
        row("not registered", Light::Amber, amber("1 个已复制未登记"_s),
            [](Evidence &e) { e.list.paths.clear(); });
        row("registered elsewhere", Light::Amber, amber("1 个已复制未登记"_s), [](Evidence &e) {
            e.list.paths = {wirePathKey(R"(\\nas\photos\TS10002\原片\A.JPG)"_s)};
        });
        row("service does not answer", Light::Amber, amber("1 个未能向服务端核实登记"_s),
            [](Evidence &e) { e.list.state = ServiceList::State::Failed; });
        row("service not asked", Light::Amber, amber("1 个未能向服务端核实登记"_s),
            [](Evidence &e) { e.list.state = ServiceList::State::NotAsked; });
        row("answer of another branch", Light::Amber, amber("1 个未能向服务端核实登记"_s),
            [](Evidence &e) { e.list.order.branch = "102"_s; });
        row("card read from memory", Light::Amber, amber("1 个只从缓存读取，未经介质证实"_s),
            [](Evidence &e) { e.card.proof = Proof::Cache; });
        row("target read from memory", Light::Amber, amber("1 个只从缓存读取，未经介质证实"_s),
            [](Evidence &e) { e.target.proof = Proof::Cache; });
        row("only sizes compared", Light::Amber, amber("1 个只从缓存读取，未经介质证实"_s),
            [](Evidence &e) { e.target.proof = Proof::Size; });
        row("upright copy", Light::Amber, amber("1 张为转正副本，相机原始字节不在存储上"_s),
            [](Evidence &e) {
                e.place.isUpright = true;
                e.place.sourceHash = hash;
                e.place.targetHash = e.target.hash = otherHash;
                e.target.bytes = 6;
            });
        row("upright copy without record", Light::Amber, amber("1 张转正副本没有校验记录"_s),
            [](Evidence &e) {
                e.place.isUpright = true;
                e.target.hash = otherHash;
            });
        row("upright copy damaged", Light::Red, red("1 个内容不同"_s), [](Evidence &e) {
            e.place.isUpright = true;
            e.place.sourceHash = hash;
            e.place.targetHash = QByteArray(16, 'c');
            e.target.hash = otherHash;
        });
        row("folder not listed", Light::Amber, amber("1 处无法列出"_s),
            [](Evidence &e) { e.findings.card.unlisted = QStringList("DCIM/101X"_s); });
        row("card changed", Light::Amber, amber("卡上的文件在核对中有变化"_s),
            [](Evidence &e) { e.findings.cardChanged = true; });
        row("one folder of a card", Light::Amber, amber("只核对了卡上的一个文件夹"_s),
            [](Evidence &e) { e.findings.card.root = "G:/DCIM/100X"_s; });
        row("empty card", Light::None, "没有照片、原始档或视频"_s,
            [](Evidence &e) { e.name = "INDEX.DAT"_s; });
        row("listing failed", Light::None, "无法列出存储卡"_s,
            [](Evidence &e) { e.findings.card.isListed = false; });
        row("cancelled", Light::None, "核对已取消，没有结论"_s,
            [](Evidence &e) { e.findings.wasCancelled = true; });
        row("not finished", Light::None, "正在核对..."_s,
            [](Evidence &e) { e.findings.isFinished = false; });
    }

    void isNeverGreen()
    {
        QFETCH(Spoil, spoil);
        QFETCH(Light, light);
        Evidence evidence;
        evidence.findings.files.append(evidence.file("GOOD.JPG"_s));
        if (light == Light::None)
            evidence.findings.files.clear();
        spoil(evidence);
        const verdict::Verdict all = evidence.conclude();
        QCOMPARE(all.light, light);
        QTEST(all.headline, "headline");
    }

    void namesWhatCountsByBytesAlone()
    {
        Evidence evidence;
        evidence.list.state = ServiceList::State::NotAsked;
        evidence.place.target = R"(\\nas\photos\TS10001\原始档\A.MP4)"_s;
        evidence.name = "A.MP4"_s;
        const verdict::Verdict all = evidence.conclude();
        QCOMPARE(all.light, Light::Green);
        QCOMPARE(all.notes.value(1), "1 个文件类型不登记到服务端，仅在存储上核对（.MP4 1 个）"_s);
    }

    void namesReducedPictures()
    {
        Evidence evidence;
        CheckedFile reduced = evidence.file("BIG.JPG"_s);
        reduced.state = State::Upright;
        reduced.isReduced = true;
        evidence.findings.files.append(reduced);
        QCOMPARE(evidence.conclude().notes,
                 QStringList("1 张转正副本的像素少于相机原图: DCIM/100X/BIG.JPG"_s));
    }

    void knowsKinds_data()
    {
        addColumns<int>({"kind"});
        const auto row = [](const char *name, cardfiles::Kind kind) { newRow(name, int(kind)); };
        row("A.JPG", cardfiles::Kind::Photo);
        row("a.heic", cardfiles::Kind::Photo);
        row("A.CR3", cardfiles::Kind::RawFile);
        row("A.DNG", cardfiles::Kind::RawFile);
        row("C0001.MP4", cardfiles::Kind::Video);
        row("A.XMP", cardfiles::Kind::Other);
        row("._A.JPG", cardfiles::Kind::Other);
        row("JPG", cardfiles::Kind::Other);
    }

    void knowsKinds()
    {
        QFETCH(int, kind);
        QCOMPARE(int(cardfiles::kindOf(QString::fromUtf8(QTest::currentDataTag()))), kind);
    }

    /// Others stand in no way of the light, and are not what is to be imported.
    void handsOnWhatIsMissing()
    {
        Evidence evidence;
        QVector<CheckedFile> files;
        for (int state = 0; state < stateCount; ++state) {
            files.append(evidence.file("%1.JPG"_s.arg(state)));
            files.last().state = State(state);
            files.append(evidence.file("%1.XML"_s.arg(state)));
            files.last().state = State(state);
        }
        QStringList expected;
        for (const State state :
             {State::ContentDiffers, State::TargetMissing, State::OnlyOnCard, State::NotImported})
            expected.append("/media/card/DCIM/100X/%1.JPG"_s.arg(int(state)));
        QCOMPARE(verdict::missingFiles(files), expected);
    }
};

QTEST_APPLESS_MAIN(TestVerdict)

#include "test_verdict.moc"
