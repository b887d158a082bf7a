#include "app/account/batchlogindialog.h"
#include "app/account/loginnew.h"
#include "app/settings/diagnosispreview.h"
#include "app/shell/choosetools.h"
#include "app/shell/tools.h"
#include "cardcheck/window/ordercheck.h"
#include "tasks/background.h"
#include "tests/support/datarows.h"
#include "tests/support/login.h"
#include "tests/support/patience.h"
#include "tests/support/text.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/windows/loadingoverlay.h"
#include "widgets/windows/windowkeys.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPointer>
#include <QRadioButton>
#include <QTableView>
#include <QTextEdit>

#include <functional>

namespace {

using MakeWindow = std::function<QWidget *()>;

/// Whether it does something for the user, by mouse or by keyboard.
bool isControl(const QWidget *widget)
{
    const bool isInput =
        qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLineEdit *>(widget) ||
        qobject_cast<const QComboBox *>(widget) || qobject_cast<const QAbstractSpinBox *>(widget) ||
        qobject_cast<const QAbstractItemView *>(widget) ||
        qobject_cast<const QTextEdit *>(widget) || qobject_cast<const QPlainTextEdit *>(widget);
    return isInput || widget->focusPolicy() != Qt::NoFocus;
}

/// A part that the framework gives to a control, which is the control to whoever uses it.
bool isPartOfControl(const QWidget *widget)
{
    if (qobject_cast<const QLabel *>(widget)) // its text is its name
        return true;
    for (const QWidget *above = widget->parentWidget(); above && !widget->isWindow();
         above = above->parentWidget()) {
        if (above->isWindow())
            return false;
        if (widget->objectName().startsWith("qt_"_s) || qobject_cast<const QComboBox *>(above) ||
            qobject_cast<const QHeaderView *>(widget))
            return true;
        if (qobject_cast<const QTableView *>(above))
            return true;
    }
    return false;
}

QString told(const QWidget *widget)
{
    return QLatin1String(widget->metaObject()->className()) + QLatin1Char(' ') +
           widget->objectName() + " in "_s + widget->parentWidget()->objectName();
}

} // namespace

Q_DECLARE_METATYPE(MakeWindow)

/// What every window of the program owes to those who use it without a mouse or without seeing it.
class TestEveryWindow : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        MessageBox::setScripted(true);
        logIn(&demo_);
    }

    void cleanup()
    {
        delete window_;
        diskPool().waitForDone();
        processorPool().waitForDone();
        MessageBox::takeShown();
    }

    void isUsableByEveryone_data()
    {
        QTest::addColumn<MakeWindow>("make");
        QTest::addColumn<bool>("listsOrders");
        const QVector<Tool> tools = QVector<Tool>(allTools())
                                    << orderBrowser() << history() << cardCheck() << settings();
        for (const Tool &tool : tools)
            QTest::newRow(tool.label.toUtf8().constData())
                << MakeWindow([make = tool.makeWindow] { return make(); })
                << (tool.label != orderBrowser().label && tool.label != history().label &&
                    tool.label != cardCheck().label && tool.label != settings().label);
        const auto row = [](const char *name, const MakeWindow &make) {
            QTest::newRow(name) << make << false;
        };
        row("login", [] { return new LoginNew; });
        row("launcher", [] { return new ChooseTools; });
        row("order check", [] { return new OrderCheck; });
        row("verification", [] { return new BatchLoginDialog(nullptr, {}); });
        row("diagnosis", [] { return new DiagnosisPreview(nullptr, {{"a.txt"_s, "text"_s}}); });
    }

    void isUsableByEveryone()
    {
        QFETCH(MakeWindow, make);
        window_ = make();
        window_->show();
        window_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window_));
        QFETCH(bool, listsOrders);
        if (listsOrders)
            QTRY_VERIFY(window_->findChild<QTableView *>("orderTable"_s)->model()->rowCount() > 0);
        const auto overlays = window_->findChildren<LoadingOverlay *>();
        for (const LoadingOverlay *overlay : overlays)
            QTRY_VERIFY(!overlay->isVisible());

        QStringList nameless;
        const auto parts = window_->findChildren<QWidget *>();
        for (QWidget *part : parts) {
            QAccessibleInterface *shown = QAccessible::queryAccessibleInterface(part);
            if (part->window() == window_ && isControl(part) && !isPartOfControl(part) &&
                (!shown || shown->text(QAccessible::Name).trimmed().size() < 2))
                nameless.append(told(part));
        }
        QCOMPARE(nameless.join(QLatin1Char('\n')), QString());
        checkKeys();
        checkTabs();
    }

private:
    /// Each key of the window is told with what it does, and does one thing.
    void checkKeys()
    {
        QStringList wrong;
        QStringList everywhere;
        const auto keys = keysOf(window_);
        for (const WindowKey &key : keys) {
            if (key.what.isEmpty())
                wrong.append(key.keys + " does what?"_s);
            if (key.where.isEmpty() && everywhere.contains(key.keys))
                wrong.append(key.keys + " is ambiguous"_s);
            if (key.where.isEmpty())
                everywhere.append(key.keys);
        }
        QCOMPARE(wrong.join(QLatin1Char('\n')), QString());
        QVERIFY(everywhere.contains("Ctrl+/"_s));
    }

    /// Tab leads from control to control and back to the first.
    void checkTabs()
    {
        // What answers of the service enable on the way is not asked for.
        QVector<QWidget *> expected;
        const auto parts = window_->findChildren<QWidget *>();
        for (QWidget *part : parts) {
            const auto *choice = qobject_cast<const QRadioButton *>(part);
            if (choice && !choice->isChecked()) // arrows lead there
                continue;
            if (part->isVisible() && part->isEnabled() && part->window() == window_ &&
                part->focusPolicy() & Qt::TabFocus && !part->focusProxy())
                expected.append(part);
        }
        QTest::keyClick(window_, Qt::Key_Tab);
        QPointer<QWidget> first = QApplication::focusWidget();
        QVERIFY(first);
        QVector<QWidget *> seen;
        for (QWidget *at = first; !seen.contains(at) || at != first;) {
            QVERIFY2(!seen.contains(at), qUtf8Printable("trapped at "_s + told(at)));
            seen.append(at);
            QTest::keyClick(at, Qt::Key_Tab);
            at = QApplication::focusWidget();
            QVERIFY(at);
        }
        QStringList missed;
        for (QWidget *part : qAsConst(expected)) {
            if (part->isVisible() && part->isEnabled() && !seen.contains(part))
                missed.append(told(part));
        }
        QCOMPARE(missed.join(QLatin1Char('\n')), QString());
    }

    DemoClient demo_;
    QPointer<QWidget> window_;
};

QTEST_MAIN(TestEveryWindow)
#include "test_everywindow.moc"
