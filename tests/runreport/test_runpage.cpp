#include "runreport/failureview.h"
#include "runreport/runpage.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QComboBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QtTest>

namespace {

const OrderIdentity firstOrder{"101"_s, "1"_s, "11"_s};
const OrderIdentity secondOrder{"101"_s, "1"_s, "12"_s}; // another service of the same order

RunFailure failure(const OrderIdentity &order, const QString &file, const QString &reason)
{
    const QString name = order == firstOrder ? "TS1-1 周子墨"_s : "TS1-2 周子墨"_s;
    return {order, name, "E:/DCIM/"_s + file, file, reason};
}

} // namespace

class TestRunPage : public QObject
{
    Q_OBJECT

private slots:
    void eachFileStandsInItOnce()
    {
        FailureModel model;
        const QAbstractItemModelTester tester(&model);
        QSignalSpy counts(&model, &FailureModel::countChanged);
        model.put(failure(firstOrder, "a.jpg"_s, "磁盘已满"_s));
        model.put(failure(secondOrder, "a.jpg"_s, "磁盘已满"_s));
        model.put(failure(firstOrder, "a.jpg"_s, "无法读取"_s));
        QCOMPARE(model.rowCount(), 2);
        QCOMPARE(model.failures().at(0).reason, "无法读取"_s);
        model.take(firstOrder, "E:/DCIM/b.jpg"_s);
        model.take(firstOrder, "E:/DCIM/a.jpg"_s);
        QCOMPARE(model.rowCount(), 1);
        QCOMPARE(model.failures().at(0).order, secondOrder);
        QCOMPARE(model.workAtRest().state, WorkProgress::State::Failed);
        model.takeOrder(secondOrder);
        QCOMPARE(model.workAtRest(), WorkProgress());
        QCOMPARE(counts.count(), 4);
    }

    void isSearchedByWordsAndByOrder()
    {
        FailureModel model;
        model.put(failure(firstOrder, "IMG_1.JPG"_s, "磁盘已满"_s));
        model.put(failure(firstOrder, "IMG_2.JPG"_s, "无法读取 E:\\DCIM\\IMG_2.JPG"_s));
        model.put(failure(secondOrder, "IMG_1.CR2"_s, "磁盘已满"_s));
        FailureView view(&model);
        const auto files = [&view] {
            QStringList shown;
            const QVector<RunFailure> found = view.shown();
            for (const RunFailure &each : found)
                shown.append(each.file);
            return shown.join(QLatin1Char(' '));
        };
        auto *words = view.findChild<QLineEdit *>("failureWords"_s);
        words->setText("已满 img_1"_s);
        QCOMPARE(files(), "IMG_1.JPG IMG_1.CR2"_s);
        auto *orders = view.findChild<QComboBox *>("failureOrders"_s);
        QTRY_COMPARE(orders->count(), 3);
        orders->setCurrentIndex(2);
        emit orders->activated(2);
        QCOMPARE(files(), "IMG_1.CR2"_s);
        words->clear();
        QCOMPARE(files(), "IMG_1.CR2"_s);
        QCOMPARE(view.findChild<QLabel *>("failureCount"_s)->text(), "显示 1，共 3 个"_s);
        // Once the order has none any more, the others are seen.
        model.takeOrder(secondOrder);
        QTRY_COMPARE(files(), "IMG_1.JPG IMG_2.JPG"_s);
    }

    void offersWhatCanBeDone()
    {
        FramelessWindow tool;
        tool.show();
        RunPage page(&tool);
        QVector<RunFailure> retried;
        int all = 0;
        page.setRetry({[&retried](const QVector<RunFailure> &failures) { retried = failures; },
                       [&all] { ++all; },
                       {}});
        const auto press = [&page](const QString &name) {
            auto *button = page.findChild<QPushButton *>(name);
            const bool isOffered = button->isEnabled();
            button->click();
            return isOffered;
        };
        QVERIFY(!press("retryAllButton"_s));
        QVERIFY(!press("copyButton"_s));
        page.failures()->put(failure(firstOrder, "a.jpg"_s, "甲\n乙"_s));
        page.failures()->put(failure(firstOrder, "b.jpg"_s, "磁盘已满"_s));
        page.openBeside();
        QVERIFY(page.isVisible());
        QVERIFY(!press("retrySelectedButton"_s));
        page.findChild<QTableView *>("failureTable"_s)->selectRow(1);
        QVERIFY(press("retrySelectedButton"_s));
        QCOMPARE(retried.size(), 1);
        QCOMPARE(retried.first().file, "b.jpg"_s);
        QVERIFY(press("retryAllButton"_s));
        QCOMPARE(all, 1);
        QVERIFY(press("copyButton"_s));
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 "TS1-1 周子墨\ta.jpg\t甲；乙\nTS1-1 周子墨\tb.jpg\t磁盘已满"_s);

        RunReport report;
        OrderReport order;
        order.number = "TS1-1"_s;
        order.chosen = 3;
        order.proofs = {{Proof::Size, 1}, {Proof::Server, 2}};
        report.orders = {order};
        page.showReport(report);
        auto *orders = page.findChild<QTableView *>("runOrders"_s);
        QVERIFY(orders->isVisible());
        QCOMPARE(orders->model()->index(0, OrderReportModel::ProofColumn).data().toString(),
                 "已从服务器读回 2，大小一致 1"_s);
        QVERIFY(press("copyButton"_s));
        QVERIFY(QGuiApplication::clipboard()->text().startsWith(report.headline()));
        page.dropReport();
        QVERIFY(!orders->isVisible());
        tool.close();
        QVERIFY(!page.isVisible());
    }
};

QTEST_MAIN(TestRunPage)
#include "test_runpage.moc"
