#include "distribution/rules/designfilesplittypes.h"

QString cardName(DesignFileSplitTypes type)
{
    switch (type) {
    case DesignFileSplitTypes::DownloadOriginals:
        return QStringLiteral("下载原始档");
    case DesignFileSplitTypes::DownloadSelection:
        return QStringLiteral("下载选片结果");
    case DesignFileSplitTypes::DownloadDelivery:
        return QStringLiteral("下载照片交付");
    case DesignFileSplitTypes::Distribution:
        return QStringLiteral("设计分件");
    }
    Q_UNREACHABLE();
}

DesignFileSplitTypes splitTypeOf(const QString &card)
{
    for (const auto type :
         {DesignFileSplitTypes::DownloadOriginals, DesignFileSplitTypes::DownloadSelection,
          DesignFileSplitTypes::DownloadDelivery}) {
        if (cardName(type) == card)
            return type;
    }
    return DesignFileSplitTypes::Distribution;
}
