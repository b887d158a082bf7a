#pragma once

#include <QWidget>
#include <QtTest>

inline void showActive(QWidget *widget)
{
    widget->resize(900, 400);
    widget->show();
    widget->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(widget));
}
