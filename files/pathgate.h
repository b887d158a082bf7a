#pragma once

#include <QString>
#include <QStringList>

/// The one gate that every path named by a reply passes before a folder or file is made, written,
/// read, deleted or opened there. Judges the text alone, never the disk; paths in Windows form.
/// Pure functions, for any thread.
namespace pathgate {

enum class Flaw {
    None,
    Empty,
    NotAbsolute, ///< would depend on where the program stands: "photos", "C:photos", "~/photos"
    LeadsUp,     ///< a component ".." in any spelling that a file system takes for it
    Device,      ///< CON, NUL.txt, \\.\COM1, \\?\...
    Illegal,     ///< a control character, or a stream of a file ("D:\a:b")
    Outside,     ///< not below the folder that it is meant for
};

/// What speaks against \a path wherever it is meant for. A folder that the studio configured and
/// that has no flaw is taken as it is, a drive or share root too.
Flaw flawOf(const QString &path);

/// The same for a path that has to lie somewhere below \a folder; Outside when it does not, and
/// when \a folder itself has a flaw.
Flaw flawBelow(const QString &path, const QString &folder);

/// Whether \a path lies below \a folder, both without a flaw: names compared as Windows does,
/// without case and without dots and blanks at their end. No path lies below itself.
bool isBelow(const QString &path, const QString &folder);

/// What \a path names, level by level from its root on; equal for two paths that name one place
/// (compared as isBelow() does). Empty for a path with a flaw.
QStringList levelsOf(const QString &path);

/// Where in the back office a refused path came from.
enum class Setting {
    OrderFolder,  ///< the import path of an order
    PublicFolder, ///< the public import path of a branch
    PhotoPath,    ///< the path recorded for a photo
};

/// A path that was refused, as users are told of it.
struct Refusal
{
    QString order; ///< as the lists name it
    QString path;  ///< as the service gave it
    Flaw flaw = Flaw::None;
    Setting setting = Setting::OrderFolder;

    bool isRefused() const { return flaw != Flaw::None; }
    /// Order, value, what is wrong with it and what to change in the back office.
    QString text() const;
};

/// Judges where \a order is imported: \a importPath where it has one, otherwise \a publicPath,
/// below which its folder is composed. That both are empty is no flaw here; nothing is imported
/// then.
Refusal refusalOfImport(const QString &order, const QString &importPath, const QString &publicPath);

/// "不是完整的路径"; empty for None.
QString reasonOf(Flaw flaw);

} // namespace pathgate
