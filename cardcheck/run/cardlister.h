#pragma once

#include "cardcheck/rules/places.h"
#include "tasks/stopflag.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// Looking at cards and folders. Everything here blocks, for worker threads.
namespace cardlister {

/// All that lies on the card, links not followed. Not listed when the root cannot be read, or when
/// \a stop was raised.
cardfiles::CardListing listCard(const QString &root, const StopFlag &stop = {});

/// Whether a camera has written to the card at \a root.
bool isCamerasCard(const QString &root);

/// Tells whether files lie on the card, by whatever name their folder is reached.
class CardPlace
{
public:
    CardPlace() = default;
    explicit CardPlace(const QString &root);

    bool holds(const QString &path) const;

private:
    QByteArray identity_;
};

struct FolderFiles
{
    bool isListed = false; ///< whole: false as well for a folder that is not there
    bool isThere = false;
    QVector<places::FolderFile> files; ///< in the order of their paths
};

/// The files of an order's \a folder (wire form) and its sub-folders, without size variants and
/// temporary files.
FolderFiles listOrderFolder(const QString &folder, const StopFlag &stop = {});

} // namespace cardlister
