#pragma once

#include "orderbrowser/rules/fieldvalues.h"
#include "orderbrowser/rules/orderlisting.h"
#include "orderbrowser/run/folderlook.h"

#include <QWidget>

class ChosenPhotosView;
class QLabel;
class QPushButton;
class QTreeWidget;

/// All that is known of one order, by group, each value to be copied; the photos chosen of it, and
/// what lies in its folder.
class DetailsPane : public QWidget
{
    Q_OBJECT

public:
    explicit DetailsPane(QWidget *parent = nullptr);

    /// Null: of none. Photos and folder are asked for once, not at every change of the display;
    /// \a who asks.
    void showOrder(const OrderListing &listing, const BrowsedOrder *order,
                   const fieldvalues::Display &display, const orderqueries::Identity &who);

    /// See ChosenPhotosView.
    ChosenPhotosView *photos() { return photos_; }

signals:
    void openFolderClicked();

private:
    void copySelected();
    void lookAtFolder(const QString &path);
    void showContent(const FolderContent &content);

    QLabel *heading_;
    QTreeWidget *fields_;
    ChosenPhotosView *photos_;
    QLabel *folder_;
    QPushButton *open_;
    QPushButton *stop_;
    FolderLook look_;
    QString path_;
    OrderIdentity shown_;
};
