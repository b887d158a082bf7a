#pragma once

#include "photoimport/rules/photoimportrecords.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// What the photo import decides about jobs, names and folders. Pure functions, except those that
/// say that they touch the disk.
namespace photorules {

/// Reads AccountContext::photoMode.
PhotoMode photoModeOf(int number);

// Kinds of jobs.
inline const QString originalKind = QStringLiteral("all");
inline const QString smallKind = QStringLiteral("90");
inline const QString middleKind = QStringLiteral("190");
inline const QString bigKind = QStringLiteral("1920");
inline const QString trialVideoKind = QStringLiteral("试拍视频");
inline const QString retouchedVideoKind = QStringLiteral("精修视频");

/// The kind of job (PhotoInfo::kind) that brings the source file itself.
QString mainKind(PhotoMode photoMode);

/// The jobs for the chosen \a sources (absolute paths), source by source: in photo mode the
/// original and its size variants, otherwise one video copy each.
QVector<PhotoInfo> jobsFor(const OrderInfo &order, const QStringList &sources, PhotoMode photoMode);

/// The text of a size variant that could not be made, of one size or several.
QString compressionFailure(const QString &targetSizes);

/// As the tool's card is called.
QString toolName();

/// The folder of \a order, in Windows form: the one it has, otherwise composed from its values.
QString importFolderOf(const OrderInfo &order);

/// Where the result of a job goes, in Windows form. Never outside of the order's folder.
QString targetFolderOf(const QString &importFolder, const QString &kind);
QString outputPathOf(const QString &importFolder, const PhotoInfo &photo);

/// The folders of an order with these jobs, in Windows form, in the order in which they are made.
QStringList foldersOf(const QString &importFolder, const QVector<PhotoInfo> &photos);

/// Makes what is missing of \a folders (Windows form) and clears what a killed process left in
/// them. What cannot be made shows in the jobs that want it. Blocks; for worker threads.
void prepareFolders(const QStringList &folders);

/// Why an import cannot start; no error means that it can.
struct PathProblem
{
    QString error;
    QString path;
    bool isProblem() const { return !error.isEmpty(); }
};

/// Passes the import folders of all \a orders through the gate for paths, and looks whether they
/// can be reached or made. Blocks; for worker threads.
PathProblem validatePaths(const QList<OrderInfo> &orders);

} // namespace photorules
