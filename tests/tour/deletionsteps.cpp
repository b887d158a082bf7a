#include "app/account/batchlogindialog.h"
#include "app/shell/choosetools.h"
#include "app/shell/toolcardwidget.h"
#include "batchdelete/batchdelete.h"
#include "batchdelete/batchdelete_delegates.h"
#include "batchdelete/batchdeletefilemodel.h"
#include "batchdelete/batchdeleteordermodel.h"
#include "platform/pathform.h"
#include "tests/tour/guide.h"
#include "tests/tour/steps.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QtTest>

namespace {

using Column = BatchDeleteOrderModel::Column;

/// Everything below a folder: path and content.
QMap<QString, QByteArray> contentOf(const QString &wirePath)
{
    QMap<QString, QByteArray> content;
    QDirIterator files(platform::toLocalPath(wirePath), QDir::Files | QDir::Hidden | QDir::System,
                       QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        QCryptographicHash hash(QCryptographicHash::Sha256);
        if (file.open(QIODevice::ReadOnly) && hash.addData(&file))
            content.insert(file.fileName(), hash.result());
    }
    return content;
}

/// The deletion window as the tour handles it.
class DeletionHand
{
public:
    explicit DeletionHand(Guide &guide) : guide_(guide)
    {
        const QString card = QStringLiteral("批量删除");
        auto *launcher = guide.waitForWindow<ChooseTools>(QStringLiteral("the launcher is there"));
        QTest::mouseDClick(launcher->findChild<ToolCardWidget *>(card), Qt::LeftButton);
        window_ = guide.waitForWindow<BatchDelete>(QStringLiteral("its window opens"));
        guide.spread(window_);
        guide.waitFor([this] { return orders()->model()->rowCount() > 0; },
                      QStringLiteral("the branch's orders are listed"));
    }

    BatchDelete *window() const { return window_; }
    QTableView *orders() const { return table("orderTable"); }
    QTableView *files() const { return table("fileTable"); }

    void search(const QString &keyword)
    {
        guide_.typeInto(window_, "keywordEdit", keyword);
        QTest::keyClick(window_->findChild<QLineEdit *>(QStringLiteral("keywordEdit")),
                        Qt::Key_Return);
        const auto *count = window_->findChild<QLabel *>(QStringLiteral("orderCountLabel"));
        guide_.waitFor([count] { return count->text() == QStringLiteral("    共6个订单"); },
                       QStringLiteral("a search for %1 finds six").arg(keyword));
    }

    QModelIndex cell(const QString &number, int column) const
    {
        const QAbstractItemModel *model = orders()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, Column::NumberColumn).data() == number)
                return model->index(row, column);
        }
        throw TourFailure{QStringLiteral("order %1 is not listed").arg(number)};
    }
    QString text(const QString &number, int column) const
    {
        return cell(number, column).data().toString();
    }

    void press(const QModelIndex &index, const QPoint &position)
    {
        orders()->scrollTo(index);
        QTest::mouseClick(orders()->viewport(), Qt::LeftButton, {},
                          position.isNull() ? orders()->visualRect(index).center() : position);
    }
    void tick(const QString &number) { press(cell(number, Column::CheckColumn), {}); }
    void show(const QString &number) { press(cell(number, Column::NumberColumn), {}); }

    /// Of the one file that has the button.
    void pressRetry()
    {
        const QAbstractItemModel *model = files()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            const QModelIndex state = model->index(row, BatchDeleteFileModel::StateColumn);
            if (!state.data(BatchDeleteFileModel::RetryRole).toString().isEmpty()) {
                files()->scrollTo(state);
                const QRect button =
                    BatchDeleteStateDelegate::buttonRect(files()->visualRect(state));
                QTest::mouseClick(files()->viewport(), Qt::LeftButton, {}, button.center());
                return;
            }
        }
        throw TourFailure{QStringLiteral("no file can be retried")};
    }

    void confirmAccount(const QString &picture)
    {
        auto *dialog = guide_.waitForWindow<BatchLoginDialog>(
            QStringLiteral("the account is to be confirmed"));
        guide_.check(dialog->findChild<QLineEdit *>(QStringLiteral("accountEdit"))->text() !=
                         QString(),
                     QStringLiteral("it is filled in already"));
        guide_.typeInto(dialog, "passwordEdit", QStringLiteral("abc123"));
        guide_.picture(dialog, picture);
        guide_.click(dialog, "loginButton");
    }

private:
    QTableView *table(const char *name) const
    {
        return window_->findChild<QTableView *>(QLatin1String(name));
    }

    Guide &guide_;
    BatchDelete *window_ = nullptr;
};

} // namespace

void tourBatchDelete(Guide &guide)
{
    guide.step(QStringLiteral("批量删除: 打开"));
    DeletionHand hand(guide);
    hand.search(QStringLiteral("TS1000"));
    const QString kept = QStringLiteral("TS10001-1");
    const QString deleted = QStringLiteral("TS10003-1");
    const QString keptFolder = hand.text(kept, Column::PathColumn);
    const QString deletedFolder = hand.text(deleted, Column::PathColumn);
    const auto keptBefore = contentOf(keptFolder);
    const int count = contentOf(deletedFolder).size();
    guide.check(keptBefore.size() > 4 && count > 4 && keptFolder != deletedFolder,
                QStringLiteral("both orders have files in folders of their own"));
    hand.show(deleted);
    guide.waitFor([&] { return hand.files()->model()->rowCount() == count; },
                  QStringLiteral("all %1 files of the order are listed").arg(count));
    guide.picture(hand.window(), QStringLiteral("delete-opened"));

    guide.step(QStringLiteral("批量删除: 开始批量删除"));
    hand.tick(deleted);
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("delete-confirm"));
    guide.click(hand.window(), "startButton");
    const QString question = guide.boxText();
    guide.check(question.contains(deletedFolder) && !question.contains(keptFolder),
                QStringLiteral("the folder about to be emptied is named, and no other"));
    hand.confirmAccount(QStringLiteral("delete-verify"));
    const QString readOnly = contentOf(deletedFolder).lastKey();
    guide.check(QFile::setPermissions(readOnly, QFile::ReadOwner),
                QStringLiteral("one file is protected"));
    guide.answerNextBox(QStringLiteral("确定"), QStringLiteral("delete-finished-box"));
    guide.check(guide.boxText().startsWith(QStringLiteral("全部删除完成！")),
                QStringLiteral("the end is announced"));
    guide.check(hand.text(deleted, Column::ProgressColumn) ==
                    QStringLiteral("%1/1/%2").arg(count - 1).arg(count),
                QStringLiteral("the protected file is counted as failed"));
    guide.check(contentOf(deletedFolder).size() == 1,
                QStringLiteral("it is all that is left on disk"));
    guide.picture(hand.window(), QStringLiteral("delete-one-failed"));

    guide.step(QStringLiteral("批量删除: 重新删除"));
    guide.check(QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::WriteOwner),
                QStringLiteral("the file is no longer protected"));
    hand.pressRetry();
    guide.waitFor(
        [&] {
            return hand.text(deleted, Column::ProgressColumn) ==
                   QStringLiteral("%1/0/%1").arg(count);
        },
        QStringLiteral("and now it is deleted, too"));
    guide.check(contentOf(deletedFolder).isEmpty(), QStringLiteral("the folder is empty"));
    guide.check(contentOf(keptFolder) == keptBefore,
                QStringLiteral("the other order's files are what they were, byte for byte"));
    guide.check(guide.studio().requests(QStringLiteral("delete_pic_after")).size() == count,
                QStringLiteral("the service was told of each file once"));
    guide.picture(hand.window(), QStringLiteral("delete-complete"));
    hand.window()->close();
}
