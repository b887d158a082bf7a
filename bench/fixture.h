#pragma once

#include <QString>
#include <QStringList>

#include <memory>

class QTemporaryDir;

/// What both drivers work on and in. Functions that fail end the program with a message.
namespace bench {

/// Ends the program unless it runs beside the demo service.
void needDemoService();

/// A folder of its own below \a parent, which is made if missing; removed with everything in it.
std::unique_ptr<QTemporaryDir> makeFolder(const QString &parent);

/// \a count files of \a bytes random bytes each; those that any disk would store smaller than they
/// are measure nothing.
void makePhotos(const QString &folder, int count, int bytes);
/// Their paths, in order.
QStringList photoPaths(const QString &folder, int count);

/// From here on the program's debug lines are written to \a file, line by line, as a user's are to
/// the console: they are part of what is measured, but nobody wants to read them here.
void logTo(const QString &file);

/// Waits until everything written to the disk that holds \a folder is on it.
void syncDisk(const QString &folder);

} // namespace bench
