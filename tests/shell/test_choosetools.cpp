#include "app/shell/cardgrid.h"
#include "app/shell/choosetools.h"
#include "app/shell/toolcardwidget.h"

#include <QApplication>
#include <QPointer>
#include <QSignalSpy>
#include <QSvgRenderer>
#include <QTest>

#include <memory>

namespace {

/// A tool that, when told so, needs some time to close.
class StandInTool : public FramelessWindow
{
public:
    using FramelessWindow::finishClosing;

    bool closesLater = false;

protected:
    CloseAnswer closeRequested() override
    {
        return closesLater ? CloseAnswer::CloseLater : CloseAnswer::Close;
    }
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
            nullptr, QVector<Tool>{{QStringLiteral("甲"), icon, make},
                                   {QStringLiteral("乙"), icon},
                                   {QStringLiteral("丙"), icon, make}});
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
        QSet<QString> labels;
        for (const Tool &tool : allTools()) {
            labels.insert(tool.label);
            QVERIFY2(QSvgRenderer(tool.icon).isValid(), qPrintable(tool.icon));
            if (tool.makeWindow)
                QCOMPARE(std::unique_ptr<QWidget>(tool.makeWindow())->windowTitle(), tool.label);
        }
        QCOMPARE(labels.size(), 8);
    }

    void opensOnDoubleClick()
    {
        QTest::mouseClick(card(0), Qt::LeftButton);
        QTest::mouseDClick(card(0), Qt::RightButton);
        QVERIFY(opened_.isEmpty());

        QTest::mouseDClick(card(0), Qt::LeftButton);
        QCOMPARE(opened_.size(), 1);
        QVERIFY(opened_.first()->isVisible());
        QVERIFY(opened_.first()->isMaximized());

        opened_.first()->showMinimized();
        QTest::mouseDClick(card(0), Qt::LeftButton);
        QCOMPARE(opened_.size(), 1);
        QVERIFY(!opened_.first()->isMinimized());
        QVERIFY(opened_.first()->isMaximized());
        QTRY_VERIFY(opened_.first()->isActiveWindow());

        QTest::mouseDClick(card(2), Qt::LeftButton);
        QCOMPARE(opened_.size(), 2);
    }

    void opensAfreshAfterClosing_data()
    {
        QTest::addColumn<bool>("closesLater");
        QTest::newRow("at once") << false;
        QTest::newRow("with work to end") << true;
    }

    void opensAfreshAfterClosing()
    {
        QFETCH(bool, closesLater);
        QTest::mouseDClick(card(0), Qt::LeftButton);
        const QPointer<StandInTool> first = opened_.first();
        first->closesLater = closesLater;
        first->close();
        QTest::mouseDClick(card(0), Qt::LeftButton);
        QCOMPARE(opened_.size(), 2);
        QVERIFY(opened_.last()->isMaximized());
        if (closesLater) {
            QVERIFY(first && !first->isVisible());
            first->finishClosing();
        }
        QTRY_VERIFY(!first);
        QTest::mouseDClick(card(0),
                           Qt::LeftButton); // the end of the first has not forgotten the second
        QCOMPARE(opened_.size(), 2);
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
        QTest::mouseDClick(card(1), Qt::LeftButton);
        QTest::keyClick(card(1), Qt::Key_Return);
        QVERIFY(doubleClicked.isEmpty());
        QVERIFY(card(1)->toolTip().contains(QStringLiteral("乙")));
        QVERIFY(card(0)->toolTip().isEmpty());
    }

    void leavesToolsOpen()
    {
        QTest::mouseDClick(card(0), Qt::LeftButton);
        QSignalSpy closed(launcher_.get(), &FramelessWindow::closed);
        QTest::mouseClick(launcher_->findChild<QWidget *>(QStringLiteral("closeButton")),
                          Qt::LeftButton);
        QCOMPARE(closed.size(), 1);
        QVERIFY(!launcher_->isVisible());
        launcher_.reset();
        QVERIFY(opened_.first()->isVisible());
        opened_.first()->close(); // nobody is left to forget it
        QTRY_VERIFY(!opened_.first());
    }

    void movesAmongCards_data()
    {
        QTest::addColumn<QString>("enabled");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("arrow");
        QTest::addColumn<int>("to");
        const QString all = QStringLiteral("11111111");
        const QString few = QStringLiteral("10001000");
        QTest::newRow("right") << all << 0 << int(Qt::Key_Right) << 1;
        QTest::newRow("down") << all << 1 << int(Qt::Key_Down) << 5;
        QTest::newRow("down in its column") << few << 0 << int(Qt::Key_Down) << 4;
        QTest::newRow("up into another column")
            << QStringLiteral("01001000") << 4 << int(Qt::Key_Up) << 1;
        QTest::newRow("nowhere to go") << few << 4 << int(Qt::Key_Down) << 4;
    }

    void movesAmongCards()
    {
        QFETCH(QString, enabled);
        QFETCH(int, from);
        QFETCH(int, arrow);
        QVector<bool> cards;
        for (const QChar &each : enabled)
            cards.append(each == QLatin1Char('1'));
        QTEST(cardplan::neighbour(cards, from, Qt::Key(arrow), 4), "to");
    }

    void fitsNarrowWindows()
    {
        const auto cardsInSight = [this] {
            const QRect content = launcher_->rect();
            return std::all_of(cards_.cbegin(), cards_.cend(), [&](const ToolCardWidget *each) {
                const QRect place(each->mapTo(launcher_.get(), QPoint()), each->size());
                return place.left() >= content.left() && place.right() <= content.right();
            });
        };
        for (const double share : {1.6, 2.6, 5.0}) {
            launcher_->resize(int(card(0)->width() * share), card(0)->height() * 3);
            QTRY_VERIFY2(cardsInSight(), qPrintable(QString::number(share)));
        }
    }

private:
    ToolCardWidget *card(int index) const { return cards_.at(index); }

    QVector<QPointer<StandInTool>> opened_;
    std::unique_ptr<ChooseTools> launcher_;
    QList<ToolCardWidget *> cards_;
};

QTEST_MAIN(TestChooseTools)
#include "test_choosetools.moc"
