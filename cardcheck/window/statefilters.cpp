#include "cardcheck/window/statefilters.h"

#include "widgets/inputs/flowlayout.h"
#include "widgets/theme/theme.h"

#include <QButtonGroup>
#include <QPushButton>

StateFilters::StateFilters(QWidget *parent) : QWidget(parent)
{
    auto *layout = new FlowLayout(this, theme::spacing(), theme::spacing() / 2);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *group = new QButtonGroup(this);
    all_ = addButton(QStringLiteral("all"), std::nullopt);
    group->addButton(all_);
    // The worst first, as in the table.
    for (int state = evidence::stateCount - 1; state >= 0; --state) {
        QPushButton *button = addButton(QString::number(state), evidence::State(state));
        group->addButton(button);
        byState_.insert(state, button);
    }
    showTally({});
    showAll();
}

QPushButton *StateFilters::addButton(const QString &name, std::optional<evidence::State> state)
{
    auto *button = new QPushButton(this);
    button->setObjectName(QStringLiteral("filter_") + name);
    button->setStyleSheet(theme::filterButtonStyle());
    button->setCheckable(true);
    connect(button, &QPushButton::clicked, this, [this, state] { emit chosen(state); });
    layout()->addWidget(button);
    return button;
}

void StateFilters::showTally(const verdict::Tally &tally)
{
    int count = 0;
    for (int state = 0; state < evidence::stateCount; ++state) {
        const int files = tally.all(evidence::State(state));
        count += files;
        QPushButton *button = byState_.value(state);
        button->setText(QStringLiteral("%1 %2  %3")
                            .arg(evidence::stateSign(evidence::State(state)),
                                 evidence::stateText(evidence::State(state)))
                            .arg(files));
        // The one that is pressed stays in sight, or nobody could release it.
        button->setVisible(files > 0 || button->isChecked());
    }
    all_->setText(QStringLiteral("全部  %1").arg(count));
    setVisible(count > 0);
}

void StateFilters::showAll()
{
    all_->setChecked(true);
    emit chosen(std::nullopt);
}
