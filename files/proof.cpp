#include "files/proof.h"

QString proofText(Proof proof)
{
    switch (proof) {
    case Proof::None:
        break;
    case Proof::Size:
        return QStringLiteral("大小一致");
    case Proof::Cache:
        return QStringLiteral("已读回（缓存）");
    case Proof::Server:
        return QStringLiteral("已从服务器读回");
    case Proof::Medium:
        return QStringLiteral("已从介质读回");
    case Proof::Derived:
        return QStringLiteral("由原片生成，可完整读取");
    }
    return {};
}
