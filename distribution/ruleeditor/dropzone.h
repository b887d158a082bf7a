#pragma once

#include "distribution/naming/namingrule.h"

#include <QList>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QWidget>

class FieldButton;
class FlowLayout;
class QMimeData;

/// The rule being edited: one button per entry, in rule order, which fields are dropped into and
/// moved within.
class DropZone : public QWidget
{
    Q_OBJECT

public:
    explicit DropZone(QWidget *parent = nullptr);

    namingrule::Rule rule() const;
    /// Replaces what is shown, without announcing it.
    void setRule(const namingrule::Rule &rule);
    /// Inserts an entry before \a index, at the end when there is none, and announces it.
    void addField(const namingrule::Item &item, int index = -1);
    const QList<FieldButton *> &buttons() const { return buttons_; }
    /// Where something dropped now would land; -1 when nothing would be moved.
    int indicatorIndex() const { return indicator_; }

signals:
    void ruleChanged();

public slots:
    void onFieldDeleteClicked();
    void onFieldDragStarted(FieldButton *button, const QPoint &pos);
    void onSeparatorChanged(const QString &separator);

protected:
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    FieldButton *insertButton(const namingrule::Item &item, int index);
    void moveButton(int from, int to);
    void moveByKey(FieldButton *button, int step);
    void focusNeighbour(FieldButton *button, int step);
    bool dropItem(const QMimeData *dropped, const QPoint &pos);
    bool dropReordered();
    int insertionIndex(const QPoint &pos) const;
    QRect indicatorRect() const;
    void setIndicator(int index);
    void setHighlighted(bool highlighted);
    void arrange();

    QList<FieldButton *> buttons_;
    FlowLayout *flow_;
    QPointer<FieldButton> dragged_; ///< hidden while it is under way
    int indicator_ = -1;
    bool highlighted_ = false;
};
