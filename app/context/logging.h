#pragma once

#include <QLoggingCategory>

/// Everything the program logs beyond its fixed diagnostic lines, so that it can be switched off by
/// itself (QT_LOGGING_RULES="tessavo=false").
Q_DECLARE_LOGGING_CATEGORY(lcTessavo)
