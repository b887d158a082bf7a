#include "orderbrowser/window/filterchips.h"

#include "widgets/inputs/flowlayout.h"
#include "widgets/theme/theme.h"

#include <QPushButton>

FilterChips::FilterChips(QWidget *parent) : QWidget(parent)
{
    auto *layout = new FlowLayout(this, theme::spacing(), theme::spacing() / 2);
    layout->setContentsMargins(0, 0, 0, 0);
    hide();
}

void FilterChips::setChips(const QVector<Chip> &chips)
{
    if (chips == chips_)
        return;
    chips_ = chips;
    // Later: a click on one of them may be what brings this about.
    while (QLayoutItem *item = layout()->takeAt(0)) {
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const Chip &chip : chips)
        addButton(chip.text + QStringLiteral("  ×"), QStringLiteral("chip_") + chip.key,
                  [this, key = chip.key] { emit removed(key); });
    if (chips.size() > 1)
        addButton(QStringLiteral("清除全部筛选"), QStringLiteral("clearFilters"),
                  [this] { emit allRemoved(); });
    setVisible(!chips.isEmpty());
}

void FilterChips::addButton(const QString &text, const QString &name,
                            const std::function<void()> &act)
{
    // An ampersand of a filter is no mark of a key.
    auto *button = new QPushButton(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
    button->setObjectName(name);
    button->setStyleSheet(theme::secondaryButtonStyle());
    connect(button, &QPushButton::clicked, this, act);
    layout()->addWidget(button);
    button->show();
}
