#include "photoimport/tfdellocalphotoimg.h"

#include "platform/fileaccess.h"
#include "platform/pathform.h"

#include <QFile>

TFDelLocalPhotoImg::~TFDelLocalPhotoImg()
{
    wait();
}

void TFDelLocalPhotoImg::setDelPhotos(const QStringList &paths)
{
    paths_.clear();
    for (QString original : paths) {
        original.replace(QLatin1Char('/'), QLatin1Char('\\'));
        // Each is made from the one before, on purpose.
        const auto inFolder = [](QString path, const char *from, const char *to) {
            return path.replace(QLatin1String(from), QLatin1String(to));
        };
        const QString small = inFolder(original, "\\all\\", "\\90\\");
        const QString middle = inFolder(small, "\\90\\", "\\190\\");
        const QString big = inFolder(middle, "\\190\\", "\\1920\\");
        paths_ << original << small << middle << big;
    }
}

void TFDelLocalPhotoImg::run()
{
    while (!paths_.isEmpty()) {
        const QString path = platform::toLocalPath(paths_.first());
        if (platform::mayBeRemoved(path))
            QFile::remove(path);
        paths_.removeFirst();
    }
}
