#pragma once

#include "widgets/inputs/inputs.h"
#include "widgets/windows/framelesswindow.h"

#include <QApplication>
#include <QTest>
#include <QVBoxLayout>

inline void showActive(QWidget *window)
{
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
}

/// With the fields "first" and "second", so that focus and tab order can be told.
inline void showWithFields(FramelessWindow *window)
{
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    for (const char *name : {"first", "second"}) {
        auto *field = new LineEdit;
        field->setObjectName(QLatin1String(name));
        layout->addWidget(field);
    }
    window->setContent(content);
    window->setGeometry(50, 50, 400, 300);
    showActive(window);
}

inline QString focusName()
{
    const QWidget *focus = QApplication::focusWidget();
    return focus ? focus->objectName() : QString();
}

inline void keyToFocus(Qt::Key key)
{
    QTest::keyClick(QApplication::focusWidget(), key);
}

/// The names that have the focus now and after each of \a steps - 1 tabs.
inline QString tabOrder(int steps)
{
    QStringList names;
    for (; steps > 0; --steps) {
        names.append(focusName());
        keyToFocus(Qt::Key_Tab);
    }
    return names.join(QLatin1Char(' '));
}
