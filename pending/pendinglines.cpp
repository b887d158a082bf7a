#include "pending/pendinglines.h"

#include <QLocale>

#include <algorithm>

namespace pendinglines {

namespace {

/// 1204 as "1,204", whatever the system's language.
QString grouped(int number)
{
    return QLocale(QLocale::English).toString(number);
}

QString textOf(const Count &count)
{
    const QString orders = grouped(count.orders);
    const QString files = grouped(count.files);
    switch (count.kind) {
    case Kind::Choices:
        return QStringLiteral("另有 %1 个订单、%2 个文件待导入").arg(orders, files);
    case Kind::Unregistered:
        return QStringLiteral("上次有 %1 个订单复制完成但未登记").arg(orders);
    case Kind::PartlyCopied:
        return QStringLiteral("上次有 %1 个订单只复制了一部分，未登记").arg(orders);
    case Kind::LeftPhotos:
        return QStringLiteral("%1 个照片已从服务端删除、磁盘上仍在").arg(files);
    case Kind::UnansweredPhotos:
        return QStringLiteral("上次删除 %1 个照片时没有得到服务端的答复").arg(files);
    case Kind::UnreportedFiles:
        return QStringLiteral("上次有 %1 个文件已删除，但状态没有提交成功").arg(files);
    }
    Q_UNREACHABLE();
}

QVector<Offer> offersOf(Kind kind)
{
    switch (kind) {
    case Kind::Choices:
        return {Offer::Show, Offer::Forget};
    case Kind::Unregistered:
    case Kind::PartlyCopied:
        return {Offer::RegisterAgain, Offer::Ignore};
    case Kind::LeftPhotos:
        return {Offer::DeleteFiles, Offer::KeepFiles};
    case Kind::UnansweredPhotos:
        return {Offer::Verify, Offer::KeepFiles};
    case Kind::UnreportedFiles:
        return {Offer::Report, Offer::Ignore};
    }
    Q_UNREACHABLE();
}

QString nameOf(const QString &branch, const QVector<QPair<QString, QString>> &names)
{
    for (const auto &[id, name] : names) {
        if (id == branch && !name.isEmpty())
            return name;
    }
    return QStringLiteral("分店 ") + branch;
}

} // namespace

QVector<Line> linesOf(const QVector<Count> &counts, const QString &hereBranch,
                      const QVector<QPair<QString, QString>> &branchNames)
{
    QVector<Line> lines;
    for (const Count &count : counts) {
        if (count.orders == 0 && count.files == 0)
            continue;
        const bool isHere = count.branch == hereBranch;
        Line line;
        line.id = QStringLiteral("pending.%1.%2").arg(int(count.kind)).arg(count.branch);
        line.kind = count.kind;
        line.branch = count.branch;
        line.warns = count.kind != Kind::Choices;
        line.text = isHere
                        ? textOf(count)
                        : nameOf(count.branch, branchNames) + QStringLiteral("：") + textOf(count);
        line.offers = isHere ? offersOf(count.kind) : QVector<Offer>{Offer::SwitchBranch};
        lines.append(line);
    }
    std::stable_partition(lines.begin(), lines.end(),
                          [&hereBranch](const Line &line) { return line.branch == hereBranch; });
    return lines;
}

QString offerText(Offer offer)
{
    switch (offer) {
    case Offer::Show:
        return QStringLiteral("显示");
    case Offer::Forget:
        return QStringLiteral("不再导入");
    case Offer::RegisterAgain:
        return QStringLiteral("重新登记");
    case Offer::Ignore:
        return QStringLiteral("忽略");
    case Offer::DeleteFiles:
        return QStringLiteral("删除文件");
    case Offer::KeepFiles:
        return QStringLiteral("保留");
    case Offer::Verify:
        return QStringLiteral("核实");
    case Offer::Report:
        return QStringLiteral("重新提交");
    case Offer::SwitchBranch:
        return QStringLiteral("切换分店");
    }
    Q_UNREACHABLE();
}

QString questionBefore(Offer offer, const Line &line)
{
    switch (offer) {
    case Offer::Forget:
        return line.text +
               QStringLiteral("。\n不再导入后，这些文件的选择不再保留；文件本身不会改动。"
                              "确认不再导入吗？");
    case Offer::Ignore:
        return line.text +
               QStringLiteral("。\n忽略后不再提醒，服务端仍然不知道这些文件的状态。确认要忽略吗？");
    case Offer::DeleteFiles:
        return line.text +
               QStringLiteral("。\n只删除服务端已经没有、并且大小、时间和内容都没有变化的"
                              "文件，删除后不能恢复。确认要删除吗？");
    case Offer::Show:
    case Offer::RegisterAgain:
    case Offer::KeepFiles:
    case Offer::Verify:
    case Offer::Report:
    case Offer::SwitchBranch:
        return {};
    }
    Q_UNREACHABLE();
}

} // namespace pendinglines
