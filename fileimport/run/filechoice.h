#pragma once

#include "fileimport/rules/importrecords.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// Files that a user chose for an order, and where they are to go.
struct ChoiceRequest
{
    ImportMode mode = ImportMode::Originals;
    QString importPath; ///< the order's folder, in Windows form
    int orderIndex = 0;
    QStringList paths;         ///< of files, as this machine writes them
    QVector<ImportFile> known; ///< the order's files that the chosen ones join
};

struct ChoiceResult
{
    QVector<ImportFile> files;    ///< the chosen ones that are not known yet
    QVector<QStringList> clashes; ///< sources, known ones too, that share a target; grouped
    QString
        folderError; ///< not empty: the order's folders could not be made, nothing is to be taken
};

/// Makes the order's folders and describes the chosen files. Blocks; for worker threads. A file
/// that cannot be read is described all the same: its copy will tell why.
ChoiceResult prepareChoice(const ChoiceRequest &request);
