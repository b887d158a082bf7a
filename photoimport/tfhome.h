#pragma once

#include "app/helpers/sharedfolderopener.h"
#include "photoimport/photodeletion.h"
#include "photoimport/photoregistrar.h"
#include "photoimport/sourcefile.h"
#include "photoimport/tfimportthreadmanager.h"
#include "photoimport/tforderlistmodel.h"
#include "photoimport/tfphotolistmodel.h"
#include "widgets/framelesswindow.h"

#include <QElapsedTimer>
#include <QList>
#include <QSet>
#include <QStringList>
#include <QTimer>
#include <QVector>

class LoadingOverlay;
class tfhomeorders;
class tfhomephotos;
class tfimportbar;

/// The window of the photo import: search orders, add photos or videos to them, import them in all
/// their forms, tell the service, delete what was imported. What it decides lives in photorules,
/// photoorder and the models; the pool does the work.
class tfhome : public FramelessWindow
{
    Q_OBJECT

public:
    explicit tfhome(QWidget *parent = nullptr);
    ~tfhome() override;

public slots:
    void onPhotoImported(const OrderInfo &orderinfo, const QString &fileName, int photoindex,
                         bool success, const QString &errorMsg);
    void onOrderProgressUpdated(const OrderInfo &orderinfo, int completed, int total);

protected:
    CloseAnswer closeRequested() override;
    void showEvent(QShowEvent *event) override;

private:
    void buildLayout();
    void connectOrders();
    void connectPhotos();
    void connectBar();
    void connectRun();
    void connectServices();

    // Choosing.
    void showSelectedOrder();
    bool mayChange(int row);
    void addFiles(int row);
    void addFolder(int row);
    void takeFiles(int row, const QStringList &paths, bool expand);
    void onFilesDescribed(const QString &orderId, int photoMode, const FileChoiceResult &result);
    void removeFiles(const QVector<int> &photoRows);
    void choosePhotoMode(int mode);
    void openFolder(int row);
    void copyNumber(int row);

    // Importing.
    void startOrder(int row);
    void startAll();
    /// \a indexes: files of the one row; all of every row when empty.
    void start(const QVector<int> &rows, const QVector<int> &indexes = {});
    bool agreesToSharedFolders(const QVector<int> &rows);
    void stop();
    void retry(const QVector<int> &photoRows);
    void registerAgain(int row, const QVector<int> &indexes);
    void endRun();
    void afterPathError(const QString &message, const QString &path);
    void refreshState();
    void announceEnd();
    bool isQueuedOrActive(int row) const;
    bool isBusy() const { return manager_.isBusy() || registrar_.pending() > 0 || preparing_; }

    // Telling the service, deleting.
    void onPhotoRegistered(const QString &orderId, const PhotoInfo &photo, RegistrationState state,
                           const QString &reason);
    void deletePhotos(const QVector<int> &photoRows);
    void onPhotosDeleted(const DeletionRequest &deleted);
    void endClosing();

    bool opened_ = false;
    QString shownOrderId_;
    int choice_ = 0; ///< number of the choice being described; a cancelled one is no longer it
    int start_ = 0;  ///< number of the start being prepared
    bool preparing_ = false;   ///< jobs of a start are being made
    bool runOpen_ = false;     ///< a run was begun whose end is not announced yet
    bool countsStale_ = false; ///< the service knows of more, or of less, than the list shows
    QSet<QString> batch_;      ///< orders of the run
    QSet<QString> announced_;  ///< orders of the run whose folder the service was told

    tforderlistmodel orders_;
    tfphotolistmodel photos_;
    tfimportthreadmanager manager_;
    PhotoRegistrar registrar_;
    PhotoDeletion deletion_;
    SharedFolderOpener folderOpener_;
    QTimer progressTimer_;
    QElapsedTimer clock_;
    TransferRate rate_;

    tfhomeorders *orderPanel_;
    tfhomephotos *photoPanel_;
    tfimportbar *bar_;
    LoadingOverlay *overlay_;
};
