#pragma once

#include "tasks/background.h"
#include "tests/support/login.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QPointer>
#include <QTableView>

/// Boxes of these texts were shown since the last were expected.
#define EXPECT_BOXES(...)                                                                          \
    do {                                                                                           \
        QTRY_COMPARE(boxes(), (QStringList{__VA_ARGS__}));                                         \
        boxes_.clear();                                                                            \
    } while (false)

/// One box was shown, and of its text (box) this is true.
#define EXPECT_BOX_THAT(condition)                                                                 \
    do {                                                                                           \
        QTRY_COMPARE(boxes().size(), 1);                                                           \
        const QString box = boxes_.takeFirst();                                                    \
        QVERIFY2(condition, qUtf8Printable(box));                                                  \
    } while (false)

#define EXPECT_TOAST(text) QTRY_COMPARE(Toast::currentText(window_), text##_s)

/// A test of a tool's window against the demo service, by mouse and keys: \a numberColumn of its
/// table of orders tells the orders apart. Boxes answer themselves, and each is to be expected.
template <typename Window, int numberColumn> class ToolWindowTest : public QObject
{
protected:
    void logIn()
    {
        MessageBox::setScripted(true);
        ::logIn(&demo_);
        MessageBox::takeShown();
        boxes_.clear();
    }

    void endTest()
    {
        demo_.release();
        boxes();
        delete window_;
        diskPool().waitForDone();
        processorPool().waitForDone();
        QCOMPARE(boxes(), QStringList()); // every box was expected
    }

    /// Shows the window and waits for \a rows orders.
    void show(Window *window, int rows = 1)
    {
        window_ = window;
        window_->resize(1600, 900);
        window_->show();
        window_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window_));
        QTRY_VERIFY(orders()->model()->rowCount() >= rows);
    }

    /// Texts of the boxes shown since the last were expected.
    const QStringList &boxes()
    {
        const auto shown = MessageBox::takeShown();
        for (const MessageBox::Shown &box : shown)
            boxes_.append(box.text);
        return boxes_;
    }
    void forgetBoxes()
    {
        boxes();
        boxes_.clear();
    }

    template <typename Child> Child *child(const char *name)
    {
        auto *found = window_->template findChild<Child *>(QString::fromUtf8(name));
        if (!found)
            qFatal("no %s", name);
        return found;
    }
    void click(const char *button)
    {
        QTest::mouseClick(child<QAbstractButton>(button), Qt::LeftButton);
    }
    void chooseBranch(const QString &id)
    {
        auto *box = child<QComboBox>("branchBox");
        box->setCurrentIndex(box->findData(id));
        emit box->activated(box->currentIndex());
    }
    void waitUntilHeld(int count = 1) { QTRY_COMPARE(demo_.held(), count); }

    QTableView *orders() { return child<QTableView>("orderTable"); }
    /// The order's cell in the table as it is sorted now.
    QModelIndex cell(const QString &number, int column)
    {
        const QAbstractItemModel *model = orders()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, numberColumn).data().toString() == number)
                return model->index(row, column);
        }
        qFatal("no order %s", qPrintable(number));
    }
    QString text(const QString &number, int column)
    {
        return cell(number, column).data().toString();
    }
    void select(const QString &number) { orders()->selectRow(cell(number, numberColumn).row()); }
    /// At the middle of the cell unless \a position says otherwise.
    void click(const QModelIndex &index, QPoint position = {})
    {
        orders()->scrollTo(index);
        if (position.isNull())
            position = orders()->visualRect(index).center();
        QTest::mouseClick(orders()->viewport(), Qt::LeftButton, {}, position);
    }

    DemoClient demo_;
    QPointer<Window> window_;
    QStringList boxes_;
};
