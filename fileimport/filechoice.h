#pragma once

#include "fileimport/importrecords.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// Files that a user chose or dropped for an order, and where they are to go.
struct ChoiceRequest
{
    ImportMode mode = ImportMode::Originals;
    QString importPath; ///< the order's folder, in Windows form
    int orderIndex = 0;
    QStringList paths; ///< files, and for drops folders too, as this machine writes them
    bool dropped =
        false; ///< take only what the dialog's first filter shows; read folders recursively
};

struct ChoiceResult
{
    QVector<ImportFile> files;
    QVector<QStringList> clashes; ///< sources that would land on one target, grouped
    int ignored = 0;              ///< dropped files that the filter leaves out
    QString
        folderError; ///< not empty: the order's folders could not be made, nothing is to be taken
};

/// Makes the order's folders and describes the chosen files. Blocks; for worker threads. A file
/// that cannot be read is described all the same: its copy will tell why.
ChoiceResult prepareChoice(const ChoiceRequest &request);
