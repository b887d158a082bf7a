#include "pending/pendingbar.h"

#include "app/context/accountcontext.h"
#include "widgets/boxes/confirmdialog.h"
#include "widgets/boxes/noticebar.h"

#include <QMessageBox>

#include <algorithm>

using pendinglines::Line;
using pendinglines::Offer;

PendingBar::PendingBar(QWidget *window, NoticeBar *bar)
    : QObject(window), window_(window), bar_(bar)
{
}

void PendingBar::setCounts(pendinglines::Kind kind, const QVector<pendinglines::Count> &counts)
{
    counts_.erase(std::remove_if(counts_.begin(), counts_.end(),
                                 [kind](const auto &count) { return count.kind == kind; }),
                  counts_.end());
    counts_ += counts;
    std::stable_sort(counts_.begin(), counts_.end(), [](const auto &one, const auto &other) {
        return int(one.kind) > int(other.kind); // what went wrong before what just waits
    });
    show();
}

void PendingBar::setBranch(const QString &branch)
{
    branch_ = branch;
    show();
}

void PendingBar::show()
{
    QVector<QPair<QString, QString>> names;
    for (const ShopRecord &shop : qAsConst(AccountContext::shopList))
        names.append({shop.id, shop.name});
    QStringList ids;
    const QVector<Line> lines =
        branch_.isEmpty() ? QVector<Line>() : pendinglines::linesOf(counts_, branch_, names);
    for (const Line &line : lines) {
        Notice notice;
        notice.id = line.id;
        notice.severity = line.warns ? Notice::Severity::Warning : Notice::Severity::Information;
        notice.text = line.text;
        for (const Offer offer : line.offers)
            notice.actions.append(
                {pendinglines::offerText(offer), [this, line, offer] { take(line, offer); }});
        bar_->setNotice(notice);
        ids.append(line.id);
    }
    for (const QString &id : qAsConst(shownIds_)) {
        if (!ids.contains(id))
            bar_->remove(id);
    }
    shownIds_ = ids;
}

void PendingBar::take(const Line &line, Offer offer)
{
    const QString question = pendinglines::questionBefore(offer, line);
    if (question.isEmpty()) {
        emit taken(line.kind, offer, line.branch);
        return;
    }
    const BoxText text =
        offer == Offer::DeleteFiles
            ? BoxText(question).endangering(QMessageBox::Ok, QStringLiteral("删除"))
            : BoxText(question);
    ConfirmDialog::ask(window_, text, ConfirmDialog::Enter::Cancels,
                       [this, line, offer](bool confirmed) {
                           // Another branch may have been chosen while the question stood.
                           if (confirmed && line.branch == branch_)
                               emit taken(line.kind, offer, line.branch);
                       });
}
