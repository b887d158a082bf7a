#include "widgets/contextmenu.h"

#include "widgets/theme.h"

ContextMenu::ContextMenu(QWidget *parent) : QMenu(parent)
{
    setStyleSheet(theme::menuStyle());
}
