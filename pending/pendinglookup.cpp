#include "pending/pendinglookup.h"

#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/servicefailure.h"

namespace pendinglookup {

QString movedText(const QString &order, const QString &target)
{
    return QStringLiteral("订单 %1 的导片路径已变化，没有登记。\n照片复制到了：%2")
        .arg(order, target);
}

void tellMissing(QWidget *window, const ServiceReply &reply, const QStringList &numbers)
{
    if (reply.outcome == ServiceReply::Outcome::NoAnswer)
        MessageBox::warning(window, QStringLiteral("订单查询失败，请检查网络后重试。"));
    else if (!reply.isSuccess())
        showServiceFailure(window, reply, reply.message);
    else if (!numbers.isEmpty())
        MessageBox::warning(window,
                            BoxText(QStringLiteral("服务端没有找到以下订单，仍会保留："), numbers));
}

} // namespace pendinglookup
