#pragma once

#include <QAbstractListModel>
#include <QSet>
#include <QString>
#include <QVector>

/// One photo of the order shown, as the lists of downloaded and not downloaded photos have it.
struct ListedPhoto
{
    QString id;
    QString key; ///< DetailPhoto::key()
    QString name;
    bool selected = true;
};

/// One of the two lists: names with a tick each.
class PhotoListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    explicit PhotoListModel(QObject *parent = nullptr);

    void setPhotos(const QVector<ListedPhoto> &photos);
    const QVector<ListedPhoto> &photos() const { return photos_; }
    void setAllSelected(bool selected);
    /// Takes the photo out of the list. False when it is not in it.
    bool take(const QString &id, ListedPhoto *photo);
    void append(const ListedPhoto &photo);
    /// "IMG_1.jpg true---IMG_2.jpg false", for the log.
    QString summary() const;

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

signals:
    void selectionChanged();

private:
    QVector<ListedPhoto> photos_;
};
