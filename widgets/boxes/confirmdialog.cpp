#include "widgets/boxes/confirmdialog.h"

#include "widgets/boxes/messagebox.h"

#include <utility>

void ConfirmDialog::ask(QWidget *parent, const BoxText &text, Enter enter,
                        std::function<void(bool)> then)
{
    BoxQueue::add(parent, {{BoxRecord::Kind::Confirmation, MessageBox::defaultTitle(), text.shown,
                            QMessageBox::Ok | QMessageBox::Cancel},
                           text,
                           enter == Enter::Confirms ? QMessageBox::Ok : QMessageBox::Cancel,
                           [then = std::move(then)](QMessageBox::StandardButton answer) {
                               then(answer == QMessageBox::Ok);
                           }});
}
