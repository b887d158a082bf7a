#pragma once

#include "app/account/batchlogindialog.h"
#include "batchdelete/window/batchdelete.h"
#include "batchdelete/window/batchdelete_delegates.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "tests/support/files.h"
#include "tests/support/toolwindow.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>

namespace deletionwindow {

inline const QString before = "delete_pic_before"_s;
inline const QString after = "delete_pic_after"_s;
inline const QString first = "TS10001-1"_s;
inline const QString second = "TS10003-1"_s;
inline const QString third = "TS10004-1"_s;
inline const QString missing = "TS10005-1"_s;
inline const QString allDone = "全部删除完成！"_s;

} // namespace deletionwindow

/// The deletion window against the demo service, by mouse and keys.
class DeletionWindowTest : public ToolWindowTest<BatchDelete, BatchDeleteOrderModel::NumberColumn>
{
protected:
    using Column = BatchDeleteOrderModel::Column;

    void open(int rows = 6)
    {
        auto *window = new BatchDelete;
        window->setAttribute(Qt::WA_DeleteOnClose);
        show(window, rows);
    }

    /// Gives the order a folder on the share with \a count files in it, and finds it again.
    void fill(const QString &number, int count)
    {
        const QString folder = share_ + "/test/"_s + number;
        QVERIFY(QDir().mkpath(folder + "/原片"_s));
        for (int index = 0; index < count; ++index) {
            writeFile(folder + "/原片/%1.jpg"_s.arg(index));
        }
        const QString id = QString::number(40000 + number.mid(2, 5).toInt());
        demo_.changeOrder(id, {{"netpath"_s, wireForm(folder)}});
    }

    QStringList namesOnDisk(const QString &number)
    {
        return filesBelow(share_ + "/test/"_s + number);
    }

    /// By the key on all of the shown files.
    void retryAll()
    {
        window_->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(window_));
        files()->setFocus();
        files()->selectAll();
        QTest::keyClick(files(), Qt::Key_R, Qt::ControlModifier);
    }

    QTableView *files() { return child<QTableView>("fileTable"); }
    QPushButton *startButton() { return child<QPushButton>("startButton"); }
    QComboBox *combo(const char *name) { return child<QComboBox>(name); }

    void tick(const QString &number) { click(cell(number, Column::CheckColumn)); }
    bool isTicked(const QString &number)
    {
        return cell(number, Column::CheckColumn).data(Qt::CheckStateRole) == Qt::Checked;
    }

    void view(const QString &number, BatchDeleteProgressDelegate::Button button)
    {
        const QModelIndex index = cell(number, Column::ProgressColumn);
        orders()->scrollTo(index);
        click(
            index,
            BatchDeleteProgressDelegate::buttonRect(orders()->visualRect(index), button).center());
    }

    /// Presses start, confirms the list of orders and the account; \a next answers the box after
    /// that.
    void startConfirmed(QMessageBox::StandardButton next = QMessageBox::NoButton)
    {
        MessageBox::setNextAnswer(QMessageBox::Ok);
        click("startButton");
        QTRY_VERIFY(window_->findChild<BatchLoginDialog *>());
        QVERIFY(!boxes().isEmpty() && boxes_.takeFirst().startsWith("下列 "_s));
        if (next != QMessageBox::NoButton)
            MessageBox::setNextAnswer(next);
        auto *dialog = window_->findChild<BatchLoginDialog *>();
        dialog->findChild<QLineEdit *>("accountEdit"_s)->setText("demo01"_s);
        dialog->findChild<QLineEdit *>("passwordEdit"_s)->setText("abc123"_s);
        QTest::mouseClick(dialog->findChild<QPushButton *>("loginButton"_s), Qt::LeftButton);
        QTRY_VERIFY(!window_->findChild<BatchLoginDialog *>());
    }

    /// A run of the first order, of \a count files, whose first report is not answered yet.
    void runUntilReporting(int count)
    {
        fill(deletionwindow::first, count);
        open();
        tick(deletionwindow::first);
        demo_.hold(deletionwindow::after);
        startConfirmed();
        waitUntilHeld();
    }

    QString share_;
};
