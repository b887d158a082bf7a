// The files that the program reads at its start: the first byte says which the others are.
#include "app/account/credentials.h"
#include "app/account/loginreply.h"
#include "app/context/accountcontext.h"
#include "app/context/installation.h"
#include "app/context/k.h"
#include "fuzz/harness.h"
#include "orderbrowser/rules/orderviews.h"

#include <QUrl>

using fuzzing::require;

namespace {

void readCredentials(const QByteArray &content)
{
    const CredentialsFile file(fuzzing::scratchFolder());
    fuzzing::scratchFile(QStringLiteral("login_config.txt"), content);
    const Credentials read = file.read();
    require(read.remembered || read.password.isEmpty(), "nobody remembers what was not asked for");
    require(file.write(read), "what was read can be written");
    const Credentials once = file.read();
    require(once.password == read.password, "a password is kept whole", read.password);
    require(file.write(once), "what was read can be written");
    const Credentials twice = file.read();
    require(twice.account == once.account && twice.password == once.password &&
                twice.remembered == once.remembered,
            "what is remembered stays", once.account);
}

void readLoginData(const QByteArray &content)
{
    fuzzing::scratchFile(QStringLiteral("loginData"), content);
    AccountContext::dataFolder = fuzzing::scratchFolder() + QLatin1Char('/');
    const QJsonObject read = K::instance()->loadLoginData();
    LoginReply::readSaved(read);
    K::instance()->saveLoginData(read);
    require(K::instance()->loadLoginData() == read, "login data are read as they were written");
}

void readInstallation(const QByteArray &content)
{
    const QString file = fuzzing::scratchFile(QStringLiteral("tessavo-tools.ini"), content);
    const Installation read = Installation::read(file);
    const QUrl url(read.serviceUrl);
    require(read.serviceUrl.isEmpty() || (url.isValid() && !url.host().isEmpty()),
            "a service has a host", read.serviceUrl);
    require(!read.serviceUrl.endsWith(QLatin1Char('/')), "no slash ends it", read.serviceUrl);
}

void readViews(const QByteArray &content)
{
    QString problem;
    const auto views = OrderViews::fromJson(content, &problem);
    require(views || !problem.isEmpty(), "what cannot be read has a reason");
    if (!views)
        return;
    require(!views->all().isEmpty(), "there is always a view");
    views->current();
    const auto again = OrderViews::fromJson(views->toJson(), &problem);
    require(again && again->toJson() == views->toJson(), "views are read as they are written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const QByteArray content = fuzzing::bytesOf(data + 1, size - 1);
    switch (data[0]) {
    case 'c':
        readCredentials(content);
        break;
    case 'l':
        readLoginData(content);
        break;
    case 'i':
        readInstallation(content);
        break;
    case 'v':
        readViews(content);
        break;
    default:
        return -1; // not worth keeping
    }
    return 0;
}
