#pragma once

#include "photoimport/imported/photodeletion.h"
#include "photoimport/imported/tfphotolistmodel.h"

#include <QObject>
#include <QString>
#include <QVector>

#include <functional>

class LoadingOverlay;
class QWidget;
class tforderlistmodel;

/// Has imported photos deleted for the user: asks first, covers the window with its overlay while
/// the service is asked, and takes what is deleted off the list. Rows are positions in the model.
class ConfirmedPhotoDeletion : public QObject
{
    Q_OBJECT

public:
    /// Boxes belong to \a window, which owns this, the model and the overlay. \a mayChange
    /// tells whether an order may lose photos at the moment, and the user why not.
    ConfirmedPhotoDeletion(QWidget *window, tforderlistmodel *orders, LoadingOverlay *overlay,
                           std::function<bool(int row)> mayChange);

    /// Those of \a photos, of the order at \a row, that the service knows.
    void deletePhotos(int row, const QVector<PanelPhoto> &photos,
                      const orderqueries::Identity &identity);
    /// Gives up asking the service; what it has agreed to goes on. False when nothing was asked.
    bool cancel();
    /// What to ask before the window closes while this isActive().
    static QString closingQuestion();
    /// Whether the service is being asked or files are being removed.
    bool isActive() const { return deletion_.isActive(); }

signals:
    /// The service is about to be asked: a file that is open may refuse to go.
    void asking();
    /// The service has answered; what it agreed to is off the list.
    void answered(const OrderIdentity &orderId);
    /// It has not, and the user was told: its books are to be looked at again.
    void unanswered(const OrderIdentity &orderId);
    /// The files are gone from the disk.
    void removed();

private:
    void start(const DeletionRequest &request, const orderqueries::Identity &identity);
    void onPhotosDeleted(const DeletionRequest &deleted);
    void onUnanswered(const DeletionRequest &request);
    void onRefused(const DeletionRequest &request, const ServiceReply &reply);

    QWidget *window_;
    tforderlistmodel *orders_;
    LoadingOverlay *overlay_;
    std::function<bool(int row)> mayChange_;
    PhotoDeletion deletion_;
};
