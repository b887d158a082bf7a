#include "batchdelete/run/filescanthread.h"

#include <QDebug>
#include <QEventLoopLocker>
#include <QThread>
#include <QTimer>

#include <memory>

namespace {

constexpr int closingMs = 5000;

} // namespace

FileScanThread::FileScanThread(QObject *parent)
    : QObject(parent)
    , thread_(new QThread)
    , worker_(new FileScanWorker)
    , overdue_(new QTimer(thread_))
{
    overdue_->setSingleShot(true);
    connect(overdue_, &QTimer::timeout, thread_,
            [] { qWarning() << "FileScanThread: 线程关闭超时，但不强制终止"; });
    qRegisterMetaType<FileScanResult>();
    thread_->setObjectName(QStringLiteral("FileScanThread"));
    worker_->moveToThread(thread_);
    connect(thread_, &QThread::finished, worker_, &QObject::deleteLater);
    connect(this, &FileScanThread::scanRequested, worker_, &FileScanWorker::scan);
    connect(worker_, &FileScanWorker::progress, this, &FileScanThread::progress);
    // Whoever listens gets a result of this thread's own.
    connect(worker_, &FileScanWorker::finished, this,
            [this](const FileScanResult &result) { emit finished(FileScanResult(result)); });
    thread_->start();
}

FileScanThread::~FileScanThread()
{
    worker_->cancel();
    worker_->disconnect(this);
    overdue_->start(closingMs);
    const auto processWaits = std::make_shared<QEventLoopLocker>();
    connect(thread_, &QThread::finished, thread_,
            [thread = thread_, processWaits] { thread->deleteLater(); });
    thread_->quit();
}

void FileScanThread::scan(const QString &path)
{
    worker_->prepare();
    emit scanRequested(path, {});
}
