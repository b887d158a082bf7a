#include "app/shell/cardgrid.h"
#include "app/shell/choosetools.h"
#include "app/shell/toolcardwidget.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTest>

#include <algorithm>
#include <memory>

namespace {

/// A tool that, when told so, needs some time to close.
class StandInTool : public FramelessWindow
{
public:
    using FramelessWindow::CloseAnswer;
    using FramelessWindow::finishClosing;
    CloseAnswer next = CloseAnswer::Close;

protected:
    CloseAnswer closeRequested() override { return next; }
};

} // namespace

class TestChooseTools : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        const auto make = [this]() -> FramelessWindow * {
            opened_.append(new StandInTool);
            return opened_.last();
        };
        const QString icon = allTools().first().icon;
        launcher_ = std::make_unique<ChooseTools>(
            nullptr, QVector<Tool>{{"甲"_s, icon, make}, {"乙"_s, icon}, {"丙"_s, icon, make}});
        launcher_->show();
        QApplication::setActiveWindow(launcher_.get());
        cards_ = launcher_->findChildren<ToolCardWidget *>();
    }

    void cleanup()
    {
        launcher_.reset();
        for (const auto &window : qAsConst(opened_))
            delete window;
        opened_.clear();
    }

    void offersTheTools()
    {
        for (const Tool &tool : allTools()) {
            QVERIFY2(QSvgRenderer(tool.icon).isValid(), qPrintable(tool.icon));
            if (!tool.makeWindow)
                continue;
            const std::unique_ptr<QWidget> window(tool.makeWindow());
            // One window serves several cards under a title of its own.
            if (window->windowTitle() != "分件工具"_s)
                QCOMPARE(window->windowTitle(), tool.label);
        }
    }

    void offersToolsWithoutCards_data()
    {
        addColumns<QString, QString>({"button", "keys"});
        newRow("订单列表", "orderListButton", "Ctrl+L");
        newRow("核对存储卡", "cardCheckButton", "Ctrl+K");
        newRow("设置", "settingsButton", "Ctrl+,");
    }

    void offersToolsWithoutCards()
    {
        QFETCH(QString, button);
        const auto *found = launcher_->findChild<QAbstractButton *>(button);
        QCOMPARE(found->text(), QString::fromUtf8(QTest::currentDataTag()));
        QTEST(found->shortcut().toString(), "keys");
        const QVector<Tool> tools{orderBrowser(), cardCheck(), settings()};
        const auto tool = std::find_if(tools.begin(), tools.end(), [found](const Tool &one) {
            return one.label == found->text();
        });
        QVERIFY(tool != tools.end());
        const std::unique_ptr<QWidget> window(tool->makeWindow());
        QCOMPARE(window->windowTitle(), found->text());
    }

    void opensOnDoubleClick()
    {
        QTest::mouseClick(card(0), Qt::LeftButton);
        QTest::mouseDClick(card(0), Qt::RightButton);
        QVERIFY(opened_.isEmpty());

        open(0);
        QCOMPARE(opened_.size(), 1);
        QVERIFY(opened_.first()->isVisible() && opened_.first()->isMaximized());

        opened_.first()->showMinimized();
        open(0);
        QCOMPARE(opened_.size(), 1);
        QVERIFY(!opened_.first()->isMinimized() && opened_.first()->isMaximized());
        QTRY_VERIFY(opened_.first()->isActiveWindow());

        open(2);
        QCOMPARE(opened_.size(), 2);
    }

    void opensAfreshAfterClosing()
    {
        using Answer = StandInTool::CloseAnswer;
        for (const Answer answer : {Answer::Close, Answer::CloseLater}) {
            open(0);
            const QPointer<StandInTool> first = opened_.last();
            const int before = opened_.size();
            first->next = answer;
            first->close();
            open(0);
            QCOMPARE(opened_.size(), before + 1);
            QVERIFY(opened_.last()->isMaximized());
            if (answer == Answer::CloseLater) {
                QVERIFY(first && !first->isVisible());
                first->finishClosing();
            }
            QTRY_VERIFY(!first);
            open(0); // the end of the first has not forgotten the second
            QCOMPARE(opened_.size(), before + 1);
        }
    }

    void opensByKeyboard()
    {
        card(0)->setFocus();
        QTest::keyClick(card(0), Qt::Key_Return);
        QCOMPARE(opened_.size(), 1);
        QTest::keyClick(card(0), Qt::Key_Right);
        QTRY_VERIFY(card(2)->hasFocus()); // past the disabled one
        QTest::keyClick(card(2), Qt::Key_Space);
        QCOMPARE(opened_.size(), 2);
        QApplication::setActiveWindow(launcher_.get());
        QTest::keyClick(card(2), Qt::Key_Backtab);
        QTRY_VERIFY(card(0)->hasFocus());
    }

    void leavesDisabledCardsAlone()
    {
        QSignalSpy doubleClicked(card(1), &ToolCardWidget::doubleClicked);
        open(1);
        QTest::keyClick(card(1), Qt::Key_Return);
        QVERIFY(doubleClicked.isEmpty());
        QVERIFY(card(1)->toolTip().contains("乙"_s));
    }

    void leavesToolsOpen()
    {
        open(0);
        QSignalSpy closed(launcher_.get(), &FramelessWindow::closed);
        QTest::mouseClick(launcher_->findChild<QWidget *>("closeButton"_s), Qt::LeftButton);
        QCOMPARE(closed.size(), 1);
        QVERIFY(!launcher_->isVisible());
        launcher_.reset();
        QVERIFY(opened_.first()->isVisible());
        opened_.first()->close(); // nobody is left to forget it
        QTRY_VERIFY(!opened_.first());
    }

    void movesAmongCards()
    {
        // Four to a row.
        const QVector<bool> cards{true, true, false, false, true, false, false, false};
        QCOMPARE(cardplan::neighbour(cards, 0, Qt::Key_Right, 4), 1);
        QCOMPARE(cardplan::neighbour(cards, 0, Qt::Key_Down, 4), 4);
        QCOMPARE(cardplan::neighbour(cards, 1, Qt::Key_Down, 4), 4); // nothing in its column
        QCOMPARE(cardplan::neighbour(cards, 4, Qt::Key_Down, 4), 4); // nowhere to go
    }

private:
    ToolCardWidget *card(int index) const { return cards_.at(index); }
    void open(int index) const { QTest::mouseDClick(card(index), Qt::LeftButton); }

    QVector<QPointer<StandInTool>> opened_;
    std::unique_ptr<ChooseTools> launcher_;
    QList<ToolCardWidget *> cards_;
};

QTEST_MAIN(TestChooseTools)
#include "test_choosetools.moc"
