#include "app/context/k.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/datepicker.h"
#include "widgets/ordersearchbar.h"
#include "widgets/tables.h"
#include "widgets/theme.h"

#include <QCalendarWidget>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>
#include <QWheelEvent>

namespace {

/// Hides a window as soon as it is shown, as a platform does that cannot show it.
class Hider : public QObject
{
protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show)
            static_cast<QWidget *>(watched)->hide();
        return false;
    }
};

const QList<ShopRecord> twoBranches = {{QStringLiteral("11"), QStringLiteral("旗舰店"), {}, {}},
                                       {QStringLiteral("12"), QStringLiteral("万达店"), {}, {}}};

const QVector<orderqueries::Person> twoPersons = {{QStringLiteral("31"), QStringLiteral("陈一凡")},
                                                  {QStringLiteral("32"), QStringLiteral("郑颖")}};

} // namespace

/// Inputs, the search bar and the look they share.
class TestInputs : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { K::uiScale = 1.0F; }

    void styleSheetsFollowTheScale()
    {
        K::uiScale = 2.0F;
        const QString sheet = theme::messageBoxStyle();
        QVERIFY(sheet.contains(QStringLiteral("padding: 12px 24px; min-width: 120px;")));
        QVERIFY(!sheet.contains(QStringLiteral("dp")));
    }

    void comboIgnoresTheWheelWithoutFocus()
    {
        ComboBox box;
        box.addItems({QStringLiteral("a"), QStringLiteral("b")});
        showActive(&box);
        for (const bool focused : {false, true}) {
            focused ? box.setFocus() : box.clearFocus();
            QWheelEvent wheel(QPointF(5, 5), box.mapToGlobal(QPoint(5, 5)), {}, {0, -120},
                              Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(&box, &wheel);
            QCOMPARE(box.currentIndex(), focused ? 1 : 0);
        }
    }

    void passwordFieldShowsOnRequest()
    {
        FramelessWindow window;
        showWithFields(&window);
        auto &field = *window.findChild<LineEdit *>(QStringLiteral("second"));
        field.setPassword(true);
        QSignalSpy focused(&field, &LineEdit::focused);
        QSignalSpy unfocused(&field, &LineEdit::unfocused);
        QCOMPARE(tabOrder(3), QStringLiteral("first second showPasswordButton"));
        QCOMPARE(focused.count(), 1);
        QCOMPARE(unfocused.count(), 1);
        auto *eye = field.findChild<QAbstractButton *>(QStringLiteral("showPasswordButton"));
        QCOMPARE(field.echoMode(), QLineEdit::Password);
        for (const auto mode : {QLineEdit::Normal, QLineEdit::Password}) {
            QTest::mouseClick(eye, Qt::LeftButton);
            QCOMPARE(field.echoMode(), mode);
        }
    }

    void dateIsPickedOrLeftAlone_data()
    {
        QTest::addColumn<bool>("hasCalendar");
        QTest::addColumn<bool>("canBeShown");
        QTest::addColumn<QString>("lines");
        const QString attempt = QStringLiteral("尝试使用内置日历控件\n内置日历显示状态: ");
        QTest::newRow("own") << true << true << attempt + QStringLiteral("true");
        QTest::newRow("own, cannot be shown")
            << true << false
            << attempt + QStringLiteral("false\n内置日历无法显示，创建独立日历弹窗");
        QTest::newRow("none") << false << true << "无法获取日历控件，创建独立日历";
    }

    void dateIsPickedOrLeftAlone()
    {
        QFETCH(bool, hasCalendar);
        QFETCH(bool, canBeShown);
        QFETCH(QString, lines);
        DatePicker picker(QStringLiteral("点击选择拍照日期"));
        picker.setCalendarPopup(hasCalendar);
        Hider hider;
        if (!canBeShown)
            picker.calendarWidget()->window()->installEventFilter(&hider);
        showActive(&picker);
        QCOMPARE(picker.text(), QStringLiteral("点击选择拍照日期"));
        const QRegularExpression clicked(QStringLiteral("^日期选择器被点击，控件:"));
        QTest::ignoreMessage(QtDebugMsg, clicked);
        const QStringList expected = lines.split(QLatin1Char('\n'));
        for (const QString &line : expected)
            QTest::ignoreMessage(QtDebugMsg, line.toUtf8().constData());
        QTest::mouseClick(picker.findChild<QLineEdit *>(), Qt::LeftButton);
        const auto press = [](const QList<Qt::Key> &keys) {
            auto *days = QApplication::activePopupWidget()->findChild<QTableView *>();
            for (const Qt::Key key : keys)
                QTest::keyClick(days, key);
        };
        QVERIFY(QApplication::activePopupWidget());
        press({Qt::Key_Left, Qt::Key_Escape});
        QVERIFY2(!picker.isChosen(), "Escape chose a date");

        const QDate today = QDate::currentDate();
        picker.openCalendar();
        press({Qt::Key_Return});
        QVERIFY(picker.chosenDate() == today || picker.chosenDate() == today.addDays(1));
        picker.choose(QDate(2024, 3, 7));
        for (const Qt::Key last : {Qt::Key_Return, Qt::Key_Escape}) {
            picker.openCalendar();
            press({Qt::Key_Left, last});
            QCOMPARE(picker.text(), QStringLiteral("2024-03-06"));
        }
        picker.reset();
        picker.openCalendar();
        QApplication::activePopupWidget()->close();
        QVERIFY2(!picker.isChosen(), "closing the calendar chose a date");
    }

    void typingADateBeginsWithToday()
    {
        DatePicker picker(QStringLiteral("点击选择选片日期"));
        QSignalSpy entered(&picker, &DatePicker::entered);
        showActive(&picker);
        QTest::keyClick(&picker, Qt::Key_Return);
        QCOMPARE(entered.count(), 1);
        QVERIFY(!picker.isChosen());
        QTest::keyClicks(&picker, QStringLiteral("20231105"));
        QCOMPARE(picker.chosenDate(), QDate(2023, 11, 5));
        picker.reset();
        QCOMPARE(picker.text(), QStringLiteral("点击选择选片日期"));
    }

    void searchBarAsksForWhatWasTyped()
    {
        OrderSearchBar bar;
        showActive(&bar);
        QSignalSpy requested(&bar, &OrderSearchBar::searchRequested);
        auto *keyword = bar.findChild<LineEdit *>(QStringLiteral("keywordEdit"));
        auto *type = bar.findChild<ComboBox *>(QStringLiteral("searchTypeBox"));
        auto *button = bar.findChild<QPushButton *>(QStringLiteral("searchButton"));
        QTest::keyClicks(keyword, QStringLiteral(" A&B"));
        QTest::keyClick(keyword, Qt::Key_Return);
        QCOMPARE(requested.count(), 1);
        QCOMPARE(bar.search().text, QStringLiteral(" A&B"));

        bar.setBusy(true);
        QTest::keyClick(keyword, Qt::Key_Return);
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(requested.count(), 1);
        bar.setBusy(false);

        type->setFocus();
        QTest::keyClick(type, Qt::Key_Down);
        QCOMPARE(bar.search().type, int(orderqueries::OrderSearch::ShootingDate));
        QVERIFY(!keyword->isVisible());
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(requested.count(), 1);
        QVERIFY(QApplication::activePopupWidget());
        QApplication::activePopupWidget()->close();
        auto *date = bar.findChild<DatePicker *>(QStringLiteral("shootingDate"));
        date->choose(QDate(2024, 3, 7));
        QTest::mouseClick(button, Qt::LeftButton);
        QCOMPARE(requested.count(), 2);
        QCOMPARE(bar.search().shootingDate, QDate(2024, 3, 7));
        QVERIFY(!bar.search().selectionDate.isValid());

        bar.resetKeyword();
        QCOMPARE(bar.search().type, 0);
        QCOMPARE(bar.search().text, QString());
    }

    void onlyTheUserChoosesABranch()
    {
        OrderSearchBar bar;
        showActive(&bar);
        QSignalSpy chosen(&bar, &OrderSearchBar::branchChosen);
        bar.setBranches(twoBranches, QStringLiteral("12"));
        bar.selectBranch(QStringLiteral("nowhere"));
        QCOMPARE(bar.selectedBranchId(), QStringLiteral("12"));
        QVERIFY(chosen.isEmpty());
        auto *branches = bar.findChild<ComboBox *>(QStringLiteral("branchBox"));
        branches->setFocus();
        QTest::keyClick(branches, Qt::Key_Up);
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(bar.branchId(chosen.at(0).at(0).toInt()), QStringLiteral("11"));
        branches->showPopup();
        QTest::keyClick(branches->view(), Qt::Key_Return);
        QCOMPARE(chosen.count(), 1);
        // Refused by the owner: the same choice made again is a choice again.
        bar.selectBranch(QStringLiteral("12"));
        QTest::keyClick(branches, Qt::Key_Up);
        QCOMPARE(chosen.count(), 2);
    }

    void choosingAPersonSearches()
    {
        OrderSearchBar bar;
        QVERIFY(bar.personId().isNull());
        bar.addPersonFilter();
        showActive(&bar);
        QSignalSpy requested(&bar, &OrderSearchBar::searchRequested);
        auto *box = bar.findChild<ComboBox *>(QStringLiteral("personBox"));
        QCOMPARE(box->currentText(), QStringLiteral("全部"));
        QVERIFY(bar.personId().isEmpty() && !bar.personId().isNull());

        bar.setPersons(twoPersons);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(bar.personId(), QStringLiteral("31"));
        QCOMPARE(requested.count(), 1);
        bar.setBusy(true);
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(bar.personId(), QStringLiteral("31"));
        QCOMPARE(requested.count(), 1);
        bar.setPersons({twoPersons.last(), twoPersons.first()});
        QCOMPARE(bar.personId(), QStringLiteral("31"));
        bar.setPersons({twoPersons.last()});
        QCOMPARE(bar.personId(), QString());
    }

    void tabKeyFollowsTheStackedSearch()
    {
        OrderSearchBar bar;
        bar.setStacked();
        bar.addPersonFilter();
        showActive(&bar);
        bar.findChild<ComboBox *>(QStringLiteral("branchBox"))->setFocus();
        QCOMPARE(tabOrder(5), QStringLiteral("branchBox personBox searchTypeBox keywordEdit"
                                             " searchButton"));
    }

    /// What brings a clicked row wholly into view leaves the columns where they are.
    void clickDoesNotMoveATableSideways()
    {
        const int interval = QApplication::doubleClickInterval();
        QApplication::setDoubleClickInterval(0); // the framework waits for that, and a little more
        QStandardItemModel model(20, 6);
        EmptyStateTable table;
        prepareTable(&table);
        table.setModel(&model);
        showActive(&table);
        table.resize(theme::columnWidth() * 5 / 2, theme::rowHeight() * 11 / 2);
        const QModelIndex lowest = table.indexAt({3, table.viewport()->height() - 3});
        const QPoint corner = table.visualRect(lowest.sibling(lowest.row(), 2)).topLeft();
        QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, corner + QPoint(3, 3));
        QTRY_VERIFY(table.verticalScrollBar()->value() > 0);
        QCOMPARE(table.horizontalScrollBar()->value(), 0);
        QApplication::setDoubleClickInterval(interval);
    }

    void searchBarFitsHalfANarrowScreen()
    {
        K::uiScale = 1.5F;
        QWidget window;
        auto *bar = new OrderSearchBar;
        bar->setBranches(twoBranches, QStringLiteral("11"));
        bar->addPersonFilter();
        bar->findChild<ComboBox *>(QStringLiteral("searchTypeBox"))->setCurrentIndex(1);
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(bar);
        layout->addStretch();
        showActive(&window);
        const auto place = [bar](const char *name) {
            auto *part = bar->findChild<QWidget *>(QLatin1String(name));
            return QRect(part->mapTo(bar, QPoint()), part->size());
        };
        QVERIFY(bar->minimumSizeHint().width() <= 600);
        window.resize(bar->minimumSizeHint().width(), 300);
        QTRY_VERIFY(place("branchBox").top() > place("searchButton").bottom());
        QTRY_VERIFY(bar->rect().contains(place("branchBox")));
        QVERIFY(bar->rect().contains(place("searchButton")));
        QVERIFY(bar->rect().contains(place("personBox")));
        QVERIFY(!place("personBox").intersects(place("branchBox")));
    }
};

QTEST_MAIN(TestInputs)
#include "test_inputs.moc"
