#pragma once

#include "app/settings/settingspage.h"

/// How imported files are compared with their source; greyed where the installation decides.
class ImportPage : public SettingsPage
{
    Q_OBJECT

public:
    ImportPage();
};
