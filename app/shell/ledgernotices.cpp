#include "app/shell/ledgernotices.h"

#include "ledger/ledger.h"
#include "widgets/boxes/toast.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>

namespace {

/// Longer than most: it is said once, and says more.
constexpr int noticeMs = 8000;

void tell(QWidget *launcher)
{
    QWidget *active = QApplication::activeWindow();
    QWidget *window = active ? active : launcher;
    if (!window)
        return;
    const QStringList notices = Ledger::current().takeNotices();
    if (!notices.isEmpty())
        Toast::show(window, notices.join(QStringLiteral("；")), noticeMs);
}

} // namespace

void tellLedgerNotices(QWidget *launcher)
{
    QObject::connect(&Ledger::current(), &Ledger::noticed, qApp,
                     [launcher = QPointer<QWidget>(launcher)] { tell(launcher); });
    tell(launcher);
}
