#include "widgets/frame/macwindowmanager.h"

#include <QSignalSpy>
#include <QTest>
#include <QWidget>

class TestWindowManager : public QObject
{
    Q_OBJECT

private slots:
    void minimizes()
    {
        MacWindowManager *manager = MacWindowManager::instance();
        QVERIFY(!manager->minimizeWindow(nullptr));
        QWidget window;
        window.showMaximized();
        QVERIFY(manager->minimizeWindow(&window));
        QVERIFY(window.isMinimized());
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        QVERIFY(window.isMaximized());
    }

    void repairsWhatComesBack()
    {
        MacWindowManager *manager = MacWindowManager::instance();
        QSignalSpy restored(manager, &MacWindowManager::windowRestored);
        auto *doomed = new QWidget;
        QWidget window;
        for (QWidget *each : {doomed, &window}) {
            manager->watch(each);
            each->show();
            each->showMaximized();
            QVERIFY(restored.isEmpty());
            each->showMinimized();
        }
        doomed->showNormal();
        window.showNormal();
        QCOMPARE(restored.size(), 2);
        QCOMPARE(restored.last().first().value<QWidget *>(), &window);
        delete doomed; // before its repair is due
        QVERIFY(!window.testAttribute(Qt::WA_TranslucentBackground));
        QTRY_VERIFY(window.testAttribute(Qt::WA_TranslucentBackground));
    }
};

QTEST_MAIN(TestWindowManager)
#include "test_windowmanager.moc"
