#include "cardcheck/rules/verdict.h"

#include "files/chosenfiles.h"
#include "look/colours.h"

#include <algorithm>
#include <numeric>

namespace verdict {

using evidence::CheckedFile;
using evidence::State;

namespace {

struct Reason
{
    State state;
    QStringView text;
};

constexpr Reason redReasons[] = {
    {State::NotImported, u"%1 个未导入"},
    {State::TargetMissing, u"%1 个目标缺失"},
    {State::ContentDiffers, u"%1 个内容不同"},
    {State::OnlyOnCard, u"%1 个的副本也在这张卡上"},
};

constexpr Reason amberReasons[] = {
    {State::Upright, u"%1 张为转正副本，相机原始字节不在存储上"},
    {State::LooksUpright, u"%1 张看来是别处导入的转正副本，无法逐字节证明"},
    {State::Unproved, u"%1 张转正副本没有校验记录"},
    {State::Unregistered, u"%1 个已复制未登记"},
    {State::ServiceUnknown, u"%1 个未能向服务端核实登记"},
    {State::CacheOnly, u"%1 个只从缓存读取，未经介质证实"},
    {State::Unreadable, u"%1 个无法读取"},
    {State::Changed, u"%1 个在核对中有变化"},
    {State::Waiting, u"%1 个未核对"},
};

template <std::size_t count>
QStringList reasonsOf(const Reason (&reasons)[count], const Tally &tally)
{
    QStringList texts;
    for (const Reason &reason : reasons) {
        const int files = tally.of(reason.state);
        if (files > 0)
            texts.append(reason.text.toString().arg(files));
    }
    return texts;
}

/// What the states of the files do not say.
QStringList cardReasons(const Findings &findings)
{
    QStringList texts;
    if (!findings.card.unlisted.isEmpty())
        texts.append(QStringLiteral("%1 处无法列出").arg(findings.card.unlisted.size()));
    if (findings.cardChanged)
        texts.append(QStringLiteral("卡上的文件在核对中有变化"));
    if (cardfiles::isPartOfCard(findings.card.root))
        texts.append(QStringLiteral("只核对了卡上的一个文件夹"));
    return texts;
}

template <typename Belongs>
QString kindsNote(const QString &text, const QVector<CheckedFile> &files, Belongs belongs)
{
    chosenfiles::Kinds kinds;
    for (const CheckedFile &file : files) {
        if (belongs(file))
            ++kinds[chosenfiles::kindOf(file.file.name())];
    }
    const int count = std::accumulate(kinds.cbegin(), kinds.cend(), 0);
    return count == 0
               ? QString()
               : text.arg(count) + QStringLiteral("（%1）").arg(chosenfiles::kindsText(kinds));
}

QStringList notesOf(const Findings &findings)
{
    QStringList notes{
        kindsNote(QStringLiteral("%1 个文件类型不登记到服务端，仅在存储上核对"), findings.files,
                  [](const CheckedFile &file) {
                      return file.file.counts() && file.state == State::VerifiedOnStorage;
                  }),
        kindsNote(QStringLiteral("另有 %1 个其他文件，不参与判断"), findings.files,
                  [](const CheckedFile &file) { return !file.file.counts(); })};
    const auto isElsewhere = [&findings](const CheckedFile &file) {
        return file.state == State::ServiceUnknown &&
               file.place.order.identity.branch != findings.branch;
    };
    const auto elsewhere =
        std::count_if(findings.files.cbegin(), findings.files.cend(), isElsewhere);
    if (elsewhere > 0) {
        notes.append(
            QStringLiteral("%1 个文件属于其他分店的订单，切换到该分店后再核对登记").arg(elsewhere));
    }
    QStringList reduced;
    for (const CheckedFile &file : findings.files) {
        if (file.isReduced)
            reduced.append(file.file.shown);
    }
    if (!reduced.isEmpty()) {
        notes.append(QStringLiteral("%1 张转正副本的像素少于相机原图: %2")
                         .arg(reduced.size())
                         .arg(reduced.join(QStringLiteral("、"))));
    }
    if (!findings.card.unlisted.isEmpty()) {
        notes.append(
            QStringLiteral("无法列出: %1").arg(findings.card.unlisted.join(QStringLiteral("、"))));
    }
    notes.removeAll(QString());
    return notes;
}

QString withReasons(const QString &headline, const QStringList &reasons)
{
    return QStringLiteral("%1（%2）").arg(headline, reasons.join(QStringLiteral("；")));
}

} // namespace

int Tally::counted() const
{
    return std::accumulate(counting.cbegin(), counting.cend(), 0);
}

Tally tallyOf(const QVector<CheckedFile> &files)
{
    Tally tally;
    for (const CheckedFile &file : files)
        ++(file.file.counts() ? tally.counting : tally.others)[std::size_t(file.state)];
    return tally;
}

Verdict of(const Findings &findings)
{
    if (!findings.problem.isEmpty())
        return {Light::None, findings.problem, {}};
    if (findings.wasCancelled)
        return {Light::None, QStringLiteral("核对已取消，没有结论"), {}};
    if (!findings.isFinished)
        return {Light::None, QStringLiteral("正在核对..."), {}};
    if (!findings.card.isListed)
        return {Light::None, QStringLiteral("无法列出存储卡"), {}};
    const Tally tally = tallyOf(findings.files);
    const QStringList unlooked = cardReasons(findings);
    if (tally.counted() == 0 && unlooked.isEmpty())
        return {Light::None, QStringLiteral("没有照片、原始档或视频"), notesOf(findings)};
    const QStringList red = reasonsOf(redReasons, tally);
    const QStringList amber = reasonsOf(amberReasons, tally) + unlooked;
    if (!red.isEmpty()) {
        return {Light::Red, withReasons(QStringLiteral("不能格式化"), red + amber),
                notesOf(findings)};
    }
    const int proved = tally.of(State::Verified) + tally.of(State::VerifiedOnStorage);
    if (!amber.isEmpty() || proved != tally.counted()) {
        return {Light::Amber, withReasons(QStringLiteral("不建议格式化"), amber),
                notesOf(findings)};
    }
    QStringList notes = notesOf(findings);
    notes.prepend(QStringLiteral("%1 个文件在存储上逐字节一致").arg(proved));
    return {Light::Green, QStringLiteral("可以格式化"), notes};
}

QString lightText(Light light)
{
    switch (light) {
    case Light::None:
        return QStringLiteral("无结论");
    case Light::Green:
        return QStringLiteral("绿灯");
    case Light::Amber:
        return QStringLiteral("黄灯");
    case Light::Red:
        return QStringLiteral("红灯");
    }
    Q_UNREACHABLE();
}

unsigned int lightColour(Light light)
{
    switch (light) {
    case Light::None:
        return colours::muted;
    case Light::Green:
        return colours::success;
    case Light::Amber:
        return colours::unproved;
    case Light::Red:
        return colours::failure;
    }
    Q_UNREACHABLE();
}

QStringList missingFiles(const QVector<CheckedFile> &files)
{
    QStringList paths;
    for (const CheckedFile &file : files) {
        const bool isMissing =
            file.state == State::NotImported || file.state == State::TargetMissing ||
            file.state == State::ContentDiffers || file.state == State::OnlyOnCard;
        if (isMissing && file.file.counts())
            paths.append(file.file.path);
    }
    return paths;
}

} // namespace verdict
