#pragma once

#include "marks/rules/filemark.h"
#include "photoimport/orders/photoorder.h"

#include <QAbstractListModel>
#include <QCache>
#include <QHash>
#include <QImage>
#include <QString>
#include <QStringList>
#include <QVector>

/// What a row of the photo panel shows.
struct PanelPhoto
{
    QString name;
    QString path;       ///< where its thumbnail is read from, as this machine writes it
    QString serviceId;  ///< empty while the service does not know it
    int fileIndex = -1; ///< position among the order's files; -1 when only the service has it
    SourceFile file;    ///< empty without a file index
};
Q_DECLARE_METATYPE(PanelPhoto)

/// The rows that the panel shows for \a order.
QVector<PanelPhoto> photoRows(const PhotoOrder &order, PhotoMode photoMode);

/// The photos of the order shown, a row per source file: first the files chosen here, in the order
/// in which they were chosen, then photos that only the service knows of.
class tfphotolistmodel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        NameRole = Qt::DisplayRole,
        ThumbnailRole = Qt::DecorationRole, ///< QImage; null until there is one
        PhotoRole = Qt::UserRole,           ///< PanelPhoto
        NoThumbnailRole,                    ///< true when the file cannot be shown
        MarkRole,                           ///< marks::Mark as an integer
    };

    explicit tfphotolistmodel(QObject *parent = nullptr);

    /// \a order may be null: nothing is shown then.
    void show(const PhotoOrder *order, PhotoMode photoMode);
    /// A file of the order shown has changed.
    void updateFile(int fileIndex, const SourceFile &file);
    bool hasRow(int row) const { return row >= 0 && row < rows_.size(); }
    const PanelPhoto &photo(int row) const { return photos_.at(rows_.at(row)); }

    /// Of the files of the order shown, by source.
    void setMarks(const QHash<QString, marks::Mark> &fileMarks);
    /// From now on only files with that mark are rows; with None all photos are.
    void setFilter(marks::Mark mark);

    /// Paths among the rows that have no thumbnail yet.
    QStringList wantedThumbnails(int firstRow, int lastRow) const;
    /// A null image: there is none.
    void setThumbnail(const QString &path, const QImage &thumbnail);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;

private:
    void fillRows();

    QVector<PanelPhoto> photos_;
    QVector<int> rows_;         ///< positions of those that are in sight
    int files_ = 0;             ///< how many, from the first one on, are files chosen here
    QHash<QString, int> paths_; ///< row by path
    QHash<QString, marks::Mark> marks_;
    marks::Mark filter_ = marks::Mark::None;
    mutable QCache<QString, QImage> thumbnails_; ///< by path; cost in kilobytes
};
