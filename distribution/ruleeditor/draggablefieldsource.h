#pragma once

#include <QMimeData>
#include <QPixmap>
#include <QPoint>
#include <QPushButton>
#include <QString>

/// A field that a rule can be made of. Dragging it into the drop zone adds it there, pressing it
/// adds it at the end.
class DraggableFieldSource : public QPushButton
{
    Q_OBJECT

public:
    DraggableFieldSource(const QString &label, const QString &key, QWidget *parent = nullptr);

    const QString &label() const { return label_; }
    const QString &key() const { return key_; }
    QSize sizeHint() const override;

    /// What a drag carries: "label|key". The caller owns it.
    QMimeData *dragData() const;
    QPixmap dragImage() const;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    QString label_;
    QString key_;
    QPoint pressedAt_;
};
