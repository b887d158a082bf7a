#pragma once

#include <QSplitter>

#include <optional>

class QAbstractItemModel;

/// The files chosen for an order above the photos that it has: while none are chosen, nearly all of
/// the room is the photos'. What the user has moved stays until files come or go.
class FileHalf : public QSplitter
{
    Q_OBJECT

public:
    /// \a files shows \a model; the photos are added below.
    FileHalf(QWidget *files, const QAbstractItemModel *model, QWidget *parent = nullptr);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void share();

    const QAbstractItemModel *model_;
    std::optional<bool> wasEmpty_; ///< when the room was shared last
};
