#pragma once

#include "marks/rules/filemark.h"

namespace marks {

/// Whether the own time of a raw file or a video tells when it was taken, where the camera's data
/// does not.
enum class FileTime { Counts, IsNone };

/// The files chosen for one order, and what they are compared with.
struct Choice
{
    OrderIdentity order;
    QString orderNumber;       ///< as users know it
    QVector<ChosenFile> files; ///< source and target; sizes and times are looked up
    QStringList folders;       ///< in which their targets lie, in Windows form
    QString shotDate;          ///< of the order, as the service writes it
    QString fileWord;          ///< how the files are called, such as 照片
    FileTime fileTime = FileTime::Counts;

    friend bool operator==(const Choice &one, const Choice &other);
};

} // namespace marks
