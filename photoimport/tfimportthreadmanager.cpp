#include "photoimport/tfimportthreadmanager.h"
tfimportthreadmanager::tfimportthreadmanager(QObject *parent) : QObject(parent)
{
}
tfimportthreadmanager::tfimportthreadmanager(const PhotoOperations &operations, QObject *parent)
    : QObject(parent), operations_(operations)
{
}
tfimportthreadmanager::~tfimportthreadmanager() = default;
void tfimportthreadmanager::setMaxWorkers(int)
{
}
bool tfimportthreadmanager::isQueuedOrActive(const QString &) const
{
    return false;
}
bool tfimportthreadmanager::hasLiveWorkers() const
{
    return false;
}
void tfimportthreadmanager::startImportOrder(const OrderInfo &)
{
}
void tfimportthreadmanager::startImportAllOrders(const QList<OrderInfo> &)
{
}
void tfimportthreadmanager::stopAllImport()
{
}
void tfimportthreadmanager::pauseAllImport()
{
}
void tfimportthreadmanager::resumeAllImport()
{
}
void tfimportthreadmanager::assignNextTask()
{
}
void tfimportthreadmanager::onPhotoImported(int, const QString &, int, bool, const QString &)
{
}
void tfimportthreadmanager::onWorkerFinished(int)
{
}
void tfimportthreadmanager::checkTaskCompletion()
{
}
