#include "marks/window/clashquestion.h"

#include "marks/rules/marklines.h"

void askAboutClashes(QWidget *window, const BoxText &notice, const MessageBox::Answered &then)
{
    const QString rename = marks::textOf(marks::Way::Rename);
    const QString leaveOut = QStringLiteral("每组只留第一个");
    const QString explanation =
        QStringLiteral("%1: 每组第一个保持原名，其余的连同同名的原始档和附属文件加上编号后导入。\n"
                       "%2: 其余的不导入。");
    MessageBox::warning(window,
                        notice.answering(QMessageBox::Yes, rename)
                            .answering(QMessageBox::No, leaveOut)
                            .explained(explanation.arg(rename, leaveOut)),
                        QMessageBox::Cancel | QMessageBox::No | QMessageBox::Yes, then);
}
