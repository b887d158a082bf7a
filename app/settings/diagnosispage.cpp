#include "app/settings/diagnosispage.h"

#include "app/settings/diagnosispreview.h"
#include "widgets/boxes/filedialog.h"
#include "widgets/boxes/folderaction.h"
#include "widgets/boxes/messagebox.h"
#include "widgets/theme/theme.h"

#include <QDir>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QString saveText()
{
    return QStringLiteral("保存诊断信息");
}

} // namespace

DiagnosisPage::DiagnosisPage(const QString &logFolder)
    : SettingsPage(QStringLiteral("诊断"))
    , diagnosis_(logFolder)
    , save_(new QPushButton(saveText()))
{
    addNote(QStringLiteral(
        "出了问题请人帮忙时，把诊断信息交给他：程序和系统的版本、设置、服务是否有应答、最近几次运行的"
        "日志，都是文本文件。客户姓名、电话、密码和令牌已经隐去；保存以前可以逐个查看。程序不会自己发送任何内容。"));
    save_->setObjectName(QStringLiteral("saveDiagnosisButton"));
    save_->setStyleSheet(theme::secondaryButtonStyle());
    rows()->addWidget(save_, 0, Qt::AlignLeft);
    connect(save_, &QPushButton::clicked, this, &DiagnosisPage::begin);
    connect(&diagnosis_, &Diagnosis::collected, this, &DiagnosisPage::preview);
    connect(&diagnosis_, &Diagnosis::saved, this, &DiagnosisPage::tell);
}

void DiagnosisPage::begin()
{
    save_->setEnabled(false);
    save_->setText(QStringLiteral("正在收集…"));
    diagnosis_.collect();
}

void DiagnosisPage::preview(const QVector<DiagnosisFile> &files)
{
    save_->setEnabled(true);
    save_->setText(saveText());
    auto *dialog = new DiagnosisPreview(window(), files);
    connect(dialog, &QDialog::accepted, this, [this, files] {
        const QString folder = FileDialog::existingFolder(
            window(), QStringLiteral("诊断信息保存到"), QStringLiteral("diagnosis"));
        if (!folder.isEmpty())
            diagnosis_.save(files, folder);
    });
    dialog->open();
}

void DiagnosisPage::tell(const QString &folder, const QString &problem)
{
    const QString place = QDir::toNativeSeparators(folder);
    if (problem.isEmpty()) {
        MessageBox::information(window(), BoxText(QStringLiteral("诊断信息已保存到 %1").arg(place))
                                              .withAction(openFolderAction(place)));
        return;
    }
    MessageBox::warning(window(), QStringLiteral("诊断信息没有保存：%1（%2）").arg(problem, place));
}
