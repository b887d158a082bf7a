#pragma once

#include "fileimport/rules/importrecords.h"
#include "fileimport/run/filechoice.h"
#include "files/chosenfiles.h"
#include "marks/run/filelook.h"
#include "tasks/latest.h"
#include "widgets/boxes/confirmdialog.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVector>

#include <functional>

class ImportOrderTableModel;
class LoadingOverlay;
class QWidget;

/// Choosing files for an order: asks what has to be asked, makes the order's folders, and puts the
/// files into the model. The file dialog replaces what was chosen before, a drop adds to it. While
/// files are being looked at an overlay covers the window; the user can cancel there. Rows are
/// positions in the model.
class OrderFileChooser : public QObject
{
    Q_OBJECT

public:
    /// Boxes and the overlay belong to \a window, which owns the chooser and the model. \a
    /// mayChange tells whether an order may get other files at the moment, and the user why not.
    OrderFileChooser(QWidget *window, ImportOrderTableModel *orders,
                     std::function<bool(int row)> mayChange);

    void setMode(ImportMode mode) { mode_ = mode; }
    /// By the file dialog.
    void choose(int row);
    /// Files and folders dropped on the order.
    void take(int row, const QStringList &paths);
    void clear(int row) { setFiles(row, {}); }
    /// Of each order (by identity) the files with these sources are not wanted any more.
    void leaveOut(const QHash<OrderIdentity, QSet<QString>> &sources);
    /// Of each order the files with these sources, and those that belong to them, get names that
    /// are free.
    void rename(const QHash<OrderIdentity, QSet<QString>> &sources);
    /// Abandons what is being looked at.
    void cancel();
    /// Whether files are being looked at.
    bool isBusy() const;

signals:
    /// The order's files are others now, perhaps none.
    void filesChanged(int row);

private:
    struct Choice
    {
        OrderIdentity orderId;
        QStringList paths;        ///< of files
        bool adds = false;        ///< to what the order has
        bool namesAgreed = false; ///< that the customer did not choose
    };

    bool mayChoose(int row);
    /// Row of the choice's order; -1 when it is not listed any more, or may not be changed.
    int rowOf(const Choice &choice) const;
    void onExpanded(const OrderIdentity &orderId, const chosenfiles::DropContents &contents);
    void takeExpanded(const OrderIdentity &orderId, const chosenfiles::DropContents &contents);
    void askAboutSharedFolder(const Choice &choice);
    void askAboutReplacing(const Choice &choice);
    void prepare(const Choice &choice);
    void onPrepared(const Choice &choice, const QVector<ImportFile> &known,
                    const ChoiceResult &result);
    void askAboutClashes(const Choice &choice, const QVector<ImportFile> &known,
                         const ChoiceResult &result);
    void addRenamed(const Choice &choice, const QVector<ImportFile> &known,
                    const ChoiceResult &result);
    void applyNames(const QVector<marks::RenameRequest> &requests, const marks::NewNames &found);
    void judgeNames(const Choice &choice, const QVector<ImportFile> &known,
                    const QVector<ImportFile> &all);
    void add(Choice choice, const QVector<ImportFile> &known, const QVector<ImportFile> &all);
    void setFiles(int row, const QVector<ImportFile> &files);
    void ask(const BoxText &text, ConfirmDialog::Enter enter,
             const std::function<void()> &onYes) const;

    QWidget *window_;
    ImportOrderTableModel *orders_;
    std::function<bool(int row)> mayChange_;
    LoadingOverlay *overlay_;
    ImportMode mode_ = ImportMode::Originals;
    Latest look_; ///< at the files of a choice
};
