#pragma once

#include "orderbrowser/rules/fieldvalues.h"
#include "orderbrowser/rules/orderlisting.h"
#include "orderbrowser/run/folderlook.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;

/// All that is known of one order, by group, each value to be copied; and what lies in its folder.
class DetailsPane : public QWidget
{
    Q_OBJECT

public:
    explicit DetailsPane(QWidget *parent = nullptr);

    /// Null: of none. The folder is looked at once, not at every change of the display.
    void showOrder(const OrderListing &listing, const BrowsedOrder *order,
                   const fieldvalues::Display &display);

signals:
    void openFolderClicked();

private:
    void copySelected();
    void lookAtFolder(const QString &path);
    void showContent(const FolderContent &content);

    QLabel *heading_;
    QTreeWidget *fields_;
    QLabel *folder_;
    QPushButton *open_;
    QPushButton *stop_;
    FolderLook look_;
    QString path_;
    OrderIdentity shown_;
};
