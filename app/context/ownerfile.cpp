#include "app/context/ownerfile.h"

#include "app/context/logging.h"
#include "platform/ownfile.h"

#include <QDebug>
#include <QSet>

void keepToOwner(const QString &path)
{
    static QSet<QString> told;
    if (platform::closeToOthers(path) || told.contains(path))
        return;
    told.insert(path);
    qCWarning(lcTessavo) << "others can read" << path;
}
