#pragma once

#include "fileimport/filechoice.h"
#include "fileimport/importrecords.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class ImportOrderTableModel;
class LoadingOverlay;
class QWidget;

/// Choosing files for an order: asks what has to be asked, makes the order's folders, and puts the
/// files into the model. While files are being looked at an overlay covers the window; the user can
/// cancel there. Rows are positions in the model.
class OrderFileChooser : public QObject
{
    Q_OBJECT

public:
    /// Boxes and the overlay belong to \a window, which owns the chooser and the model.
    OrderFileChooser(QWidget *window, ImportOrderTableModel *orders);

    void setMode(ImportMode mode) { mode_ = mode; }
    /// By the file dialog.
    void choose(int row);
    /// Files and folders dropped on the order.
    void take(int row, const QStringList &paths);
    void clear(int row) { setFiles(row, {}); }
    /// Abandons what is being looked at.
    void cancel();
    /// Whether files are being looked at.
    bool isBusy() const;

signals:
    /// The order's files are others now, perhaps none.
    void filesChanged(int row);

private:
    bool mayChoose(int row);
    void prepare(int row, const QStringList &paths, bool dropped);
    bool agreesToSharedFolder(int row);
    void onPrepared(const QString &orderId, const ChoiceResult &result);
    void setFiles(int row, const QVector<ImportFile> &files);

    QWidget *window_;
    ImportOrderTableModel *orders_;
    LoadingOverlay *overlay_;
    ImportMode mode_ = ImportMode::Originals;
    int choice_ = 0; ///< number of the choice being prepared; a cancelled one is no longer it
};
