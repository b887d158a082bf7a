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
    connect(this, &QHeaderView::sectionMoved, this, &FilterHeader::placeFields);
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

void FilterHeader::makeFields()
{
    while (fields_.size() > count()) {
        // One of them may be where the change comes from.
        fields_.last()->hide();
        fields_.takeLast()->deleteLater();
    }
    while (fields_.size() < count()) {
        const int section = fields_.size();
        auto *field = new LineEdit(this);
        field->setObjectName(QStringLiteral("filter%1").arg(section));
        field->setPlaceholderText(QStringLiteral("筛选"));
        field->setClearable(true);
        field->installEventFilter(this);
        connect(field, &QLineEdit::textChanged, this,
                [this, section](const QString &text) { emit filterTyped(section, text); });
        connect(field, &LineEdit::focused, this, [this, section] { bringIntoView(section); });
        field->show();
        fields_.append(field);
    }
    placeFields();
}

void FilterHeader::setFilter(int section, const QString &text, const QString &help)
{
    LineEdit *field = fields_.at(section);
    setPlainTip(field, help);
    if (field->text() == text)
        return;
    const QSignalBlocker blocker(field);
    field->setText(text);
}

void FilterHeader::focusFilter(int section)
{
    fields_.at(section)->setFocus();
    fields_.at(section)->selectAll();
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
    for (int section = 0; section < fields_.size() && section < count(); ++section) {
        const int top = theme::rowHeight();
        fields_.at(section)->setGeometry(sectionViewportPosition(section) + gap, top + gap,
                                         qMax(0, sectionSize(section) - 2 * gap),
                                         height() - top - 2 * gap);
        fields_.at(section)->setVisible(!isSectionHidden(section));
    }
}

void FilterHeader::bringIntoView(int section)
{
    auto *table = qobject_cast<QAbstractItemView *>(parentWidget());
    if (!table)
        return;
    QScrollBar *bar = table->horizontalScrollBar();
    const int left = sectionPosition(section);
    const int right = left + sectionSize(section) - viewport()->width();
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
