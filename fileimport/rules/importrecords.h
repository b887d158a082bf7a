#pragma once

#include "net/orderqueries.h"

#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QVector>

/// What the import window imports.
enum class ImportMode {
    Originals = 0, ///< photos and raw files
    Retouched = 1,
};

/// One file chosen for an order. Travels by value between the window and the copy tasks.
struct ImportFile
{
    enum State : qint32 { Waiting = 0, Imported = 1, Failed = 2 };

    QString sourcePath;   ///< absolute path of the chosen file, as this machine writes it
    QString baseName;     ///< complete base name
    QString suffix;       ///< without the point
    QString targetFolder; ///< sub-folder of the order's import path, in Windows form
    qint32 state = Waiting;
    QString message;       ///< result text of the last copy
    qint32 orderIndex = 0; ///< the order's position in the window's list
    qint32 fileIndex = 0;  ///< the file's position in the order's list
    qint64 size = 0;       ///< bytes, when chosen

    /// The name shown and looked up: base name, a point, suffix.
    QString fileName() const;
    /// The name the file gets in the target folder: fileName(), made harmless.
    QString targetName() const;
};
Q_DECLARE_METATYPE(ImportFile)

/// How far an order's chosen files are, as its row shows it.
enum class PhotoState {
    NotChosen,
    Chosen, ///< some wait to be imported
    Importing,
    Done,
    Failed, ///< some failed, or the service was not told
};

/// One order of the import window: what the service says of it, and what was chosen for it here.
struct ImportOrder : orderqueries::OrderInfo
{
    QString comboName;
    QString sampleDate;
    QString orderPrice;
    QString role1Name;         ///< photographer, as the table shows it
    QString role2Name;         ///< make-up artist
    int numberYuanshidang = 0; ///< imported raw files
    int numberYuanpian = 0;    ///< imported originals
    int numberJingxiu = 0;     ///< imported retouched photos
    QString openypml;
    QString delyp;
    QStringList selectedNames; ///< photo names the customer chose

    int rowIndex = 0; ///< position in the window's list
    QString importPublicPath;
    QString importPath; ///< the order's folder, in Windows form; empty until it is known
    QVector<ImportFile> files;
    bool importing = false;    ///< some of the files are being copied
    bool everChosen = false;   ///< whether "chosen this time" has a number to show
    bool unregistered = false; ///< copied, but the service was not told

    int countOf(ImportFile::State state) const;
    bool hasUnfinishedFile() const; ///< any file that is not imported
    PhotoState photoState() const;
    /// Position of the file that was chosen at \a sourcePath and has failed; -1 without one.
    int failedFile(const QString &sourcePath) const;
    /// Writes a copy's result into the file at the same position. False, and nothing changes, when
    /// another file stands there.
    bool applyResult(const ImportFile &file);
    /// The number users know the order by, with its service: "0012-1".
    QString displayNumber() const;
    /// displayNumber() and the customers' names.
    QString displayName() const;
};
Q_DECLARE_METATYPE(ImportOrder)

/// Text and colour (QRgb) of an order's "photo state" cell; both are read off its files.
QString photoStateText(const ImportOrder &order);
unsigned int photoStateColour(PhotoState state);
