#include "app/settings/settingspage.h"

#include "look/colours.h"
#include "widgets/theme/plaintext.h"
#include "widgets/theme/theme.h"

#include <QVBoxLayout>

SettingsPage::SettingsPage(const QString &title) : title_(title), rows_(new QVBoxLayout)
{
    auto *heading = new PlainLabel(title);
    heading->setStyleSheet(
        QStringLiteral("font-size: %1px; font-weight: bold;").arg(theme::headingSize()));
    rows_->setSpacing(theme::spacing());
    auto *layout = new QVBoxLayout(this);
    const int margin = theme::margin();
    layout->setContentsMargins(margin, 0, margin, 0);
    layout->setSpacing(theme::margin());
    layout->addWidget(heading);
    layout->addLayout(rows_);
    layout->addStretch();
}

QLabel *SettingsPage::addNote(const QString &text)
{
    auto *note = new PlainLabel(text);
    note->setWordWrap(true);
    note->setStyleSheet(QStringLiteral("color: %1;").arg(colours::css(colours::muted)));
    rows_->addWidget(note);
    return note;
}
