#pragma once

#include "files/sharedfolderopener.h"
#include "photoimport/imported/tfphotolistmodel.h"
#include "photoimport/orders/tforderlistmodel.h"
#include "photoimport/run/photoimportrun.h"
#include "runreport/runfailure.h"
#include "widgets/orders/orderdestination.h"
#include "widgets/windows/framelesswindow.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QVector>

#include <memory>

class LoadingOverlay;
class ConfirmedPhotoDeletion;
class NoticeBar;
class PhotoImportStarter;
class ReportLine;
class SharedWidth;
class tfchoicemarks;
class tffilechooser;
class tfhomeorders;
class PhotoChoiceRestorer;
class tfhomephotos;
class tfimportbar;

/// The window of the photo import: search orders, add photos or videos to them, import them in all
/// their forms, tell the service, delete what was imported. What it decides lives in photorules,
/// photoorder and the models; the pool does the work.
class tfhome : public FramelessWindow, public OrderDestination
{
    Q_OBJECT

public:
    explicit tfhome(QWidget *parent = nullptr);

    void goTo(const OrderPlace &place) override;
    ~tfhome() override;

signals:
    /// The user wants to know whether a card may be formatted.
    void cardCheckRequested();
    /// The user wants to know whether an order is whole.
    void orderCheckRequested(const OrderToCheck &order);

protected:
    CloseAnswer closeRequested() override;
    void showEvent(QShowEvent *event) override;

private:
    void buildLayout();
    void connectOrders();
    void connectPhotos();
    void connectBar();
    void connectRun();
    void connectFailures();
    void connectDeletion();

    // Choosing.
    void showSelectedOrder();
    bool mayChange(int row);
    void removeFiles(const QVector<int> &photoRows);
    void choosePhotoMode(PhotoMode mode);
    void openFolder(int row);
    void copyNumber(int row);

    // Importing.
    void retry(const QVector<int> &photoRows);
    void refreshState();
    void showFile(const OrderIdentity &orderId, int index);
    void noteFailure(const PhotoOrder &order, const SourceFile &file);
    void noteFailures(const OrderIdentity &orderId);
    void retryFailed(const QVector<RunFailure> &failures);
    void announceEnd(const RunOutcome &outcome);
    void report();
    void tell(const QString &problem);

    // Deleting, closing.
    void deletePhotos(const QVector<int> &photoRows);
    void giveUpAnswers();
    bool mayEnd() const;
    void endClosing();

    bool opened_ = false;
    OrderIdentity shownOrderId_;

    tforderlistmodel orders_;
    tfphotolistmodel photos_;
    PhotoImportRun run_;
    SharedFolderOpener folderOpener_;
    QTimer progressTimer_;
    QTimer lastAnswers_; ///< runs once the window is closed
    QElapsedTimer clock_;
    TransferRate rate_;

    tfhomeorders *orderPanel_;
    tfhomephotos *photoPanel_;
    SharedWidth *halves_ = nullptr;
    NoticeBar *notices_; ///< what waits for the user, above the start button
    tfimportbar *bar_;
    LoadingOverlay *overlay_;
    tffilechooser *chooser_;
    PhotoImportStarter *starter_;
    ReportLine *report_;
    tfchoicemarks *marks_;
    ConfirmedPhotoDeletion *deletion_;
    std::unique_ptr<PhotoChoiceRestorer> restorer_; ///< last: it looks at the others to its end
};
