#include "demo/answerparts.h"

namespace demo {

namespace {

QJsonObject verdict(const QString &code, const QString &message)
{
    return {{QStringLiteral("code"), code},
            {QStringLiteral("message"), message},
            {QStringLiteral("msg"), message}};
}

} // namespace

QString text(const char *value)
{
    return QString::fromUtf8(value);
}

QString field(const Fields &fields, const char *name)
{
    return fields.value(text(name));
}

QJsonObject success()
{
    return verdict(QStringLiteral("1"), QStringLiteral("操作成功"));
}

QJsonObject refusal(const QString &message)
{
    return verdict(QStringLiteral("0"), message);
}

} // namespace demo
