#include "fileimport/run/orderregistration.h"

#include "fileimport/rules/importrules.h"
#include "files/paths.h"
#include "net/orderfiles.h"
#include "platform/pathform.h"
#include "tasks/background.h"

#include <QDir>

namespace {

QVector<importrequests::AnnouncedFile> announcedFiles(const QString &importPath,
                                                      const QString &subFolder, QString *error)
{
    const QDir folder(platform::toLocalPath(joinWirePath(importPath, subFolder)));
    if (!folder.exists() || !folder.isReadable()) {
        *error = folder.path();
        return {};
    }
    QVector<importrequests::AnnouncedFile> entries;
    const QFileInfoList files =
        folder.entryInfoList(orderfiles::announcedPatterns(subFolder), QDir::Files, QDir::Unsorted);
    entries.reserve(files.size());
    for (const QFileInfo &file : files)
        entries.append({file.fileName(), file.size()});
    return entries;
}

} // namespace

importrequests::FolderContents listImportFolder(ImportMode mode, const QString &importPath,
                                                QString *error)
{
    const QStringList folders = importrules::subFolders(mode);
    importrequests::FolderContents contents;
    contents.images = announcedFiles(importPath, folders.first(), error);
    if (folders.size() > 1)
        contents.rawImages = announcedFiles(importPath, folders.at(1), error);
    return contents;
}

OrderRegistration::OrderRegistration(ImportMode mode, ImportOrder order,
                                     orderqueries::Identity identity, QObject *parent)
    : QObject(parent)
    , mode_(mode)
    , order_(std::move(order))
    , identity_(std::move(identity))
    , call_(this)
{
}

void OrderRegistration::start()
{
    failed_ = false;
    struct Listing
    {
        importrequests::FolderContents contents;
        QString error;
    };
    onDisk(
        this, order_.importPath,
        [mode = mode_, path = order_.importPath] {
            Listing listing;
            listing.contents = listImportFolder(mode, path, &listing.error);
            return listing;
        },
        [this](const Listing &listing) {
            if (listing.error.isEmpty())
                announce(listing.contents);
            else
                fail(QStringLiteral("导片目录无法访问: %1\n是否重新提交? 如果取消，会停止导入。")
                         .arg(listing.error),
                     QString());
        });
}

void OrderRegistration::fail(const QString &question, const QString &certificateError)
{
    failed_ = true;
    emit failed(question, certificateError);
}

void OrderRegistration::announce(const importrequests::FolderContents &contents)
{
    result_.images = contents.images.size();
    result_.rawImages = contents.rawImages.size();
    call_.start(importrequests::batchAction,
                importrequests::batchBody(mode_, order_, contents, identity_),
                [this](const ServiceReply &reply) { onReply(reply); });
}

void OrderRegistration::onReply(const ServiceReply &reply)
{
    if (reply.isSuccess()) {
        result_.reply = importrequests::readBatchReply(reply.object);
        emit registered(result_);
        return;
    }
    const bool untrusted = reply.outcome == ServiceReply::Outcome::CertificateRefused;
    fail(importrequests::resubmitQuestion(reply), untrusted ? reply.message : QString());
}
