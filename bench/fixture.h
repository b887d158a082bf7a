#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <stdexcept>

/// What both drivers work on and in. Functions that cannot do what they say throw a Failure.
namespace bench {

/// The bench itself went wrong, so that its figures would mean nothing. Thrown so that the folders
/// of gigabytes go on the way out; never out of a slot.
class Failure : public std::runtime_error
{
public:
    explicit Failure(const QString &message) : std::runtime_error(message.toStdString()) {}
};

/// Runs \a bench beside the demo service, in a folder of its own below \a parent, which is removed
/// at the end. Returns the exit code of the program.
int runIn(const QString &parent, const std::function<void(const QString &folder)> &bench);

/// \a count files of \a bytes random bytes each; those that any disk would store smaller than they
/// are measure nothing.
void makePhotos(const QString &folder, int count, int bytes);
/// Their paths, in order.
QStringList photoPaths(const QString &folder, int count);

/// \a count small pictures, IMG_0.jpg and so on, in a new folder; their paths.
QStringList makePictures(const QString &folder, int count);

/// The context of the program as after a login into the demo service's first branch.
void logIn();

/// Resident memory of this program.
double residentMb();

/// Copies by four plain copying processes and waits until all is on the disk.
void copyPlainly(const QStringList &sources, const QString &target);

/// Four plain processes read every file in \a folder past the system's memory.
void readDirectly(const QString &folder);

/// Reads every file below \a folder, so that it lies in memory, and syncs its disk.
void warm(const QString &folder);

/// Waits until everything written to the disk that holds \a folder is on it.
void syncDisk(const QString &folder);

} // namespace bench
