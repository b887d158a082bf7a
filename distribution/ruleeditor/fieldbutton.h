#pragma once

#include "distribution/naming/namingrule.h"

#include <QPoint>
#include <QPushButton>

class SeparatorButton;

/// One entry of the rule being edited: its label, its separator and a "×" that deletes it. It is
/// dragged to another place, or moved and deleted by keys: Ctrl+Left and Ctrl+Right move it, Delete
/// deletes it, Space opens the separators, and typing a separator sets it.
class FieldButton : public QPushButton
{
    Q_OBJECT

public:
    explicit FieldButton(const namingrule::Item &item, QWidget *parent = nullptr);

    namingrule::Item item() const;
    const QString &label() const { return item_.name; }
    SeparatorButton *separatorButton() const { return separator_; }
    /// Whether the user has deleted it.
    bool isDeleted() const { return deleted_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

signals:
    void deleteClicked();
    /// \a pos is where in the button the mouse went down.
    void dragStarted(FieldButton *button, const QPoint &pos);
    /// The user asks for a place further left (-1) or right (1).
    void moveRequested(int step);
    /// The user goes to the neighbour on the left (-1) or right (1).
    void focusRequested(int step);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void askForDeletion();
    bool handleKey(int key, bool withControl);

    namingrule::Item item_;
    SeparatorButton *separator_;
    QPushButton *deleteButton_;
    QPoint pressedAt_;
    bool deleted_ = false;
};
