#pragma once

#include <QMenu>

/// A context menu in the program's look.
class ContextMenu : public QMenu
{
    Q_OBJECT

public:
    explicit ContextMenu(QWidget *parent = nullptr);
};
