#pragma once

#include "widgets/windows/framelesswindow.h"

class QListWidget;
class QStackedWidget;
class SettingsPage;

/// 设置: a list of pages and the chosen one beside it.
class SettingsWindow : public FramelessWindow
{
    Q_OBJECT

public:
    explicit SettingsWindow(QWidget *parent = nullptr);

private:
    void addPage(SettingsPage *page);

    QListWidget *names_;
    QStackedWidget *pages_;
};
