#include "photoimport/imported/tfdellocalphotoimg.h"

#include "files/pathgate.h"
#include "platform/fileaccess.h"
#include "platform/pathform.h"

#include <QFile>
#include <QFileInfo>

namespace {

QString inWindowsForm(QString path)
{
    return path.replace(QLatin1Char('/'), QLatin1Char('\\'));
}

/// A share that went away shows no file either.
bool isGone(const QString &path, const QString &orderFolder)
{
    const QFileInfo file(path);
    return !file.exists() && !file.isSymLink() &&
           QFileInfo(platform::toLocalPath(orderFolder)).isDir();
}

} // namespace

QStringList tfvariants::pathsOf(const QString &original, const QString &orderFolder)
{
    QString folder = inWindowsForm(orderFolder);
    while (folder.endsWith(QLatin1Char('\\')))
        folder.chop(1);
    const QString photo = inWindowsForm(original);
    if (!photo.startsWith(folder + QLatin1Char('\\')) || !pathgate::isBelow(photo, orderFolder))
        return {};
    const QString inOrder = photo.mid(folder.size());
    // Each is made from the one before, on purpose; the folders above the order's may be
    // called "all" or "90" too and stay what they are.
    const auto inFolder = [](QString place, const char *from, const char *to) {
        return place.replace(QLatin1String(from), QLatin1String(to));
    };
    const QString small = inFolder(inOrder, "\\all\\", "\\90\\");
    const QString middle = inFolder(small, "\\90\\", "\\190\\");
    const QString big = inFolder(middle, "\\190\\", "\\1920\\");
    return {folder + small, folder + middle, folder + big};
}

TFDelLocalPhotoImg::~TFDelLocalPhotoImg()
{
    wait();
}

void TFDelLocalPhotoImg::setDelPhotos(const QStringList &paths, const QString &orderFolder)
{
    paths_.clear();
    orderFolder_ = orderFolder;
    for (const QString &path : paths) {
        const QStringList variants = tfvariants::pathsOf(path, orderFolder);
        if (!variants.isEmpty())
            paths_ += QStringList{inWindowsForm(path)} + variants;
    }
}

void TFDelLocalPhotoImg::run()
{
    while (!paths_.isEmpty()) {
        const QString path = platform::toLocalPath(paths_.first());
        if (platform::mayBeRemoved(path))
            QFile::remove(path);
        const QString wirePath = paths_.takeFirst();
        if (isGone(path, orderFolder_))
            emit gone(wirePath);
    }
}
