#include "app/settings/storagepage.h"

#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QHBoxLayout>
#include <QLocale>
#include <QPushButton>

namespace {

QString sizeText(qint64 bytes)
{
    return bytes < 0 ? QStringLiteral("没有文件") : QLocale().formattedDataSize(bytes);
}

QPushButton *rowButton(const QString &name, const QString &text)
{
    auto *button = new QPushButton(text);
    button->setObjectName(name);
    button->setStyleSheet(theme::secondaryButtonStyle());
    return button;
}

} // namespace

StoragePage::StoragePage(const QString &ledgerFolder, const QString &logFolder)
    : SettingsPage(QStringLiteral("存储"))
    , room_(ledgerFolder, logFolder)
    , ledger_(addRow(QStringLiteral("ledger"), QStringLiteral("导入记录"), ledgerFolder))
    , log_(addRow(QStringLiteral("log"), QStringLiteral("运行日志"), logFolder))
{
    addNote(QStringLiteral(
        "两者都只在这台电脑上，属于当前 Windows 用户，从不写到共享存储。导入记录保存 400 天，"
        "还没有办完的一直保留；运行日志最多 5 个文件，每个 2 MB。"));
    connect(&room_, &StorageRoom::measured, this, &StoragePage::showSizes);
    connect(ledger_.clear, &QPushButton::clicked, this, &StoragePage::askToClearLedger);
    connect(log_.clear, &QPushButton::clicked, this, &StoragePage::askToClearLog);
    connect(&opener_, &SharedFolderOpener::finished, this,
            [this](bool isOpened, const QString &problem) {
                if (!isOpened)
                    Toast::show(this, problem);
            });
}

StoragePage::Row StoragePage::addRow(const QString &name, const QString &title,
                                     const QString &folder)
{
    auto *line = new QHBoxLayout;
    line->setSpacing(theme::spacing());
    line->addWidget(new PlainLabel(title));
    auto *size = new PlainLabel;
    size->setObjectName(name + QStringLiteral("Size"));
    line->addWidget(size, 1);
    auto *open = rowButton(name + QStringLiteral("Open"), QStringLiteral("打开目录"));
    auto *clear = rowButton(name + QStringLiteral("Clear"), QStringLiteral("清理"));
    for (QPushButton *button : {open, clear}) {
        button->setEnabled(!folder.isEmpty());
        button->setAccessibleName(title + button->text());
        line->addWidget(button);
    }
    connect(open, &QPushButton::clicked, this, [this, folder] { opener_.open(folder); });
    rows()->addLayout(line);
    addNote(folder.isEmpty() ? QStringLiteral("由安装设置关闭，不保存。") : folder)
        ->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return {size, clear};
}

void StoragePage::showEvent(QShowEvent *event)
{
    SettingsPage::showEvent(event);
    room_.measure();
}

void StoragePage::showSizes(qint64 ledgerBytes, qint64 logBytes)
{
    ledger_.size->setText(sizeText(ledgerBytes));
    log_.size->setText(sizeText(logBytes));
    ledger_.clear->setEnabled(ledgerBytes >= 0);
    log_.clear->setEnabled(logBytes > 0);
}

void StoragePage::askToClearLedger()
{
    const QString obstacle = room_.obstacleToClearing();
    if (!obstacle.isEmpty()) {
        Toast::show(this, obstacle);
        return;
    }
    const QString question =
        QStringLiteral(
            "删除 %1 天以前已经办完的导入记录？照片不受影响，但核对存储卡时不再知道那些照片导入到了哪里。"
            "还没有办完的记录会保留。")
            .arg(StorageRoom::daysKept);
    MessageBox::question(
        this, BoxText(question).endangering(QMessageBox::Ok, QStringLiteral("删除")),
        QMessageBox::Ok | QMessageBox::Cancel, [this](QMessageBox::StandardButton answer) {
            if (answer != QMessageBox::Ok || !room_.obstacleToClearing().isEmpty())
                return;
            ledger_.clear->setEnabled(false);
            ledger_.size->setText(QStringLiteral("正在清理…"));
            room_.clearLedger();
        });
}

void StoragePage::askToClearLog()
{
    MessageBox::question(
        this,
        BoxText(QStringLiteral("删除以前的运行日志？出过问题还没有查清时，请先保存诊断信息。"))
            .endangering(QMessageBox::Ok, QStringLiteral("删除")),
        QMessageBox::Ok | QMessageBox::Cancel, [this](QMessageBox::StandardButton answer) {
            if (answer == QMessageBox::Ok)
                room_.clearLog();
        });
}
