#include "orderbrowser/window/filterheader.h"

#include "look/colours.h"
#include "widgets/inputs/inputs.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QAbstractItemView>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QSignalBlocker>

FilterHeader::FilterHeader(QWidget *parent) : QHeaderView(Qt::Horizontal, parent)
{
    setSectionsMovable(true);
    setSectionsClickable(true);
    connect(this, &QHeaderView::sectionResized, this, &FilterHeader::placeFields);
    connect(this, &QHeaderView::sectionMoved, this, &FilterHeader::makeFields);
    connect(this, &QHeaderView::sectionCountChanged, this, &FilterHeader::makeFields);
    if (auto *table = qobject_cast<QAbstractItemView *>(parent)) {
        connect(table->horizontalScrollBar(), &QScrollBar::valueChanged, this,
                &FilterHeader::placeFields, Qt::QueuedConnection);
    }
}

void FilterHeader::setModel(QAbstractItemModel *model)
{
    QHeaderView::setModel(model);
    makeFields();
}

void FilterHeader::setFieldPlaces(int first, int end)
{
    firstPlace_ = first;
    endPlace_ = end;
    makeFields();
}

bool FilterHeader::hasField(int section) const
{
    const int place = section < count() ? visualIndex(section) : -1;
    return place >= firstPlace_ && place < endPlace_;
}

void FilterHeader::makeFields()
{
    for (int section = 0; section < filters_.size(); ++section) {
        LineEdit *&field = filters_[section].field;
        if (!field || hasField(section))
            continue;
        // It may be where the change comes from.
        field->hide();
        field->deleteLater();
        field = nullptr;
    }
    filters_.resize(count());
    for (int section = 0; section < count(); ++section) {
        Filter &filter = filters_[section];
        if (!filter.field && hasField(section))
            filter.field = makeField(section);
    }
    placeFields();
}

LineEdit *FilterHeader::makeField(int section)
{
    auto *field = new LineEdit(this);
    field->setObjectName(QStringLiteral("filter%1").arg(section));
    field->setPlaceholderText(QStringLiteral("筛选"));
    field->setClearable(true);
    field->setText(filters_.at(section).text);
    setPlainTip(field, filters_.at(section).help);
    field->installEventFilter(this);
    connect(field, &QLineEdit::textChanged, this, [this, section](const QString &text) {
        filters_[section].text = text;
        emit filterTyped(section, text);
    });
    connect(field, &LineEdit::focused, this, [this, section] { bringIntoView(section); });
    field->show();
    return field;
}

void FilterHeader::setFilter(int section, const QString &text, const QString &help)
{
    Filter &filter = filters_[section];
    filter.text = text;
    filter.help = help;
    if (!filter.field)
        return;
    setPlainTip(filter.field, help);
    if (filter.field->text() == text)
        return;
    const QSignalBlocker blocker(filter.field);
    filter.field->setText(text);
}

bool FilterHeader::focusFilter(int section)
{
    LineEdit *field = filters_.at(section).field;
    if (!field)
        return false;
    field->setFocus();
    field->selectAll();
    return true;
}

/// Two lines, whatever the height of one is.
QSize FilterHeader::sizeHint() const
{
    return {QHeaderView::sizeHint().width(), theme::rowHeight() * 2};
}

void FilterHeader::updateGeometries()
{
    QHeaderView::updateGeometries();
    placeFields();
}

void FilterHeader::resizeEvent(QResizeEvent *event)
{
    QHeaderView::resizeEvent(event);
    placeFields();
}

void FilterHeader::placeFields()
{
    const int gap = theme::hairline() * 2;
    const int top = theme::rowHeight();
    for (int section = 0; section < filters_.size() && section < count(); ++section) {
        if (LineEdit *field = filters_.at(section).field) {
            field->setGeometry(sectionViewportPosition(section) + gap, top + gap,
                               qMax(0, sectionSize(section) - 2 * gap), height() - top - 2 * gap);
        }
    }
}

/// Right of those sections that lie under what has their fields.
void FilterHeader::bringIntoView(int section)
{
    auto *table = qobject_cast<QAbstractItemView *>(parentWidget());
    if (!table || endPlace_ < count())
        return;
    QScrollBar *bar = table->horizontalScrollBar();
    const int covered = firstPlace_ < count() ? sectionPosition(logicalIndex(firstPlace_)) : 0;
    const int left = sectionPosition(section) - covered;
    const int right = sectionPosition(section) + sectionSize(section) - viewport()->width();
    if (left < bar->value() || right > bar->value())
        bar->setValue(left < bar->value() ? left : right);
}

bool FilterHeader::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress && qobject_cast<LineEdit *>(watched)) {
        auto *field = static_cast<LineEdit *>(watched);
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
            emit leftDownwards();
            return true;
        }
        if (key == Qt::Key_Escape && !field->text().isEmpty()) {
            field->clear();
            return true;
        }
    }
    return QHeaderView::eventFilter(watched, event);
}

void FilterHeader::paintSection(QPainter *painter, const QRect &rect, int section) const
{
    painter->fillRect(rect, colours::toColor(colours::surfaceHeader));
    QHeaderView::paintSection(
        painter, QRect(rect.topLeft(), QSize(rect.width(), theme::rowHeight())), section);
}
