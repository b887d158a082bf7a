#include "fileimport/importfiletablemodel.h"
#include "fileimport/importordertablemodel.h"

#include <QAbstractItemModelTester>
#include <QColor>
#include <QSignalSpy>
#include <QtTest>

class TestImportModels : public QObject
{
    Q_OBJECT

private slots:
    void fileRows_data();
    void fileRows();
    void filesChangeOneRow();
    void orderStates_data();
    void orderStates();
    void ordersAreFoundById();
};

void TestImportModels::fileRows_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("colour");
    QTest::newRow("waiting") << 0 << ""
                             << "等待导入"
                             << ""
                             << "#999999";
    QTest::newRow("imported") << 1 << "拷贝成功"
                              << "导入成功"
                              << ""
                              << "#28a745";
    QTest::newRow("failed") << 2 << ""
                            << "导入失败"
                            << "retry"
                            << "#dc3545";
    QTest::newRow("failed, why") << 2 << "任务已取消"
                                 << "任务已取消"
                                 << "retry"
                                 << "#dc3545";
    QTest::newRow("unknown") << 9 << "x"
                             << ""
                             << ""
                             << "";
}

void TestImportModels::fileRows()
{
    QFETCH(int, state);
    QFETCH(QString, message);
    QFETCH(QString, colour);
    ImportFileTableModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    ImportFile file;
    file.baseName = QStringLiteral("IMG.1");
    file.suffix = QStringLiteral("JPG");
    file.targetFolder = QStringLiteral("\\\\nas\\原片");
    file.state = state;
    file.message = message;
    model.append(file);
    QCOMPARE(model.index(0, 0).data().toString(), QStringLiteral("IMG.1.JPG"));
    QTEST(model.index(0, 1).data().toString(), "text");
    QTEST(model.index(0, 2).data().toString(), "action");
    QCOMPARE(model.index(0, 3).data().toString(), QStringLiteral("\\\\nas\\原片"));
    QCOMPARE(model.index(0, 3).data(Qt::UserRole).toInt(), state);
    const QVariant foreground = model.index(0, 1).data(Qt::ForegroundRole);
    QCOMPARE(foreground.isValid() ? foreground.value<QColor>().name() : QString(), colour);
}

void TestImportModels::filesChangeOneRow()
{
    ImportFileTableModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setFiles(QVector<ImportFile>(3));
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    model.updateRow(1, ImportFile::Failed, QStringLiteral("x"));
    model.updateRow(3, ImportFile::Failed, {});
    model.updateRow(-1, ImportFile::Failed, {});
    QCOMPARE(changes.size(), 1);
    QCOMPARE(changes.first().at(0).toModelIndex(), model.index(1, 1));
    QCOMPARE(changes.first().at(1).toModelIndex(), model.index(1, 2));
    QCOMPARE(model.files().at(1).message, QStringLiteral("x"));
    model.clear();
    QCOMPARE(model.rowCount(), 0);
}

void TestImportModels::orderStates_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("colour");
    QTest::newRow("not chosen") << int(PhotoState::NotChosen) << "未选择"
                                << "#999999";
    QTest::newRow("chosen") << int(PhotoState::Chosen) << "已选择"
                            << "#007aff";
    QTest::newRow("importing") << int(PhotoState::Importing) << "导入中 3/4"
                               << "#ffc107";
    QTest::newRow("done") << int(PhotoState::Done) << "导入完成"
                          << "#28a745";
    QTest::newRow("failed") << int(PhotoState::Failed) << "成功:1, 失败:2"
                            << "#dc3545";
}

void TestImportModels::orderStates()
{
    QFETCH(int, state);
    ImportOrder order;
    order.id = QStringLiteral("1");
    order.files.resize(4);
    order.files[0].state = ImportFile::Imported;
    order.files[1].state = ImportFile::Failed;
    order.files[2].state = ImportFile::Failed;
    order.photoState = PhotoState(state);
    ImportOrderTableModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setOrders({order});
    const QModelIndex cell = model.index(0, ImportOrderTableModel::StateColumn);
    QTEST(cell.data().toString(), "text");
    QTEST(cell.data(Qt::ForegroundRole).value<QColor>().name(), "colour");
    const QModelIndex chosen = model.index(0, ImportOrderTableModel::ChosenColumn);
    QCOMPARE(chosen.data().toString(), QString());
    model.change(0, [](ImportOrder &changed) { changed.everChosen = true; });
    QCOMPARE(chosen.data().toString(), QStringLiteral("4"));
}

void TestImportModels::ordersAreFoundById()
{
    QVector<ImportOrder> orders(2);
    orders[0].id = QStringLiteral("a");
    orders[1].id = QStringLiteral("b");
    orders[1].files.resize(2);
    orders[1].files[0].sourcePath = QStringLiteral("/x");
    orders[1].files[1].sourcePath = QStringLiteral("/y");
    ImportOrderTableModel model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setOrders(orders);
    QCOMPARE(model.rowOf(QStringLiteral("b")), 1);
    QCOMPARE(model.rowOf(QStringLiteral("c")), -1);

    ImportFile late = orders[1].files.at(1);
    late.fileIndex = 7; // the list was chosen anew since
    late.state = ImportFile::Imported;
    QCOMPARE(model.applyFile(1, late), 1);
    QCOMPARE(model.order(1).files.at(1).state, qint32(ImportFile::Imported));
    late.sourcePath = QStringLiteral("/gone");
    QCOMPARE(model.applyFile(1, late), -1);
    QCOMPARE(model.applyFile(-1, late), -1);
    QCOMPARE(model.order(1).countOf(ImportFile::Imported), 1);
}

QTEST_GUILESS_MAIN(TestImportModels)
#include "test_importmodels.moc"
