#pragma once

#include "app/shell/tools.h"
#include "widgets/orders/orderdestination.h"

#include <QHash>
#include <QPointer>
#include <QString>
#include <QVector>

#include <memory>

/// The windows of the tools that are open, at most one for each card. The windows belong to
/// themselves and are deleted when they close. The order browser leads to the others for as long as
/// it is open, and keeps this alive. Interface thread.
class ToolWindows : public std::enable_shared_from_this<ToolWindows>
{
public:
    static std::shared_ptr<ToolWindows> create(const QVector<Tool> &tools);

    /// Shows the window of the tool of that name, or brings it to the front. Nothing happens
    /// without such a tool.
    void open(const QString &label);

private:
    explicit ToolWindows(const QVector<Tool> &tools) : tools_(tools) {}

    FramelessWindow *shown(const Tool &tool);
    void open(const QString &label, const OrderPlace &place);
    void leadOn(FramelessWindow *window);
    void checkOrder(const OrderToCheck &order);

    QVector<Tool> tools_;
    QHash<QString, QPointer<FramelessWindow>> windows_; ///< by label; empty while closed
};
