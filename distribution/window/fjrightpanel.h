#pragma once

#include "app/context/orderidentity.h"
#include "distribution/plan/distributionplan.h"
#include "distribution/window/photolistmodel.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QWidget>

class CustomCheckBoxNew;
class FolderNamingRule;
class NamingRulePanel;
class OrderSearchBar;
class QLabel;
class QListView;
class QPushButton;
class QVBoxLayout;

/// The right half of the distribution window: what to search for, where to and what to distribute,
/// the photos of the order shown, and the rule that names product folders.
class FJRightPanel : public QWidget
{
    Q_OBJECT

public:
    explicit FJRightPanel(QWidget *parent = nullptr);
    ~FJRightPanel() override;

    /// Shows what the card needs and ticks what it usually takes.
    void setSplitType(DesignFileSplitTypes type);
    OrderSearchBar *searchBar() const { return searchBar_; }
    NamingRulePanel *namingPanel() const { return namingPanel_; }
    /// Shows the branch in the box and its stored rule in the editor.
    void showBranch(const QString &shopId);

    /// As this machine writes it; empty until one was chosen.
    const QString &directory() const { return directory_; }
    DownloadOptions options() const;
    /// The rule in the editor, as JSON text.
    QString namingRule() const;
    /// Keys of photos that the user does not want.
    QHash<OrderIdentity, QSet<QString>> leftOut() const { return leftOut_; }

    /// Fills both lists and previews the rule with the order's first product. \a name is what the
    /// user knows the order by.
    void showPhotos(const OrderIdentity &order, const QString &name, const OrderDetail &detail);
    /// The order is to be shown, but its photos are not known yet; or, before another list of
    /// orders, nothing: what was left out of the orders so far is forgotten then, like their ticks.
    void clearPhotos(const OrderIdentity &order = {}, const QString &name = {});
    /// Moves the photo to the downloaded ones, if its order is shown.
    void markDownloaded(const OrderIdentity &order, const QString &imageId);

    /// While a run goes on nothing it was started with can be changed, and the button stops it.
    void setRunning(bool running);

signals:
    void searchRequested(const QString &searchType, const QString &searchText);
    void startProcessRequested();
    void stopProcessRequested();
    void downAndUnDownImgSelectedChange();
    void shopChange(const QString &shopId);

public slots:
    void onSearchTypeChanged();
    void onChooseDirectoryClicked();
    void onStartProcessClicked();
    void onSearchOrderClicked();
    void onDateEditClicked();
    void onUndownloadSelectAllClicked();
    void onUndownloadClearAllClicked();
    void onDownloadedSelectAllClicked();
    void onDownloadedClearAllClicked();
    void onSetSearchBtnStatus(bool enable);

private:
    struct PhotoList
    {
        PhotoListModel model;
        QString caption;
        QLabel *label = nullptr;
        QListView *view = nullptr;
    };

    QWidget *buildRunPart();
    QWidget *buildOptions();
    QWidget *buildPhotoLists();
    QWidget *buildPhotoList(PhotoList *list, const QString &caption, const char *name,
                            void (FJRightPanel::*selectAll)(), void (FJRightPanel::*clearAll)());
    void showDirectory();
    void restoreDirectory();
    void updateCounts();
    void onSelectionChanged();
    void resizeEvent(QResizeEvent *event) override;

    QLabel *cardLabel_; ///< several cards share the window's title
    OrderSearchBar *searchBar_;
    QPushButton *directoryButton_;
    QLabel *directoryLabel_;
    QPushButton *startButton_;
    QWidget *options_ = nullptr;
    CustomCheckBoxNew *originals_;
    CustomCheckBoxNew *fullSize_;
    CustomCheckBoxNew *basic_;
    CustomCheckBoxNew *basicWithRejected_;
    CustomCheckBoxNew *retouched_;
    QLabel *shownLabel_ = nullptr;
    QWidget *photoLists_ = nullptr;
    NamingRulePanel *namingPanel_;

    DesignFileSplitTypes type_ = DesignFileSplitTypes::Distribution;
    QString directory_;
    bool running_ = false;
    OrderIdentity shownOrder_;
    PhotoList undownloaded_;
    PhotoList downloaded_;
    QHash<OrderIdentity, QSet<QString>> leftOut_;
};
