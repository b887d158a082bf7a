#pragma once

#include <QString>

/// What the distribution window is opened for: one card of the launcher each.
enum class DesignFileSplitTypes {
    DownloadOriginals, ///< "下载原始档"
    DownloadSelection, ///< "下载选片结果"
    Distribution,      ///< "设计分件"
    DownloadDelivery,  ///< "下载照片交付"
};

/// The kind of run behind a card, which says how results are counted: 1 every photo is reported to
/// the service, 2 products and a production sheet follow the photos, 3 results are only counted.
constexpr int runMode(DesignFileSplitTypes type)
{
    switch (type) {
    case DesignFileSplitTypes::DownloadOriginals:
        return 1;
    case DesignFileSplitTypes::DownloadDelivery:
        return 3;
    case DesignFileSplitTypes::DownloadSelection:
    case DesignFileSplitTypes::Distribution:
        break;
    }
    return 2;
}

/// 1: orders are searched by "order_list_type_1".
constexpr int listMode(DesignFileSplitTypes type)
{
    return type == DesignFileSplitTypes::Distribution ? 1 : 0;
}

/// The card's name; an unknown name is 设计分件.
DesignFileSplitTypes splitTypeOf(const QString &card);
QString cardName(DesignFileSplitTypes type);
