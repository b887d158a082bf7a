#include "runreport/closingquestion.h"

#include <QMessageBox>

BoxText closingQuestion(const QString &question, bool stopsImport)
{
    const BoxText text(question);
    return stopsImport ? text.answering(QMessageBox::Ok, QStringLiteral("停止并关闭"))
                             .answering(QMessageBox::Cancel, QStringLiteral("继续导入"))
                       : text;
}
