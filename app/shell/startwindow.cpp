#include "app/shell/startwindow.h"

#include "app/account/loginnew.h"
#include "app/account/loginreply.h"
#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "app/context/logging.h"
#include "app/shell/choosetools.h"
#include "app/shell/ledgernotices.h"
#include "distribution/window/fjhome.h"

#include <QCoreApplication>

namespace {

void openLogin(QObject *context)
{
    auto *login = new LoginNew;
    login->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(login, &LoginNew::loggedIn, context, [](const QJsonObject &reply) {
        auto *launcher = new ChooseTools;
        launcher->setAttribute(Qt::WA_DeleteOnClose);
        launcher->setLoginReply(reply);
        launcher->show();
        tellLedgerNotices(launcher);
    });
    login->show();
}

void openDistribution()
{
    auto *window = new FJHome;
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setCard(QStringLiteral("设计分件"));
    window->showMaximized();
}

/// What a process that serves one tool starts with.
void takeSavedAccount()
{
    const QString address = urlHostIn(QCoreApplication::arguments());
    if (!address.isNull())
        AccountContext::baseUrl = address;
    enterSavedAccount(LoginReply::readSaved(K::instance()->loadLoginData()));
}

} // namespace

QString urlHostIn(const QStringList &arguments)
{
    QString address;
    for (int i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments.at(i) == QLatin1String("--url-host"))
            address = arguments.at(i + 1);
    }
    return address;
}

void K::openStartWindow(int mode)
{
    switch (StartMode(mode)) {
    case StartMode::Login:
        openLogin(this);
        return;
    case StartMode::Distribution:
        takeSavedAccount();
        openDistribution();
        return;
    }
    takeSavedAccount();
    qCWarning(lcTessavo) << "no window for start mode" << mode;
}
