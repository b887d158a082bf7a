#include "app/context/accountcontext.h"
#include "app/shell/choosetools.h"
#include "fileimport/window/importfiles.h"
#include "orderbrowser/window/columndialog.h"
#include "orderbrowser/window/orderlist.h"
#include "tests/support/text.h"
#include "thumbnails/photocell.h"
#include "thumbnails/thumbnailtableview.h"
#include "tour/guide.h"
#include "tour/steps.h"

#include <QAction>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace {

QTableView *orders(const QWidget *window)
{
    return window->findChild<QTableView *>("orderTable"_s);
}

void choose(QListWidget *list, const QString &text)
{
    const auto found = list->findItems(text, Qt::MatchStartsWith);
    if (found.isEmpty())
        throw TourFailure{"%1 can be chosen"_s.arg(text)};
    list->clearSelection();
    list->setCurrentItem(found.at(0));
}

} // namespace

void tourOrderList(Guide &guide)
{
    guide.step("订单列表"_s);
    QFile::remove(ViewStore(AccountContext::uid).path()); // an earlier tour's views
    auto *launcher = guide.waitForWindow<ChooseTools>("the launcher is there"_s);
    guide.click(launcher, "orderListButton");
    auto *window = guide.waitForWindow<OrderList>("its window opens"_s);
    guide.spread(window);
    const auto rows = [window] { return orders(window)->model()->rowCount(); };
    guide.waitFor([window] { return window->findChild<QComboBox *>("personBox"_s)->count() > 1; },
                  "the branch is known"_s);
    guide.click(window, "searchButton");
    guide.waitFor([&] { return rows() > 3; }, "the branch's orders are listed"_s);
    guide.picture(window, "orderlist"_s);

    guide.step("详情"_s);
    orders(window)->selectRow(0);
    guide.click(window, "detailsBox");
    const auto *heading = window->findChild<QLabel *>("chosenHeading"_s);
    guide.waitFor([heading] { return heading->text() == "已选照片 4 张"_s; },
                  "the photos that were chosen are listed"_s);
    const auto *folder = window->findChild<QLabel *>("folderLabel"_s);
    guide.waitFor([folder] { return !folder->text().startsWith("正在"_s); },
                  "the folder is looked at"_s);
    const auto *photos = window->findChild<ThumbnailTableView *>("chosenGrid"_s);
    guide.waitFor(
        [photos] {
            for (int i = 0; i < photos->count(); ++i) {
                if (!photos->cell(i) || !photos->cell(i)->isLoaded)
                    return false;
            }
            return photos->count() > 0;
        },
        "their pictures are shown"_s);
    guide.picture(window, "orderlist-details"_s);
    guide.click(window, "detailsBox");

    guide.step("列设置"_s);
    guide.click(window, "columnsButton");
    auto *dialog = window->findChild<ColumnDialog *>();
    dialog->findChild<QLineEdit *>("viewNameEdit"_s)->setText("我的视图"_s);
    guide.click(dialog, "copyViewButton");
    choose(dialog->findChild<QListWidget *>("shownList"_s), "订单号"_s);
    choose(dialog->findChild<QListWidget *>("availableList"_s), "deposit"_s);
    guide.click(dialog, "addColumnButton");
    guide.picture(dialog, "orderlist-columns"_s);
    guide.click(dialog, "acceptButton");
    guide.waitFor(
        [window] {
            return orders(window)->model()->headerData(1, Qt::Horizontal).toString() == "deposit"_s;
        },
        "a column of the studio's own is shown"_s);

    guide.step("筛选"_s);
    guide.typeInto(window, "filter0", "TS10001"_s);
    guide.waitFor([&] { return rows() == 2; }, "a filter leaves two orders"_s);
    guide.picture(window, "orderlist-filter"_s);

    guide.step("在“导入原片”中打开"_s);
    orders(window)->selectRow(1);
    const auto actions = orders(window)->actions();
    for (QAction *action : actions) {
        if (action->text() == "在“导入原片”中打开"_s)
            action->trigger();
    }
    auto *tool = guide.waitForWindow<ImportFiles>("the import's window opens"_s);
    guide.spread(tool);
    guide.waitFor(
        [tool] {
            const QModelIndex row = orders(tool)->currentIndex();
            return row.siblingAtColumn(0).data().toString() == "TS10001-2"_s;
        },
        "exactly that service of the order is selected there"_s);
    guide.picture(tool, "orderlist-opened"_s);
    tool->close();
    window->close();
}
