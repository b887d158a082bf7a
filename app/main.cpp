#include "app/context/installation.h"
#include "app/context/k.h"
#include "app/diagnosis/logring.h"
#include "app/shell/startwindow.h"
#include "ledger/ledger.h"
#include "platform/power.h"
#include "tasks/background.h"
#include "widgets/inputs/editmenus.h"
#include "widgets/theme/theme.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char *argv[])
{
    // No organisation: the settings folder is to be named after the program alone.
    QCoreApplication::setApplicationName(QStringLiteral("tessavo_tools"));
    QApplication application(argc, argv);
    LogRing log(LogRing::standardFolder());
    log.install();
    platform::keepAwake();
    QObject::connect(&application, &QGuiApplication::lastWindowClosed, &application,
                     [] { platform::allowSleep(); });
    K::instance()->initApplication(&application);
    theme::applyApplicationFont();
    new EditMenus(&application);
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/base/image/base/window.png")));
    const bool keepsLedger = Installation::current().keepsLedger;
    Ledger ledger(keepsLedger ? Ledger::standardFolder() : QString());
    ledger.makeCurrent();
    K::instance()->openStartWindow(int(StartMode::Login));
    const int exitCode = QApplication::exec();
    // A look at a dead share may still hang, and must not come back to a program half taken down.
    diskPool().waitForDone();
    processorPool().waitForDone();
    return exitCode;
}
