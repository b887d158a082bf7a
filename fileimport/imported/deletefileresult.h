#pragma once

#include "thumbnails/photoentry.h"

#include <QMetaType>
#include <QString>

/// How the removal of one entry from disk ended.
struct DeleteFileResult
{
    bool success = false; ///< the entry's main file is gone; variants may have failed
    QString message;      ///< for the user, line by line; empty when nothing failed
    PhotoEntry photo;
    bool isGone = false; ///< nobody will find the main file on disk any more
};
Q_DECLARE_METATYPE(DeleteFileResult)
