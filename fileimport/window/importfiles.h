#pragma once

#include "fileimport/rules/importrecords.h"
#include "fileimport/run/importrun.h"
#include "fileimport/window/importfiletablemodel.h"
#include "fileimport/window/importordertablemodel.h"
#include "files/sharedfolderopener.h"
#include "net/branchsession.h"
#include "runreport/runfailure.h"
#include "widgets/orders/orderdestination.h"
#include "widgets/windows/framelesswindow.h"

#include <QElapsedTimer>
#include <QList>
#include <QTimer>

#include <memory>

class FileHalf;
class ImportFilePanel;
class ImportMarks;
class ImportOrderPanel;
class ImportRestorer;
class OrderFileChooser;
class OrderFinder;
class OriginalView;
class ReportLine;
class SharedWidth;

/// The tool window behind the cards for importing originals (mode 0) and retouched photos (mode 1):
/// search orders, choose files for them, copy the files into the orders' folders and register them
/// with the service. What it decides lives in importrules, importrequests and ImportRun.
class ImportFiles : public FramelessWindow, public OrderDestination
{
    Q_OBJECT

public:
    explicit ImportFiles(QWidget *parent = nullptr);
    ~ImportFiles() override;

    /// 0 originals, 1 retouched photos; before the window is shown.
    void setMode(int mode);
    void goTo(const OrderPlace &place) override;

signals:
    void orderSelectionChanged(const ImportOrder &order);
    void startImportFiles(const ImportOrder &order);
    void startImportAllFiles(const QList<ImportOrder> &orders);
    /// The user wants to know whether a card may be formatted.
    void cardCheckRequested();
    /// The user wants to know whether an order is whole.
    void orderCheckRequested(const OrderToCheck &order);

public slots:
    void reqShopInfo();
    void reqOrderList();
    void onSearchClick();
    void onBranchSelectionChanged(int index);
    void onSearchTypeChanged(int type);
    void onOrderTableSelectionChanged();
    // Rows are positions in the list of orders.
    void onOrderNumberClicked(int row);
    void onSelectFilesClicked(int row);
    void onClearFilesClicked(int row);
    void onOpenDirClicked(int row);
    void onFilesDropped(int row, const QStringList &paths);
    /// \a row is a row of the file table.
    void onRetryImportClicked(int row);
    void onStartAllClicked();
    /// Registers one photo by itself; an import registers whole orders instead.
    void upImportPhotoInfo(const ImportOrder &order, const ImportFile &file);
    void stopAllImports();

protected:
    CloseAnswer closeRequested() override;
    void showEvent(QShowEvent *event) override;

private:
    void connectPanel();
    void connectRun();
    void connectFailures();
    void showPhotoView(bool shown);
    bool hasLiveWork() const;
    void finishClosingWhenIdle();

    void onBranchLeft();
    /// What the window was led to the order at \a row for.
    void fulfil(int row);

    /// Tells the user when the answer is no.
    bool mayChangeFiles(int row);
    bool refusesForOtherTool(const QVector<ImportOrder> &orders);
    void retryAll();
    void abandonSearch();
    void onFilesChosen(int row);

    void onFileChanged(const OrderIdentity &orderId, const ImportFile &file);
    void askForResubmit(const OrderIdentity &orderId, const QString &question,
                        const QString &certificateError);
    void onOrderRegistered(const OrderIdentity &orderId, const RegistrationResult &result);
    void onRegisterAgainClicked(int row);
    void setImporting(bool importing);
    void refreshProgress();
    void noteFailure(const OrderIdentity &orderId, const ImportFile &file);
    void retry(const QVector<RunFailure> &failures);
    const ImportOrder *shownOrder() const;

    ImportMode mode_ = ImportMode::Originals;
    bool importing_ = false;
    bool opened_ = false;
    OrderIdentity shownOrderId_;
    OrderPlace place_; ///< that the window was led to last

    ImportOrderTableModel orders_;
    ImportFileTableModel files_;
    BranchSession branch_;
    std::unique_ptr<ImportRun> run_;
    SharedFolderOpener folderOpener_;
    QTimer progressTimer_;
    QElapsedTimer clock_;
    TransferRate rate_;

    ImportOrderPanel *panel_;
    ImportFilePanel *filePanel_;
    FileHalf *rightHalf_;
    SharedWidth *halves_;
    OrderFinder *finder_;
    OriginalView *photos_ = nullptr; ///< with originals only
    OrderFileChooser *chooser_;
    ReportLine *report_;
    ImportMarks *marks_;
    std::unique_ptr<ImportRestorer> restorer_; ///< last: it looks at the others to its end
};
