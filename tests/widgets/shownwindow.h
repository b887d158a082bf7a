#pragma once

#include "widgets/inputs.h"

#include <QApplication>
#include <QTest>
#include <QVBoxLayout>

/// Content with two fields, so that focus and tab order can be told.
inline QWidget *twoFields()
{
    auto *content = new QWidget;
    auto *layout = new QVBoxLayout(content);
    for (const QString &name : {QStringLiteral("first"), QStringLiteral("second")}) {
        auto *field = new LineEdit;
        field->setObjectName(name);
        layout->addWidget(field);
    }
    return content;
}

inline void showActive(QWidget *window)
{
    window->show();
    window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(window));
}

inline QString focusName()
{
    const QWidget *focus = QApplication::focusWidget();
    return focus ? focus->objectName() : QString();
}
