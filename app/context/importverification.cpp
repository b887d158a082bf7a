#include "app/context/importverification.h"

#include "app/context/choices.h"
#include "app/context/installation.h"

#include <QString>

#include <atomic>

namespace importverification {

namespace {

QString key()
{
    return QStringLiteral("import/verify");
}

QString bySize()
{
    return QStringLiteral("size");
}

std::atomic<bool> &chosen()
{
    static std::atomic<bool> readsBack{choices::rememberedOnMachine(key()) != bySize()};
    return readsBack;
}

} // namespace

bool readsBack()
{
    const Installation &installation = Installation::current();
    return installation.decidesImports ? installation.readsImportsBack : chosen().load();
}

bool isDecidedByInstallation()
{
    return Installation::current().decidesImports;
}

void setReadsBack(bool readsBack)
{
    if (isDecidedByInstallation() || chosen().exchange(readsBack) == readsBack)
        return;
    choices::rememberOnMachine(key(), readsBack ? QStringLiteral("read-back") : bySize());
}

} // namespace importverification
