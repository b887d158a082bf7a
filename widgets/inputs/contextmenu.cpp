#include "widgets/inputs/contextmenu.h"

#include "widgets/theme/theme.h"

ContextMenu::ContextMenu(QWidget *parent) : QMenu(parent)
{
    setStyleSheet(theme::menuStyle());
}
