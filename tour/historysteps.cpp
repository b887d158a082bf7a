#include "app/shell/choosetools.h"
#include "history/window/entrytable.h"
#include "history/window/filetable.h"
#include "history/window/historywindow.h"
#include "tests/support/text.h"
#include "tour/guide.h"
#include "tour/steps.h"

#include <QLineEdit>
#include <QTableView>
#include <QtTest>

void tourHistory(Guide &guide)
{
    guide.step("导入记录"_s);
    auto *launcher = guide.waitForWindow<ChooseTools>("the launcher is there"_s);
    guide.click(launcher, "historyButton");
    auto *window = guide.waitForWindow<HistoryWindow>("its window opens"_s);
    guide.spread(window);
    auto *entries = window->findChild<QTableView *>("entryTable"_s);
    auto *files = window->findChild<QTableView *>("historyFiles"_s);
    const auto texts = [entries](int column) {
        QStringList all;
        for (int row = 0; row < entries->model()->rowCount(); ++row)
            all.append(entries->model()->index(row, column).data().toString());
        return all;
    };
    guide.waitFor(
        [&texts] {
            const QStringList works = texts(EntryTable::WorkColumn);
            return works.contains("导入原片"_s) && works.contains("设计分件"_s) &&
                   works.contains("批量删除"_s);
        },
        "imports, distributions and deletions are listed"_s);
    guide.picture(window, "history"_s);

    guide.typeInto(window, "orderEdit", "TS10001"_s);
    QTest::keyClick(window->findChild<QLineEdit *>("orderEdit"_s), Qt::Key_Return);
    guide.waitFor(
        [&texts] {
            const QStringList orders = texts(EntryTable::OrderColumn);
            return !orders.isEmpty() && orders.count("TS10001-1"_s) == orders.size();
        },
        "a search finds one order's"_s);
    entries->setFocus();
    QTest::keyClick(entries, Qt::Key_Down);
    guide.waitFor([files] { return files->model()->rowCount() > 0; }, "its files are listed"_s);
    guide.picture(window, "history-details"_s);
    window->close();
}
