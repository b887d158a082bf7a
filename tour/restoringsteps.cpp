#include "fileimport/window/importfiles.h"
#include "fileimport/window/importordertablemodel.h"
#include "fileimport/window/orderactionsdelegate.h"
#include "tour/toolhand.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/noticebar.h"
#include "widgets/boxes/toast.h"

#include <QPointer>
#include <QPushButton>

#include <algorithm>

namespace {

using Column = ImportOrderTableModel::Column;
using Hand = ToolHand<ImportFiles, Column::NumberColumn>;

bool isOffered(const Hand &hand, const QString &text)
{
    const auto notices = hand.window()->findChild<NoticeBar *>()->notices();
    return std::any_of(notices.cbegin(), notices.cend(),
                       [&text](const Notice &notice) { return notice.text == text; });
}

void pressOffer(Guide &guide, const Hand &hand, const QString &text)
{
    const auto buttons = hand.window()->findChild<NoticeBar *>()->findChildren<QPushButton *>();
    const auto button =
        std::find_if(buttons.cbegin(), buttons.cend(), [&text](const QPushButton *each) {
            return each->isVisible() && each->text() == text;
        });
    guide.check(button != buttons.cend(), text + " is offered"_s);
    QTest::mouseClick(*button, Qt::LeftButton);
}

/// Copies a photo for the order and closes the window before the service has answered.
void closeUnregistered(Guide &guide, const QString &order)
{
    guide.step("导入原片: 登记前关闭"_s);
    Hand hand(guide, "导入原片"_s);
    const QPointer<ImportFiles> window = hand.window();
    FileDialog::setNextFiles({guide.material("camera-card/DCIM/100TESSA/"_s) +
                              QDir(guide.material("camera-card/DCIM/100TESSA"_s))
                                  .entryList({"*.jpg"_s}, QDir::Files, QDir::Name)
                                  .constFirst()});
    const QModelIndex actions = hand.cell(order, Column::ActionsColumn);
    hand.orders()->scrollTo(actions);
    hand.press(actions, OrderActionsDelegate::buttonRect(hand.orders()->visualRect(actions),
                                                         OrderActionsDelegate::SelectFiles)
                            .center());
    guide.waitFor([&] { return hand.text(order, Column::ChosenColumn) == "1"_s; },
                  "a photo is chosen"_s);
    guide.studio().hold("savepicpath_batch"_s);
    guide.click(hand.window(), "startButton");
    guide.waitFor([&] { return guide.studio().held() == 1; }, "it is copied"_s);
    guide.answerNextBox("停止并关闭"_s, "restore-closing-question"_s);
    hand.window()->close();
    guide.boxText();
    guide.studio().release();
    guide.waitFor([&] { return window.isNull(); }, "the window is closed without an answer"_s);
}

} // namespace

void tourRestoring(Guide &guide)
{
    const QString order = "TS10001-1"_s;
    closeUnregistered(guide, order);

    guide.step("导入原片: 重新登记"_s);
    Hand hand(guide, "导入原片"_s);
    const QString offer = "上次有 1 个订单复制完成但未登记"_s;
    guide.waitFor([&] { return isOffered(hand, offer); }, "the order is offered"_s);
    guide.studio().clearRequests();
    guide.picture(hand.window(), "restore-offered"_s);
    guide.check(guide.studio().requests("savepicpath_batch"_s).isEmpty(), "nothing by itself"_s);
    pressOffer(guide, hand, "重新登记"_s);
    guide.waitFor([&] { return guide.studio().requests("savepicpath_batch"_s).size() == 1; },
                  "the service is told"_s);
    // Before that it is at work, and would ask when it is closed.
    guide.waitFor([&] { return Toast::currentText(hand.window()) == "已重新登记"_s; },
                  "and has agreed"_s);
    guide.waitFor([&] { return !isOffered(hand, offer); }, "and the offer gone"_s);
    guide.picture(hand.window(), "restore-registered"_s);
    hand.window()->close();
}
