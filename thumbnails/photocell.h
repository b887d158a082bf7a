#pragma once

#include "thumbnails/photoentry.h"
#include "widgets/theme/plaintext.h"

#include <QAbstractButton>
#include <QSize>
#include <QWidget>

/// Where a cell's picture is shown, or what there is in its place.
class PhotoLabel : public PlainLabel
{
    Q_OBJECT

public:
    explicit PhotoLabel(QWidget *parent);

    void showPending();
    void showFailed();
    void showPicture(const QPixmap &picture);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    enum class Content { Pending, Failed, Picture };

    void showText(Content content, const QString &text);

    Content content_ = Content::Pending;
};

/// The round check button of a cell.
class PhotoSelectButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit PhotoSelectButton(QWidget *parent);

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// One cell of the grid: a picture, the file's name, a check button. It paints itself instead of
/// carrying style sheets, of which thousands of cells would take long to make. Its parts can be
/// found by its dynamic properties "photoLabel", "nameLabel", "selectButton" and "photoIndex", too.
class PhotoCell : public QWidget
{
    Q_OBJECT

public:
    PhotoCell(const PhotoEntry &entry, int index, QWidget *parent);

    /// Pixels of the screen.
    static QSize cellSize();
    static QSize photoSize();

    PhotoLabel *photoLabel() const { return photoLabel_; }
    PhotoSelectButton *selectButton() const { return selectButton_; }
    int index() const { return index_; }

    /// The cell that the keyboard is at.
    void setCurrent(bool current);

    bool isRequested = false; ///< its image was asked for
    bool isLoaded = false;    ///< its image is there

protected:
    void enterEvent(QEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    PhotoLabel *photoLabel_;
    PhotoSelectButton *selectButton_;
    int index_;
    bool current_ = false;
};
