#pragma once

#include "marks/rules/filemark.h"
#include "photoimport/imported/tfthumbnailthread.h"

#include <QHash>
#include <QStringList>
#include <QTimer>
#include <QVector>
#include <QWidget>

#include <functional>

class MarkFilter;
class QAction;
class QLabel;
class QPushButton;
class tfphotolistmodel;
class tfphotoview;

/// The right half of the photo import window: the photos of the order shown and what can be done
/// with them. It asks for the thumbnails in sight and decides nothing. Rows in its signals are rows
/// of the model.
class tfhomephotos : public QWidget
{
    Q_OBJECT

public:
    explicit tfhomephotos(tfphotolistmodel *model, QWidget *parent = nullptr);

    /// \a heading empty: no order is shown.
    void showOrder(const QString &heading);
    /// Runs \a change, which replaces the photos, and brings selection and scroll position back.
    void keepPlaceWhile(const std::function<void()> &change);
    QVector<int> selectedRows() const;

    /// How many files have which mark; the user sees all of them, or those of one.
    void setMarkCounts(const QHash<marks::Mark, int> &counts);

    /// Reads no more thumbnails. finished() of the thread tells when the last one has ended.
    tfthumbnailthread *thumbnails() { return &thumbnails_; }

signals:
    void addFilesClicked();
    void addFolderClicked();
    void openFolderClicked();
    void startClicked();
    /// Empty rows: all that failed.
    void retryClicked(const QVector<int> &rows);
    void removeClicked(const QVector<int> &rows);
    void deleteClicked(const QVector<int> &rows);
    void filesDropped(const QStringList &paths);

private:
    void buildView();
    void buildLayout();
    QPushButton *button(const char *name, const QString &text, const QString &tip);
    void askForThumbnails();

    tfphotolistmodel *model_;
    tfphotoview *view_;
    MarkFilter *filter_;
    QLabel *heading_;
    QVector<QWidget *> needOrder_; ///< what works only with an order shown
    QTimer sightTimer_;
    tfthumbnailthread thumbnails_;
};
