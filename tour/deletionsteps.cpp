#include "app/account/batchlogindialog.h"
#include "batchdelete/window/batchdelete.h"
#include "batchdelete/window/batchdelete_delegates.h"
#include "batchdelete/window/batchdeletefilemodel.h"
#include "batchdelete/window/batchdeleteordermodel.h"
#include "tour/toolhand.h"

#include <QFile>

namespace {

using Column = BatchDeleteOrderModel::Column;

/// Everything below a folder: path and content.
QMap<QString, QByteArray> contentOf(const QString &wirePath)
{
    QMap<QString, QByteArray> content;
    const QString folder = platform::toLocalPath(wirePath);
    const QStringList names = filesBelow(folder);
    for (const QString &name : names)
        content.insert(folder + "/"_s + name, readFile(folder + "/"_s + name));
    return content;
}

/// The deletion window as the tour handles it.
class DeletionHand : public ToolHand<BatchDelete, Column::NumberColumn>
{
public:
    using ToolHand::ToolHand;

    void tick(const QString &number) { press(cell(number, Column::CheckColumn)); }
    void show(const QString &number) { press(cell(number, Column::NumberColumn)); }

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
        throw TourFailure{"no file can be retried"_s};
    }

    void confirmAccount(const QString &picture)
    {
        auto *dialog = guide_.waitForWindow<BatchLoginDialog>("the account is to be confirmed"_s);
        guide_.check(dialog->findChild<QLineEdit *>("accountEdit"_s)->text() != QString(),
                     "it is filled in already"_s);
        guide_.typeInto(dialog, "passwordEdit", "abc123"_s);
        guide_.picture(dialog, picture);
        guide_.click(dialog, "loginButton");
    }
};

} // namespace

void tourBatchDelete(Guide &guide)
{
    guide.step("批量删除: 打开"_s);
    DeletionHand hand(guide, "批量删除"_s);
    hand.search("TS1000"_s, 6);
    const QString kept = "TS10001-1"_s;
    const QString deleted = "TS10003-1"_s;
    const QString keptFolder = hand.text(kept, Column::PathColumn);
    const QString deletedFolder = hand.text(deleted, Column::PathColumn);
    const auto keptBefore = contentOf(keptFolder);
    const int count = contentOf(deletedFolder).size();
    guide.check(keptBefore.size() > 4 && count > 4 && keptFolder != deletedFolder,
                "both orders have files in folders of their own"_s);
    hand.show(deleted);
    guide.waitFor([&] { return hand.files()->model()->rowCount() == count; },
                  "all %1 files of the order are listed"_s.arg(count));
    guide.picture(hand.window(), "delete-opened"_s);

    guide.step("批量删除: 开始批量删除"_s);
    hand.tick(deleted);
    guide.answerNextBox("删除"_s, "delete-confirm"_s);
    guide.click(hand.window(), "startButton");
    const QString question = guide.boxText();
    guide.check(question.contains(deletedFolder) && !question.contains(keptFolder),
                "the folder about to be emptied is named, and no other"_s);
    hand.confirmAccount("delete-verify"_s);
    const QString readOnly = contentOf(deletedFolder).lastKey();
    guide.check(QFile::setPermissions(readOnly, QFile::ReadOwner), "one file is protected"_s);
    guide.answerNextBox("确定"_s, "delete-finished-box"_s);
    guide.check(guide.boxText().startsWith("全部删除完成！"_s), "the end is announced"_s);
    guide.check(hand.text(deleted, Column::ProgressColumn) == "%1/1/%2"_s.arg(count - 1).arg(count),
                "the protected file is counted as failed"_s);
    guide.check(contentOf(deletedFolder).size() == 1, "it is all that is left on disk"_s);
    guide.picture(hand.window(), "delete-one-failed"_s);

    guide.step("批量删除: 重新删除"_s);
    guide.check(QFile::setPermissions(readOnly, QFile::ReadOwner | QFile::WriteOwner),
                "the file is no longer protected"_s);
    hand.pressRetry();
    guide.waitFor(
        [&] { return hand.text(deleted, Column::ProgressColumn) == "%1/0/%1"_s.arg(count); },
        "and now it is deleted, too"_s);
    guide.check(contentOf(deletedFolder).isEmpty(), "the folder is empty"_s);
    guide.check(contentOf(keptFolder) == keptBefore,
                "the other order's files are what they were, byte for byte"_s);
    guide.check(guide.studio().requests("delete_pic_after"_s).size() == count,
                "the service was told of each file once"_s);
    guide.picture(hand.window(), "delete-complete"_s);
    hand.window()->close();
}
