#include "app/shell/toolwindows.h"
#include "orderbrowser/window/orderlist.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/login.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"
#include "widgets/boxes/messagebox.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QTableView>

/// The order browser leads to the tools, which work against the demo service.
class TestToolWindows : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        MessageBox::setScripted(true);
        logIn(&demo_);
        MessageBox::takeShown();
        ToolWindows::create(QVector<Tool>(allTools()) << orderBrowser())->open("订单列表"_s);
        browser_ = opened();
        QVERIFY(browser_);
    }

    void cleanup()
    {
        delete opened();
        delete browser_;
        diskPool().waitForDone();
        processorPool().waitForDone();
        QVERIFY(MessageBox::takeShown().isEmpty());
    }

    void leadsTo_data()
    {
        addColumns<QString, int>({"card", "numberColumn"});
        newRow("originals", "导入原片", 0);
        newRow("retouched", "导入精修片", 0);
        newRow("photo import", "导片工具", 0);
        newRow("design", "设计分件", 1);
        newRow("selection", "下载选片结果", 1);
        newRow("raw files", "下载原始档", 1);
        newRow("delivery", "下载照片交付", 1);
    }

    void leadsTo()
    {
        QFETCH(QString, card);
        QFETCH(int, numberColumn);
        // Opened in another branch than the one it opens in.
        goTo(card, "102"_s, "800007"_s, "TS10007"_s);
        const QPointer<FramelessWindow> tool = opened();
        QVERIFY(tool);
        const auto current = [&] {
            const auto *table = tool->findChild<QTableView *>("orderTable"_s);
            const QModelIndex row = table->currentIndex();
            return row.siblingAtColumn(numberColumn).data().toString();
        };
        QTRY_COMPARE(current(), "TS10007-1"_s);
        const auto *branch = tool->findChild<QComboBox *>("branchBox"_s);
        QCOMPARE(branch->currentData().toString(), "102"_s);
        const QString title = tool->windowTitle();
        const QString place = title == card ? card : title + " · "_s + card;
        const auto *shown = tool->findChild<QWidget *>("titleLabel"_s);
        QCOMPARE(shown->accessibleName(), place + " · 二店"_s);

        // Another service of an order, in the window that is open already.
        for (const char *set : {"800002", "800001"}) {
            goTo(card, "101"_s, QString::fromLatin1(set), "TS10001"_s);
            QCOMPARE(opened(), tool.data());
            QTRY_COMPARE(current(), set[5] == '2' ? "TS10001-2"_s : "TS10001-1"_s);
        }
        QCOMPARE(tool->findChild<QLineEdit *>("keywordEdit"_s)->text(), "TS10001"_s);
        QCOMPARE(shown->accessibleName(), place + " · 一店"_s);

        // Of the same number, but gone.
        goTo(card, "101"_s, "899999"_s, "TS10001"_s);
        QTRY_COMPARE(boxes(), (QStringList{"未检索到订单"_s}));
        boxes_.clear();
        // A branch that the account may not enter.
        goTo(card, "999"_s, "800001"_s, "TS10001"_s);
        QTRY_COMPARE(boxes().size(), 1);
        boxes_.clear();
        QCOMPARE(branch->currentData().toString(), "101"_s);
    }

private:
    void goTo(const QString &card, const QString &branch, const QString &set, const QString &number)
    {
        emit static_cast<OrderList *>(browser_.data())
            ->openToolRequested(card, branch, set, number);
    }
    const QStringList &boxes()
    {
        const auto shown = MessageBox::takeShown();
        for (const MessageBox::Shown &box : shown)
            boxes_.append(box.text);
        return boxes_;
    }
    /// The window that is open beside the browser.
    FramelessWindow *opened() const
    {
        const auto windows = QApplication::topLevelWidgets();
        for (QWidget *window : windows) {
            auto *tool = qobject_cast<FramelessWindow *>(window);
            if (tool && tool->isVisible() && tool != browser_)
                return tool;
        }
        return nullptr;
    }

    DemoClient demo_;
    QPointer<FramelessWindow> browser_;
    QStringList boxes_;
};

QTEST_MAIN(TestToolWindows)
#include "test_toolwindows.moc"
