#include "widgets/boxes/servicefailure.h"

#include "widgets/boxes/messagebox.h"
#include "widgets/boxes/toast.h"

void showServiceFailure(QWidget *parent, const ServiceReply &reply, const QString &refusal)
{
    switch (reply.outcome) {
    case ServiceReply::Outcome::NoAnswer:
        Toast::show(parent, QStringLiteral("网络连接失败，请稍后重试"));
        return;
    case ServiceReply::Outcome::CertificateRefused:
        showCertificateRefused(parent, reply.message);
        return;
    case ServiceReply::Outcome::Refused:
    case ServiceReply::Outcome::Success:
        break;
    }
    if (!refusal.isEmpty())
        MessageBox::warning(parent, refusal);
    else if (!reply.isSuccess())
        MessageBox::warning(parent, QStringLiteral("服务拒绝了请求，但没有说明原因"));
}

void showCertificateRefused(QWidget *parent, const QString &reason)
{
    MessageBox::warning(parent,
                        QStringLiteral("服务器的安全证书不受信任，已停止连接，没有发送任何数据。\n"
                                       "请联系管理员检查服务地址和证书设置。\n\n原因: %1")
                            .arg(reason));
}
