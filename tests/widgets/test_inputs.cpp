#include "app/context/k.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/colours.h"
#include "widgets/datepicker.h"
#include "widgets/framelesswindow.h"
#include "widgets/ordersearchbar.h"
#include "widgets/tables.h"
#include "widgets/theme.h"

#include <QCalendarWidget>
#include <QHelpEvent>
#include <QPushButton>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>
#include <QToolTip>
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

QList<ShopRecord> twoBranches()
{
    ShopRecord first;
    first.id = QStringLiteral("11");
    first.name = QStringLiteral("旗舰店");
    ShopRecord second;
    second.id = QStringLiteral("12");
    second.name = QStringLiteral("万达店");
    return {first, second};
}

} // namespace

/// Inputs, the search bar, tables, and the look they share.
class TestInputs : public QObject
{
    Q_OBJECT

private slots:
    void colourForStyleSheets_data()
    {
        QTest::addColumn<QRgb>("colour");
        QTest::addColumn<QString>("text");
        QTest::newRow("opaque") << colours::accent << QStringLiteral("#2980ff");
        QTest::newRow("translucent")
            << colours::cardBorder << QStringLiteral("rgba(100, 110, 130, 0.3)");
        QTest::newRow("selection")
            << colours::inputSelection << QStringLiteral("rgba(0, 122, 255, 0.25)");
    }

    void colourForStyleSheets()
    {
        QFETCH(QRgb, colour);
        QTEST(colours::css(colour), "text");
    }

    void styleSheetsFollowTheScale()
    {
        const float before = K::uiScale;
        K::uiScale = 2.0F;
        const QString sheet = theme::messageBoxStyle();
        K::uiScale = before;
        QVERIFY(sheet.contains(QStringLiteral("border-radius: 8px; padding: 12px 24px; "
                                              "min-width: 120px;")));
        QVERIFY(!sheet.contains(QStringLiteral("dp")));
        QCOMPARE(theme::splitterStyle(),
                 QStringLiteral("QSplitter::handle {    background-color: #e0e0e0;    "
                                "width: 1px;}"));
    }

    void comboIgnoresTheWheelWithoutFocus()
    {
        ComboBox box;
        box.addItems({QStringLiteral("a"), QStringLiteral("b")});
        showActive(&box);
        const auto roll = [&box] {
            QWheelEvent wheel(QPointF(5, 5), box.mapToGlobal(QPoint(5, 5)), QPoint(),
                              QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                              false);
            QApplication::sendEvent(&box, &wheel);
        };
        box.clearFocus();
        roll();
        QCOMPARE(box.currentIndex(), 0);
        box.setFocus();
        roll();
        QCOMPARE(box.currentIndex(), 1);
    }

    void passwordFieldShowsOnRequest()
    {
        FramelessWindow window;
        window.setContent(twoFields());
        showActive(&window);
        auto &field = *window.findChild<LineEdit *>(QStringLiteral("second"));
        field.setPassword(true);
        QSignalSpy focused(&field, &LineEdit::focused);
        QSignalSpy unfocused(&field, &LineEdit::unfocused);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(focused.count(), 1);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QCOMPARE(unfocused.count(), 1);
        QCOMPARE(focusName(), QStringLiteral("showPasswordButton"));
        auto *eye = field.findChild<QAbstractButton *>(QStringLiteral("showPasswordButton"));
        QCOMPARE(field.echoMode(), QLineEdit::Password);
        QTest::mouseClick(eye, Qt::LeftButton);
        QCOMPARE(field.echoMode(), QLineEdit::Normal);
        QTest::mouseClick(eye, Qt::LeftButton);
        QCOMPARE(field.echoMode(), QLineEdit::Password);
    }

    void dateIsPickedOrLeftAlone_data()
    {
        QTest::addColumn<bool>("hasCalendar");
        QTest::addColumn<bool>("canBeShown");
        QTest::addColumn<QStringList>("lines");
        const QString attempt = QStringLiteral("尝试使用内置日历控件");
        QTest::newRow("own calendar")
            << true << true << QStringList({attempt, QStringLiteral("内置日历显示状态: true")});
        QTest::newRow("own calendar cannot be shown")
            << true << false
            << QStringList({attempt, QStringLiteral("内置日历显示状态: false"),
                            QStringLiteral("内置日历无法显示，创建独立日历弹窗")});
        QTest::newRow("no own calendar")
            << false << true << QStringList({QStringLiteral("无法获取日历控件，创建独立日历")});
    }

    void dateIsPickedOrLeftAlone()
    {
        QFETCH(bool, hasCalendar);
        QFETCH(bool, canBeShown);
        QFETCH(QStringList, lines);
        QWidget window;
        DatePicker picker(QStringLiteral("点击选择拍照日期"), &window);
        picker.setCalendarPopup(hasCalendar);
        Hider hider;
        if (!canBeShown)
            picker.calendarWidget()->window()->installEventFilter(&hider);
        showActive(&window);
        QCOMPARE(picker.text(), QStringLiteral("点击选择拍照日期"));
        QTest::ignoreMessage(QtDebugMsg,
                             QRegularExpression(QStringLiteral("^日期选择器被点击，控件:")));
        for (const QString &line : lines)
            QTest::ignoreMessage(QtDebugMsg, line.toUtf8().constData());
        QTest::mouseClick(picker.findChild<QLineEdit *>(), Qt::LeftButton);
        QWidget *popup = QApplication::activePopupWidget();
        QVERIFY(popup);
        const auto press = [](QList<Qt::Key> keys) {
            auto *days = QApplication::activePopupWidget()->findChild<QTableView *>();
            for (const Qt::Key key : keys)
                QTest::keyClick(days, key);
        };
        press({Qt::Key_Left, Qt::Key_Escape});
        QVERIFY2(!picker.isChosen(), "Escape chose a date");

        const QDate today = QDate::currentDate();
        picker.openCalendar();
        press({Qt::Key_Return});
        QVERIFY(picker.chosenDate() == today || picker.chosenDate() == today.addDays(1));
        picker.choose(QDate(2024, 3, 7));
        picker.openCalendar();
        press({Qt::Key_Left, Qt::Key_Return});
        QCOMPARE(picker.text(), QStringLiteral("2024-03-06"));
        picker.openCalendar();
        press({Qt::Key_Left, Qt::Key_Escape});
        QCOMPARE(picker.chosenDate(), QDate(2024, 3, 6));

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
        bar.setBranches(twoBranches(), QStringLiteral("12"));
        QCOMPARE(bar.selectedBranchId(), QStringLiteral("12"));
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

    void searchBarFitsHalfANarrowScreen_data()
    {
        QTest::addColumn<float>("scale");
        QTest::addColumn<int>("width");
        QTest::newRow("100 %") << 1.0F << 600;
        QTest::newRow("150 %") << 1.5F << 600;
    }

    void searchBarFitsHalfANarrowScreen()
    {
        QFETCH(float, scale);
        QFETCH(int, width);
        const float before = K::uiScale;
        K::uiScale = scale;
        QWidget window;
        OrderSearchBar bar;
        K::uiScale = before;
        bar.setBranches(twoBranches(), QStringLiteral("11"));
        bar.findChild<ComboBox *>(QStringLiteral("searchTypeBox"))->setCurrentIndex(1);
        auto *layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(&bar);
        layout->addStretch();
        window.resize(3 * width, 300);
        showActive(&window);
        auto *branches = bar.findChild<QWidget *>(QStringLiteral("branchBox"));
        auto *search = bar.findChild<QWidget *>(QStringLiteral("searchButton"));
        const auto top = [&bar](QWidget *part) { return part->mapTo(&bar, QPoint(0, 0)).y(); };
        QTRY_VERIFY(qAbs(top(branches) - top(search)) < search->height());
        QVERIFY2(bar.minimumSizeHint().width() <= width,
                 qPrintable(QString::number(bar.minimumSizeHint().width())));
        window.resize(bar.minimumSizeHint().width(), 300);
        QTRY_VERIFY(top(branches) >= top(search) + search->height());
        QTRY_VERIFY(bar.rect().contains(branches->geometry()));
        QVERIFY(bar.rect().contains(QRect(search->mapTo(&bar, QPoint(0, 0)), search->size())));
    }

    void tableTellsWhatDoesNotFit()
    {
        QStandardItemModel model;
        model.appendRow({new QStandardItem(QStringLiteral("短")),
                         new QStandardItem(QString(200, QLatin1Char('w'))),
                         new QStandardItem(QStringLiteral("短"))});
        EmptyStateTable table;
        prepareTable(&table);
        table.setModel(&model);
        fitColumns(&table, 150);
        table.resize(600, 200);
        showActive(&table);
        QCOMPARE(table.columnWidth(1), 150);
        QVERIFY(table.columnWidth(0) < 150);
        const auto tipAt = [&](int column) {
            const QRect cell = table.visualRect(model.index(0, column));
            QHelpEvent help(QEvent::ToolTip, cell.center(),
                            table.viewport()->mapToGlobal(cell.center()));
            QApplication::sendEvent(table.viewport(), &help);
            return QToolTip::text();
        };
        QCOMPARE(tipAt(0), QString());
        QVERIFY(tipAt(1).contains(QString(200, QLatin1Char('w'))));
    }
};

QTEST_MAIN(TestInputs)
#include "test_inputs.moc"
