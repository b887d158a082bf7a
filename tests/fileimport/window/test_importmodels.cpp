#include "fileimport/window/importfiletablemodel.h"
#include "fileimport/window/importordertablemodel.h"
#include "tests/support/datarows.h"
#include "tests/support/text.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QSignalSpy>
#include <QtTest>

class TestImportModels : public QObject
{
    Q_OBJECT

private slots:
    void fileRows_data()
    {
        addColumns<int, QString, QString, QString, QString>(
            {"state", "message", "text", "action", "colour"});
        newRow("waiting", 0, "", "等待导入", "", "#999999");
        newRow("imported", 1, "拷贝成功", "导入成功", "", "#28a745");
        newRow("failed", 2, "", "导入失败", "retry", "#dc3545");
        newRow("failed, why", 2, "任务已取消", "任务已取消", "retry", "#dc3545");
        newRow("unknown", 9, "x", "", "", "");
    }

    void fileRows()
    {
        QFETCH(int, state);
        QFETCH(QString, message);
        QFETCH(QString, colour);
        ImportFileTableModel model;
        const QAbstractItemModelTester tester(&model);
        ImportFile file;
        file.baseName = "IMG.1"_s;
        file.suffix = "JPG"_s;
        file.targetFolder = "\\\\nas\\原片"_s;
        file.state = state;
        file.message = message;
        model.append(file);
        QCOMPARE(model.index(0, 0).data().toString(), "IMG.1.JPG"_s);
        QTEST(model.index(0, 1).data().toString(), "text");
        QTEST(model.index(0, 2).data().toString(), "action");
        QCOMPARE(model.index(0, 3).data().toString(), "\\\\nas\\原片"_s);
        QCOMPARE(model.index(0, 3).data(Qt::UserRole).toInt(), state);
        const QVariant foreground = model.index(0, 1).data(Qt::ForegroundRole);
        QCOMPARE(foreground.isValid() ? foreground.value<QColor>().name() : QString(), colour);
    }

    void filesChangeOneRow()
    {
        ImportFileTableModel model;
        const QAbstractItemModelTester tester(&model);
        model.setFiles(QVector<ImportFile>(3));
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        model.updateRow(1, ImportFile::Failed, "x"_s);
        model.updateRow(3, ImportFile::Failed, {});
        model.updateRow(-1, ImportFile::Failed, {});
        QCOMPARE(changes.size(), 1);
        QCOMPARE(changes.first().at(0).toModelIndex(), model.index(1, 1));
        QCOMPARE(changes.first().at(1).toModelIndex(), model.index(1, 2));
        QCOMPARE(model.files().at(1).message, "x"_s);
        model.clear();
        QCOMPARE(model.rowCount(), 0);
    }

    void orderStates_data()
    {
        addColumns<QVector<int>, bool, bool, QString, QString>(
            {"files", "importing", "unregistered", "text", "colour"});
        using States = QVector<int>;
        newRow("not chosen", States{}, false, false, "未选择", "#999999");
        newRow("chosen", States{0, 0}, false, false, "已选择", "#007aff");
        newRow("importing", States{1, 2, 2, 0}, true, false, "导入中 3/4", "#ffc107");
        newRow("done", States{1, 1}, false, false, "导入完成", "#28a745");
        newRow("failed", States{1, 2, 2, 1}, false, false, "成功:2, 失败:2", "#dc3545");
        newRow("chosen beside done ones", States{1, 0}, false, false, "已选择", "#007aff");
        newRow("stopped", States{1, 0}, false, true, "成功:1, 失败:0", "#dc3545");
        newRow("stopping", States{0, 0}, true, false, "导入中 0/2", "#ffc107");
        newRow("not registered", States{1, 1}, false, true, "成功:2, 失败:0", "#dc3545");
        newRow("not registered, cleared", States{}, false, true, "未选择", "#999999");
    }

    void orderStates()
    {
        QFETCH(QVector<int>, files);
        QFETCH(bool, importing);
        QFETCH(bool, unregistered);
        ImportOrder order;
        order.id = "1"_s;
        order.importing = importing;
        order.unregistered = unregistered;
        for (const int state : qAsConst(files)) {
            order.files.append(ImportFile());
            order.files.last().state = state;
        }
        ImportOrderTableModel model;
        const QAbstractItemModelTester tester(&model);
        model.setOrders({order});
        const QModelIndex cell = model.index(0, ImportOrderTableModel::StateColumn);
        QTEST(cell.data().toString(), "text");
        QTEST(cell.data(Qt::ForegroundRole).value<QColor>().name(), "colour");
        const QModelIndex chosen = model.index(0, ImportOrderTableModel::ChosenColumn);
        QCOMPARE(chosen.data().toString(), QString());
        model.change(0, [](ImportOrder &changed) { changed.everChosen = true; });
        QCOMPARE(chosen.data().toInt(), files.size());
    }

    void ordersAreFoundById()
    {
        QVector<ImportOrder> orders(2);
        orders[0].id = "a"_s;
        orders[1].id = "b"_s;
        orders[1].files.resize(2);
        orders[1].files[0].sourcePath = "/x"_s;
        orders[1].files[1].sourcePath = "/y"_s;
        ImportOrderTableModel model;
        const QAbstractItemModelTester tester(&model);
        model.setOrders(orders);
        QCOMPARE(model.rowOf(orders[1].identity()), 1);
        QCOMPARE(model.rowOf({{}, "c"_s, {}}), -1);

        ImportFile late = orders[1].files.at(1);
        late.fileIndex = 1;
        late.state = ImportFile::Imported;
        QCOMPARE(model.applyFile(1, late), 1);
        QCOMPARE(model.order(1).files.at(1).state, qint32(ImportFile::Imported));
        QCOMPARE(model.applyFile(-1, late), -1);
        for (const int index : {0, 2, -1}) { // the list was chosen anew since
            late.fileIndex = index;
            QCOMPARE(model.applyFile(1, late), -1);
        }
        QCOMPARE(model.order(1).countOf(ImportFile::Imported), 1);
    }
};

QTEST_GUILESS_MAIN(TestImportModels)
#include "test_importmodels.moc"
