#pragma once

#include "marks/run/filelook.h"
#include "photoimport/orders/sourcefile.h"
#include "tasks/latest.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

class LoadingOverlay;
class QWidget;
class tforderlistmodel;

/// Adds photos or videos to an order: from the file dialog, a folder, or what was dropped. While
/// the files are being looked at the window's overlay says so. Rows are positions in the model.
class tffilechooser : public QObject
{
    Q_OBJECT

public:
    /// Boxes belong to \a window, which owns the chooser, the model and the overlay. \a mayChange
    /// tells whether an order may get files at the moment, and the user why not.
    tffilechooser(QWidget *window, tforderlistmodel *orders, LoadingOverlay *overlay,
                  std::function<bool(int row)> mayChange);

    void addFiles(int row);
    void addFolder(int row);
    /// \a expand: folders stand for the files below them.
    void take(int row, const QStringList &paths, bool expand);
    /// Of each order (by identity) the files with these sources are not wanted any more.
    void leaveOut(const QHash<OrderIdentity, QSet<QString>> &sources);
    /// Of each order the files with these sources, and those that belong to them, get names that
    /// are free.
    void rename(const QHash<OrderIdentity, QSet<QString>> &sources);
    /// Abandons what is being looked at.
    void cancel();

signals:
    /// The order's files are others now.
    void filesChanged(const OrderIdentity &orderId);

private:
    /// What to do about folders that cannot be read.
    enum class Unreadable { Ask, Accepted };

    void describe(const OrderIdentity &orderId, const FileChoice &choice, Unreadable unreadable);
    void add(const OrderIdentity &orderId, const FileChoice &choice,
             const FileChoiceResult &result);
    void askAboutClashes(const OrderIdentity &orderId, const FileChoice &choice,
                         const FileChoiceResult &result);
    void addRenamed(const OrderIdentity &orderId, const FileChoice &choice,
                    const FileChoiceResult &result);
    void findNames(const QVector<marks::RenameRequest> &requests,
                   std::function<void(const marks::NewNames &)> then);
    void setFiles(int row, const QVector<SourceFile> &files);

    QWidget *window_;
    tforderlistmodel *orders_;
    LoadingOverlay *overlay_;
    std::function<bool(int row)> mayChange_;
    Latest choice_; ///< that is being described
};
