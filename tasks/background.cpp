#include "tasks/background.h"

QThreadPool *diskPool()
{
    static QThreadPool pool;
    static const bool prepared = [] {
        constexpr int hangsAtOnce = 8;
        pool.setObjectName(QStringLiteral("disk"));
        pool.setMaxThreadCount(hangsAtOnce);
        return true;
    }();
    Q_UNUSED(prepared)
    return &pool;
}
