#pragma once

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QPen>
#include <QPixmap>
#include <QString>

#include <functional>

class QDrag;
class QMimeData;
class QWidget;

/// What the drags of the naming rule's editor have in common.
namespace fielddrag {

/// A field from the source: "label|key" in UTF-8.
inline const QString itemType = QStringLiteral("application/x-field-item");
/// A field that moves within the rule: its label in UTF-8.
inline const QString reorderType = QStringLiteral("application/x-field-reorder");

struct Look
{
    QBrush fill;
    QPen border;
    QColor text;
};

/// A rounded rectangle of the size of \a button on a transparent ground, with \a label in its
/// middle.
QPixmap image(const QWidget *button, const QString &label, const QFont &font, const Look &look);

/// Lets the user drag \a drag about until it is dropped or given up.
void run(QDrag *drag, Qt::DropAction action);
/// Tests: what is done in the user's place; empty to let the user do it again.
void setScript(std::function<void(const QMimeData *data)> script);

} // namespace fielddrag
