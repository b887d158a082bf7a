#include "widgets/boxes/confirmdialog.h"

#include "widgets/boxes/messagebox.h"

namespace {

BoxRecord confirmation(const QString &text)
{
    return {BoxRecord::Kind::Confirmation, MessageBox::defaultTitle(), text,
            QMessageBox::Ok | QMessageBox::Cancel};
}

QMessageBox::StandardButton buttonOf(ConfirmDialog::Enter enter)
{
    return enter == ConfirmDialog::Enter::Confirms ? QMessageBox::Ok : QMessageBox::Cancel;
}

} // namespace

ConfirmDialog::ConfirmDialog(QWidget *parent, const QString &text, Enter enter)
    : NoticeDialog(confirmation(text), Qt::PlainText, parent)
{
    setDefaultButton(buttonOf(enter));
}

bool ConfirmDialog::ask(QWidget *parent, const QString &text, Enter enter)
{
    return NoticeDialog::ask(confirmation(text), Qt::PlainText, parent, buttonOf(enter)) ==
           QMessageBox::Ok;
}
