#pragma once

#include "fileimport/rules/importrequests.h"
#include "net/servicecall.h"

#include <QObject>
#include <QString>

/// What a successful registration brings back.
struct RegistrationResult
{
    int images = 0; ///< files just announced
    int rawImages = 0;
    importrequests::BatchReply reply;
};

/// Tells the service what lies in one order's folder: lists the folder on a worker, announces it
/// and reads the answer. Lives on the interface thread; deleting it abandons the attempt.
class OrderRegistration : public QObject
{
    Q_OBJECT

public:
    OrderRegistration(ImportMode mode, ImportOrder order, orderqueries::Identity identity,
                      QObject *parent);

    /// Starts an attempt; again after a failure.
    void start();

    const ImportOrder &order() const { return order_; }
    /// Whether the last attempt has failed and none has started since.
    bool hasFailed() const { return failed_; }

signals:
    void registered(const RegistrationResult &result);
    /// The attempt failed; \a question asks whether to try again. \a certificateError is not empty
    /// when the server was not trusted.
    void failed(const QString &question, const QString &certificateError);

private:
    void fail(const QString &question, const QString &certificateError);
    void announce(const importrequests::FolderContents &contents);
    void onReply(const ServiceReply &reply);

    ImportMode mode_;
    ImportOrder order_;
    orderqueries::Identity identity_;
    RegistrationResult result_;
    LatestCall call_;
    bool failed_ = false;
};

/// What lies in the folders that \a mode announces, below \a importPath (Windows form). \a error is
/// set when a folder cannot be listed: an announcement would then take everything in it for gone.
/// Blocks; for worker threads.
importrequests::FolderContents listImportFolder(ImportMode mode, const QString &importPath,
                                                QString *error);
