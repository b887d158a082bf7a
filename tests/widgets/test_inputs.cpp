#include "app/context/k.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/inputs/contextmenu.h"
#include "widgets/inputs/datepicker.h"
#include "widgets/inputs/editmenus.h"
#include "widgets/orders/ordersearchbar.h"
#include "widgets/tables/tables.h"
#include "widgets/theme/theme.h"

#include <QCalendarWidget>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QToolButton>
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

/// What the tool tip of the place shows.
QString shownTip(QWidget *widget, const QPoint &place)
{
    QToolTip::hideText();
    QHelpEvent hovered(QEvent::ToolTip, place, widget->mapToGlobal(place));
    QCoreApplication::sendEvent(widget, &hovered);
    const auto windows = QApplication::topLevelWidgets();
    for (const QWidget *window : windows) {
        const auto *label = qobject_cast<const QLabel *>(window);
        if (!label || !label->isVisible() || label->text() != QToolTip::text())
            continue;
        QTextDocument shown;
        shown.setHtml(label->text());
        return Qt::mightBeRichText(label->text()) ? shown.toPlainText() : label->text();
    }
    return {};
}

const QList<ShopRecord> twoBranches = {{"11"_s, "旗舰店"_s, {}, {}}, {"12"_s, "万达店"_s, {}, {}}};

const QVector<orderqueries::Person> twoPersons = {{"31"_s, "陈一凡"_s}, {"32"_s, "郑颖"_s}};

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
        QVERIFY(sheet.contains("padding: 12px 24px; min-width: 120px;"_s));
        QVERIFY(!sheet.contains("dp"_s));
    }

    void comboIgnoresTheWheelWithoutFocus()
    {
        ComboBox box;
        box.addItems({"a"_s, "b"_s});
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
        auto &field = *window.findChild<LineEdit *>("second"_s);
        field.setPassword(true);
        QSignalSpy focused(&field, &LineEdit::focused);
        QSignalSpy unfocused(&field, &LineEdit::unfocused);
        QCOMPARE(tabOrder(3), "first second showPasswordButton"_s);
        QCOMPARE(focused.count(), 1);
        QCOMPARE(unfocused.count(), 1);
        auto *eye = field.findChild<QAbstractButton *>("showPasswordButton"_s);
        QCOMPARE(field.echoMode(), QLineEdit::Password);
        for (const auto mode : {QLineEdit::Normal, QLineEdit::Password}) {
            QTest::mouseClick(eye, Qt::LeftButton);
            QCOMPARE(field.echoMode(), mode);
        }
    }

    void dateIsPickedOrLeftAlone_data()
    {
        addColumns<bool, bool, QString>({"hasCalendar", "canBeShown", "lines"});
        const QString attempt = "尝试使用内置日历控件\n内置日历显示状态: "_s;
        newRow("own", true, true, attempt + "true"_s);
        newRow("own, cannot be shown", true, false,
               attempt + "false\n内置日历无法显示，创建独立日历弹窗"_s);
        newRow("none", false, true, "无法获取日历控件，创建独立日历");
    }

    void dateIsPickedOrLeftAlone()
    {
        QFETCH(bool, hasCalendar);
        QFETCH(bool, canBeShown);
        QFETCH(QString, lines);
        DatePicker picker("点击选择拍照日期"_s);
        picker.setCalendarPopup(hasCalendar);
        Hider hider;
        if (!canBeShown)
            picker.calendarWidget()->window()->installEventFilter(&hider);
        showActive(&picker);
        QCOMPARE(picker.text(), "点击选择拍照日期"_s);
        const QRegularExpression clicked("^日期选择器被点击，控件:"_s);
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
            QCOMPARE(picker.text(), "2024-03-06"_s);
        }
        picker.reset();
        picker.openCalendar();
        QApplication::activePopupWidget()->close();
        QVERIFY2(!picker.isChosen(), "closing the calendar chose a date");
    }

    void calendarIsHeadedByYearAndMonth()
    {
        DatePicker picker("点击选择拍照日期"_s);
        picker.choose(QDate(2026, 11, 24));
        showActive(&picker);
        QTest::keyClick(&picker, Qt::Key_Down, Qt::AltModifier);
        QWidget *popup = QApplication::activePopupWidget();
        QVERIFY(popup);
        auto *year = popup->findChild<QToolButton *>("qt_calendar_yearbutton"_s);
        const auto *month = popup->findChild<QToolButton *>("qt_calendar_monthbutton"_s);
        const auto head = [&] {
            return year->x() < month->x() ? year->text() + QLatin1Char(' ') + month->text()
                                          : QString();
        };
        QTRY_COMPARE(head(), "2026年 11月"_s);
        auto *calendar = popup->findChild<QCalendarWidget *>();
        QCOMPARE(calendar->firstDayOfWeek(), Qt::Monday);
        calendar->showNextMonth();
        calendar->showNextMonth();
        QCOMPARE(head(), "2027年 1月"_s);
        month->menu()->actions().at(4)->trigger();
        QCOMPARE(head(), "2027年 5月"_s);
        for (const char *typed : {"2025", "2025"}) {
            QTest::mouseClick(year, Qt::LeftButton);
            auto *edit = popup->findChild<QSpinBox *>("qt_calendar_yearedit"_s);
            edit->selectAll();
            QTest::keyClicks(edit, QLatin1String(typed));
            QTest::keyClick(edit, Qt::Key_Return);
            QCOMPARE(head(), "2025年 5月"_s);
        }
        popup->close();
    }

    void fieldsHaveTheSharedMenu_data()
    {
        addColumns<QString, QString>({"field", "menu"});
        newRow("line edit", "line", "撤销 重做 剪切 复制 粘贴 删除 全选");
        newRow("password", "password", "粘贴 删除 全选");
        newRow("date edit", "date", "打开日历 剪切 复制 粘贴 删除 全选");
        newRow("read-only text", "text", "复制 全选");
        newRow("label", "label", "复制 全选");
        newRow("label that cannot be selected", "plain label", "");
    }

    void fieldsHaveTheSharedMenu()
    {
        QFETCH(QString, field);
        QFETCH(QString, menu);
        const EditMenus menus(qApp);
        QApplication::clipboard()->setText("粘贴的"_s);
        QWidget window;
        auto *line = new LineEdit(&window);
        auto *password = new LineEdit(&window);
        auto *date = new DatePicker("日期"_s, &window);
        auto *text = new QPlainTextEdit("很多字"_s, &window);
        auto *label = new QLabel("标签"_s, &window);
        auto *plain = new QLabel("标签"_s, &window);
        const QHash<QString, QWidget *> fields{{"line"_s, line},
                                               {"password"_s, password},
                                               {"date"_s, date->findChild<QLineEdit *>()},
                                               {"text"_s, text->viewport()},
                                               {"label"_s, label},
                                               {"plain label"_s, plain}};
        for (LineEdit *edit : {line, password}) {
            edit->setText("内容"_s);
            edit->selectAll();
            edit->end(false);
            edit->insert("改过"_s);
            edit->backspace();
            edit->undo();
            edit->selectAll();
        }
        password->setPassword(true);
        date->choose(QDate(2026, 11, 24));
        date->selectAll();
        text->setReadOnly(true);
        text->selectAll();
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        label->setSelection(0, 2);
        showActive(&window);

        QWidget *asked = fields.value(field);
        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(1, 1),
                                asked->mapToGlobal(QPoint(1, 1)));
        QApplication::sendEvent(asked, &event);
        auto *shown = qobject_cast<ContextMenu *>(QApplication::activePopupWidget());
        QStringList texts;
        QAction *pasting = nullptr;
        const auto actions = shown ? shown->actions() : QList<QAction *>();
        for (QAction *action : actions) {
            const QString name = action->text().section(QLatin1Char('\t'), 0, 0);
            if (action->isEnabled() && !action->isSeparator())
                texts.append(name);
            if (name == "粘贴"_s)
                pasting = action;
        }
        QCOMPARE(texts.join(QLatin1Char(' ')), menu);
        if (field == "line"_s) {
            pasting->trigger();
            QCOMPARE(line->text(), "粘贴的"_s);
        }
        delete shown;
    }

    void typingADateBeginsWithToday()
    {
        DatePicker picker("点击选择选片日期"_s);
        QSignalSpy entered(&picker, &DatePicker::entered);
        showActive(&picker);
        QTest::keyClick(&picker, Qt::Key_Return);
        QCOMPARE(entered.count(), 1);
        QVERIFY(!picker.isChosen());
        QTest::keyClicks(&picker, "20231105"_s);
        QCOMPARE(picker.chosenDate(), QDate(2023, 11, 5));
        picker.reset();
        QCOMPARE(picker.text(), "点击选择选片日期"_s);
    }

    void searchBarAsksForWhatWasTyped()
    {
        OrderSearchBar bar;
        showActive(&bar);
        QSignalSpy requested(&bar, &OrderSearchBar::searchRequested);
        auto *keyword = bar.findChild<LineEdit *>("keywordEdit"_s);
        auto *type = bar.findChild<ComboBox *>("searchTypeBox"_s);
        auto *button = bar.findChild<QPushButton *>("searchButton"_s);
        QTest::keyClicks(keyword, " A&B"_s);
        QTest::keyClick(keyword, Qt::Key_Return);
        QCOMPARE(requested.count(), 1);
        QCOMPARE(bar.search().text, " A&B"_s);

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
        auto *date = bar.findChild<DatePicker *>("shootingDate"_s);
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
        bar.setBranches(twoBranches, "12"_s);
        bar.selectBranch("nowhere"_s);
        QCOMPARE(bar.selectedBranchId(), "12"_s);
        QVERIFY(chosen.isEmpty());
        auto *branches = bar.findChild<ComboBox *>("branchBox"_s);
        branches->setFocus();
        QTest::keyClick(branches, Qt::Key_Up);
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(bar.branchId(chosen.at(0).at(0).toInt()), "11"_s);
        branches->showPopup();
        QTest::keyClick(branches->view(), Qt::Key_Return);
        QCOMPARE(chosen.count(), 1);
        // Refused by the owner: the same choice made again is a choice again.
        bar.selectBranch("12"_s);
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
        auto *box = bar.findChild<ComboBox *>("personBox"_s);
        QCOMPARE(box->currentText(), "全部"_s);
        QVERIFY(bar.personId().isEmpty() && !bar.personId().isNull());

        bar.setPersons(twoPersons);
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(bar.personId(), "31"_s);
        QCOMPARE(requested.count(), 1);
        bar.setBusy(true);
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(bar.personId(), "31"_s);
        QCOMPARE(requested.count(), 1);
        bar.setPersons({twoPersons.last(), twoPersons.first()});
        QCOMPARE(bar.personId(), "31"_s);
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

    /// A name that points at a file, wherever data is shown. The picture, if it were loaded, would
    /// not fit the place.
    void markupIsShownToTheLetter()
    {
        const QTemporaryDir folder;
        const QString picture = folder.filePath("a.png"_s);
        QVERIFY(QImage(10, 3000, QImage::Format_RGB32).save(picture));
        const QString name = "<img src='%1'>  &amp;\n<b>王</b>"_s.arg(picture);

        const PlainLabel label(name);
        QCOMPARE(label.text(), name);
        QVERIFY(label.sizeHint().height() < 1000);

        QStandardItemModel model(2, 1);
        model.setData(model.index(0, 0), name, Qt::ToolTipRole);
        model.setData(model.index(1, 0), name.repeated(9)); // does not fit its column
        model.setHeaderData(0, Qt::Horizontal, name, Qt::ToolTipRole);
        EmptyStateTable table;
        prepareTable(&table);
        table.setModel(&model);
        setPlainTip(&table, name);
        showActive(&table);
        const auto cell = [&](int row) { return table.visualRect(model.index(row, 0)).center(); };
        QCOMPARE(shownTip(table.viewport(), cell(0)), name);
        QCOMPARE(shownTip(table.viewport(), cell(1)), name.repeated(9));
        QCOMPARE(shownTip(table.horizontalHeader()->viewport(), {3, 3}), name);
        QCOMPARE(shownTip(&table, {1, 1}), name);
        QToolTip::hideText();

        MessageBox::warning(&table, name);
        const auto *box = table.findChild<QDialog *>();
        QCOMPARE(box->findChild<QPlainTextEdit *>()->toPlainText(), name);
        const QString html = "<img src='%1'>"_s.arg(picture);
        QWidget other;
        showActive(&other);
        MessageBox::warning(&other, BoxText::rich(html));
        QVERIFY(other.findChild<QDialog *>()->height() < 300);
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
};

QTEST_MAIN(TestInputs)
#include "test_inputs.moc"
