#include "app/context/accountcontext.h"
#include "app/context/choices.h"
#include "tests/support/datarows.h"
#include "tests/support/loglines.h"
#include "tests/support/text.h"
#include "tests/widgets/shownwindow.h"
#include "widgets/tables/arrangedcolumns.h"
#include "widgets/tables/frozentable.h"
#include "widgets/windows/sharedwidth.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QStandardItemModel>

namespace {

constexpr int usualWidth = 120;

/// A table as a tool has one, with the columns of a version of it.
struct Tool
{
    explicit Tool(const QString &headings = "勾,订单号,姓名,状态,路径"_s)
    {
        model.setHorizontalHeaderLabels(headings.split(QLatin1Char(',')));
        model.setRowCount(3);
        prepareTable(&table);
        table.setModel(&model);
        for (int column = 0; column < model.columnCount(); ++column)
            table.setColumnWidth(column, usualWidth);
        columns = new ArrangedColumns(&table, {0, 1});
        table.resize(500, 300);
        showActive(&table);
        columns->open("tool"_s);
    }
    ~Tool() { table.setModel(nullptr); }

    QHeaderView *header() const { return table.horizontalHeader(); }
    int columnOf(const QString &heading) const
    {
        for (int column = 0; column < model.columnCount(); ++column) {
            if (model.headerData(column, Qt::Horizontal).toString() == heading)
                return column;
        }
        return -1;
    }
    /// What is shown, from left to right.
    QString shown() const
    {
        QStringList headings;
        for (int place = 0; place < header()->count(); ++place) {
            const int column = header()->logicalIndex(place);
            if (!header()->isSectionHidden(column))
                headings.append(model.headerData(column, Qt::Horizontal).toString());
        }
        return headings.join(QLatin1Char(','));
    }
    int width(const QString &heading) const { return header()->sectionSize(columnOf(heading)); }

    /// By the mouse, in one of the headers.
    static void drag(const QHeaderView *in, int from, int to)
    {
        const int y = in->height() / 2;
        QTest::mousePress(in->viewport(), Qt::LeftButton, {}, {from, y});
        const auto move = [&](int x) {
            QMouseEvent event(QEvent::MouseMove, QPoint(x, y), in->viewport()->mapToGlobal({x, y}),
                              Qt::NoButton, Qt::LeftButton, {});
            QCoreApplication::sendEvent(in->viewport(), &event);
        };
        move((from + to) / 2);
        move(to);
        QTest::mouseRelease(in->viewport(), Qt::LeftButton, {}, {to, y});
        QTest::qWait(1); // what follows the release
    }
    void dragColumn(const QString &heading, const QString &before) const
    {
        drag(header(), header()->sectionViewportPosition(columnOf(heading)) + usualWidth / 2,
             header()->sectionViewportPosition(columnOf(before)) + 10);
    }

    QStandardItemModel model;
    FrozenTable table;
    ArrangedColumns *columns;
};

} // namespace

class TestArrangedColumns : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        AccountContext::uid = "1"_s;
        for (const char *key : {"columns/tool", "splitter/tool"})
            choices::remember(QLatin1String(key), {});
    }

    void stayAsTheUserLeftThem()
    {
        {
            const Tool tool;
            QCOMPARE(tool.shown(), "勾,订单号,姓名,状态,路径"_s);
            tool.table.horizontalScrollBar()->setValue(1000);
            tool.dragColumn("路径"_s, "状态"_s);
            tool.columns->setHidden(tool.columnOf("姓名"_s), true);
            tool.columns->setHidden(1, true);    // tells the orders apart
            tool.header()->resizeSection(3, 77); // nobody's hand
            const QHeaderView *frozen = tool.columns->frozenHeader();
            const int edge = 2 * usualWidth - 1; // of the second frozen one
            Tool::drag(frozen, edge, edge - 20);
        }
        {
            const Tool again;
            QCOMPARE(again.shown(), "勾,订单号,路径,状态"_s);
            QVERIFY(qAbs(again.width("订单号"_s) - (usualWidth - 20)) <=
                    1); // kept in design pixels
            QCOMPARE(again.width("勾"_s), usualWidth);
            QCOMPARE(again.table.frozenColumns(), 2);
            AccountContext::uid = "2"_s;
            const Tool others;
            QCOMPARE(others.shown(), "勾,订单号,姓名,状态,路径"_s);
            AccountContext::uid = "1"_s;
        }
        // Another version has dropped a column and added two; the rest is as it was.
        const Tool later("新,勾,订单号,姓名,金额,路径"_s);
        QVERIFY(!later.shown().contains("姓名"_s));
        QVERIFY(later.shown().contains("金额"_s));
        QVERIFY(later.width("订单号"_s) < usualWidth - 10);
        later.columns->restoreDefaults();
        QCOMPARE(later.shown(), "新,勾,订单号,姓名,金额,路径"_s);
        QCOMPARE(later.width("订单号"_s), usualWidth);
    }

    void whatTellsTheOrdersApartStaysFirst()
    {
        const Tool tool;
        tool.header()->moveSection(4, 0);
        QTRY_COMPARE(tool.shown(), "勾,订单号,路径,姓名,状态"_s);
        // Scrolled to the right, it is seen, clicked and sorted by where it stands.
        tool.table.horizontalScrollBar()->setValue(1000);
        const QModelIndex number = tool.model.index(1, 1);
        QCOMPARE(tool.table.visualRect(number).left(), usualWidth);
        QCOMPARE(tool.table.indexAt(tool.table.visualRect(number).center()), number);
    }

    void damagedSettings_data()
    {
        QTest::addColumn<QString>("kept");
        newRow("no JSON", "@Invalid()"_s);
        newRow("no columns", "{\"version\":1}"_s);
        newRow("a later form", "{\"version\":2,\"columns\":[]}"_s);
        newRow("a mad width",
               "{\"version\":1,\"columns\":[{\"key\":\"姓名\",\"width\":90000000}]}"_s);
        newRow("no key", "{\"version\":1,\"columns\":[{\"width\":10,\"hidden\":true}]}"_s);
    }
    void damagedSettings()
    {
        QFETCH(const QString, kept);
        choices::remember("columns/tool"_s, kept);
        const LogLines log;
        const Tool tool;
        QCOMPARE(tool.shown(), "勾,订单号,姓名,状态,路径"_s);
        QCOMPARE(log.count("the columns of \"tool\""_s), 1);
    }

    void theWidthIsSharedWhenThereIsOne()
    {
        const auto make = [] {
            auto shared = std::make_unique<SharedWidth>(
                new QWidget, new QWidget, [](int width) { return qMin(300, width / 2); });
            shared->open("tool"_s);
            shared->resize(200, 100);
            shared->show();
            return shared;
        };
        {
            const auto shared = make();
            QVERIFY(qAbs(shared->sizes().first() - 100) < 5);
            shared->resize(1000, 100); // as when the window is maximised after all
            QCOMPARE(shared->sizes().first(), 300);
            emit shared->splitterMoved(0, 1); // where it stands is what the user wants
            shared->resize(500, 100);
            QVERIFY(qAbs(shared->sizes().first() - 150) < 5);
        }
        QVERIFY(qAbs(make()->sizes().first() - 60) < 5);
        choices::remember("splitter/tool"_s, "7"_s);
        const LogLines log;
        QVERIFY(qAbs(make()->sizes().first() - 100) < 5);
        QCOMPARE(log.count("the parts of \"tool\""_s), 1);
    }
};

QTEST_MAIN(TestArrangedColumns)
#include "test_arrangedcolumns.moc"
