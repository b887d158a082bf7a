#include "distribution/ruleeditor/dropzone.h"

#include "app/context/k.h"
#include "distribution/ruleeditor/fieldbutton.h"
#include "distribution/ruleeditor/fielddrag.h"
#include "distribution/ruleeditor/separatorbutton.h"
#include "look/colours.h"
#include "widgets/inputs/flowlayout.h"
#include "widgets/theme/theme.h"

#include <QDrag>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int spacingPx = 8;
constexpr int paddingPx = 10;
constexpr int radiusPx = 6;
constexpr int indicatorPx = 3;
constexpr int linesWhenEmpty = 2;

} // namespace

DropZone::DropZone(QWidget *parent)
    : QWidget(parent), flow_(new FlowLayout(this, K::scaledPx(spacingPx), K::scaledPx(spacingPx)))
{
    const int padding = K::scaledPx(paddingPx);
    flow_->setContentsMargins(padding, padding, padding, padding);
    setAcceptDrops(true);
    setMinimumHeight(linesWhenEmpty * theme::controlHeight() + K::scaledPx(spacingPx) +
                     2 * padding);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAccessibleName(QStringLiteral("产品文件夹命名规则"));
}

namingrule::Rule DropZone::rule() const
{
    namingrule::Rule rule;
    rule.reserve(buttons_.size());
    for (const FieldButton *button : buttons_)
        rule.append(button->item());
    return rule;
}

void DropZone::setRule(const namingrule::Rule &rule)
{
    qDeleteAll(buttons_);
    buttons_.clear();
    dragged_.clear();
    for (const namingrule::Item &item : rule)
        insertButton(item, buttons_.size());
    setIndicator(-1);
    arrange();
}

void DropZone::addField(const namingrule::Item &item, int index)
{
    insertButton(item, index < 0 ? buttons_.size() : index);
    arrange();
    emit ruleChanged();
}

FieldButton *DropZone::insertButton(const namingrule::Item &item, int index)
{
    auto *button = new FieldButton(item, this);
    buttons_.insert(index, button);
    flow_->insertWidget(index, button);
    button->show();
    connect(button, &FieldButton::deleteClicked, this, &DropZone::onFieldDeleteClicked);
    connect(button, &FieldButton::dragStarted, this, &DropZone::onFieldDragStarted);
    connect(button, &FieldButton::moveRequested, this,
            [this, button](int step) { moveByKey(button, step); });
    connect(button, &FieldButton::focusRequested, this,
            [this, button](int step) { focusNeighbour(button, step); });
    connect(button->separatorButton(), &SeparatorButton::separatorChanged, this,
            &DropZone::onSeparatorChanged);
    return button;
}

void DropZone::moveButton(int from, int to)
{
    buttons_.move(from, to);
    flow_->moveItem(from, to);
}

void DropZone::moveByKey(FieldButton *button, int step)
{
    const int from = buttons_.indexOf(button);
    const int to = from + step;
    if (to < 0 || to >= buttons_.size())
        return;
    moveButton(from, to);
    arrange();
    emit ruleChanged();
}

void DropZone::focusNeighbour(FieldButton *button, int step)
{
    FieldButton *neighbour = buttons_.value(buttons_.indexOf(button) + step);
    if (neighbour)
        neighbour->setFocus(Qt::TabFocusReason);
}

void DropZone::onFieldDeleteClicked()
{
    const auto found = std::find_if(buttons_.cbegin(), buttons_.cend(),
                                    [](const FieldButton *each) { return each->isDeleted(); });
    if (found == buttons_.cend())
        return;
    FieldButton *button = *found;
    const int index = buttons_.indexOf(button);
    const bool hadFocus = button->hasFocus();
    buttons_.removeAt(index);
    flow_->removeWidget(button);
    button->hide();
    button->deleteLater();
    if (hadFocus && !buttons_.isEmpty())
        buttons_.at(std::min(index, int(buttons_.size()) - 1))->setFocus(Qt::TabFocusReason);
    arrange();
    emit ruleChanged();
}

void DropZone::onFieldDragStarted(FieldButton *button, const QPoint &pos)
{
    const int index = buttons_.indexOf(button);
    if (index < 0 || dragged_)
        return;
    dragged_ = button;
    QFont font = button->font();
    font.setWeight(QFont::Medium);
    const QPixmap image = fielddrag::image(button, button->label(), font,
                                           {colours::toColor(colours::fieldReorder),
                                            QPen(colours::toColor(colours::fieldDrag), 1),
                                            colours::toColor(colours::dialogHeading)});
    button->hide();
    arrange();
    setIndicator(index);

    auto *drag = new QDrag(this);
    auto *carried = new QMimeData;
    carried->setData(fielddrag::reorderType, button->label().toUtf8());
    drag->setMimeData(carried);
    drag->setPixmap(image);
    drag->setHotSpot(pos);
    const QPointer<DropZone> guard(this);
    fielddrag::run(drag, Qt::MoveAction);
    // Dropped elsewhere or given up: the field goes back to where it was.
    if (!guard || !dragged_)
        return;
    dragged_->show();
    dragged_.clear();
    setIndicator(-1);
    arrange();
}

void DropZone::onSeparatorChanged(const QString &)
{
    arrange();
    emit ruleChanged();
}

static bool accepts(const QMimeData *data)
{
    return data->hasFormat(fielddrag::itemType) || data->hasFormat(fielddrag::reorderType);
}

void DropZone::dragEnterEvent(QDragEnterEvent *event)
{
    if (!accepts(event->mimeData()))
        return;
    setHighlighted(true);
    setIndicator(-1);
    event->acceptProposedAction();
}

void DropZone::dragMoveEvent(QDragMoveEvent *event)
{
    if (!accepts(event->mimeData()))
        return;
    int index = insertionIndex(event->pos());
    if (dragged_ && event->mimeData()->hasFormat(fielddrag::reorderType)) {
        const int own = buttons_.indexOf(dragged_);
        if (index == own || index == own + 1)
            index = -1;
    }
    setIndicator(index);
    event->acceptProposedAction();
}

void DropZone::dragLeaveEvent(QDragLeaveEvent *)
{
    setHighlighted(false);
    setIndicator(-1);
}

void DropZone::dropEvent(QDropEvent *event)
{
    const QMimeData *dropped = event->mimeData();
    if (!accepts(dropped))
        return;
    const bool changed =
        dropped->hasFormat(fielddrag::itemType) ? dropItem(dropped, event->pos()) : dropReordered();
    event->acceptProposedAction();
    setHighlighted(false);
    setIndicator(-1);
    arrange();
    if (changed)
        emit ruleChanged();
}

bool DropZone::dropItem(const QMimeData *dropped, const QPoint &pos)
{
    const QStringList parts =
        QString::fromUtf8(dropped->data(fielddrag::itemType)).split(QLatin1Char('|'));
    if (parts.size() < 2)
        return false;
    insertButton({parts.at(0), parts.at(1)}, indicator_ >= 0 ? indicator_ : insertionIndex(pos));
    return true;
}

bool DropZone::dropReordered()
{
    if (!dragged_)
        return false;
    const int from = buttons_.indexOf(dragged_);
    int to = buttons_.size() == 1 ? 0 : indicator_;
    if (to < 0)
        to = from; // where a drop would not move it
    else if (to > from)
        --to;
    moveButton(from, to);
    dragged_->show();
    dragged_.clear();
    return true;
}

/// Before which button something at \a pos belongs: lines from top to bottom, in a line from left
/// to right.
int DropZone::insertionIndex(const QPoint &pos) const
{
    const int gap = K::scaledPx(spacingPx) / 2;
    for (int index = 0; index < buttons_.size(); ++index) {
        if (buttons_.at(index) == dragged_)
            continue;
        const QRect rect = buttons_.at(index)->geometry();
        const bool inEarlierLine = pos.y() < rect.top() - gap;
        const bool inLine = pos.y() <= rect.bottom() + gap;
        if (inEarlierLine || (inLine && pos.x() < rect.center().x()))
            return index;
    }
    return buttons_.size();
}

QRect DropZone::indicatorRect() const
{
    const int width = K::scaledPx(indicatorPx);
    const int gap = K::scaledPx(spacingPx) / 2;
    const auto barAt = [width](int x, const QRect &beside) {
        return QRect(x - width / 2, beside.top(), width, beside.height());
    };
    for (int index = indicator_; index < buttons_.size(); ++index) {
        if (buttons_.at(index) != dragged_)
            return barAt(buttons_.at(index)->x() - gap, buttons_.at(index)->geometry());
    }
    for (int index = int(buttons_.size()) - 1; index >= 0; --index) {
        const QRect last = buttons_.at(index)->geometry();
        if (buttons_.at(index) != dragged_)
            return barAt(last.right() + gap, last);
    }
    const int padding = K::scaledPx(paddingPx);
    return barAt(padding, QRect(0, padding, 0, theme::controlHeight()));
}

void DropZone::setIndicator(int index)
{
    if (index == indicator_)
        return;
    indicator_ = index;
    arrange();
}

void DropZone::setHighlighted(bool highlighted)
{
    highlighted_ = highlighted;
    update();
}

/// Places the buttons now, so that a pointer that stands still meets them where they are drawn.
void DropZone::arrange()
{
    // Tab follows the rule, not the order in which the fields were added.
    for (int index = 1; index < buttons_.size(); ++index)
        setTabOrder(buttons_.at(index - 1), buttons_.at(index));
    flow_->invalidate();
    flow_->activate();
    updateGeometry();
    update();
}

void DropZone::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double border = theme::hairline();
    painter.setPen(QPen(
        colours::toColor(highlighted_ ? colours::fieldDrag : colours::fieldZoneBorder), border));
    painter.setBrush(
        colours::toColor(highlighted_ ? colours::fieldZoneHighlight : colours::fieldZone));
    const double inset = border / 2;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                            K::scaledPx(radiusPx), K::scaledPx(radiusPx));
    if (buttons_.isEmpty()) {
        painter.setPen(colours::toColor(colours::placeholder));
        painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("拖拽字段到此处"));
    }
    if (indicator_ >= 0)
        painter.fillRect(indicatorRect(), colours::toColor(colours::fieldDrag));
}
