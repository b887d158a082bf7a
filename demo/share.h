#pragma once

#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>

namespace demo {

struct AnnouncedFile
{
    QString name;
    qint64 size; // bytes
};

// The studio's file share on this disk, the folder `share` in the service's data folder. It is only
// ever emptied when the service made it: a marker file in the data folder says so.
class Share
{
public:
    explicit Share(const QString &dataFolder);

    QString root() const { return root_; }
    // Folders of the branches, by shop id. A branch that is not listed has no public folder.
    QMap<QString, QString> publicFolders() const;

    // Makes what is missing. Returns an empty text or what went wrong.
    QString prepare() const;
    // Removes everything below the root (links as links) and makes it afresh. Result as above.
    QString empty() const;

    // The announced files that lie in the folder with the announced size.
    static QStringList present(const QString &folder, const QVector<AnnouncedFile> &announced);

private:
    QString markerPath_;
    QString root_;
};

} // namespace demo
