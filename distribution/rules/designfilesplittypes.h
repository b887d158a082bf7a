#pragma once

#include <QString>

/// What the distribution window is opened for: one card of the launcher each.
enum class DesignFileSplitTypes {
    DownloadOriginals, ///< "下载原始档"
    DownloadSelection, ///< "下载选片结果"
    Distribution,      ///< "设计分件"
    DownloadDelivery,  ///< "下载照片交付"
};

/// The kind of run behind a card, which says how results are counted.
enum class RunMode {
    Download = 1, ///< every photo is reported to the service
    Products = 2, ///< products and a production sheet follow the photos
    Delivery = 3, ///< results are only counted
};

/// By which of its two actions the service is asked for orders.
enum class ListMode {
    Plain = 0,
    Typed = 1, ///< "order_list_type_1"
};

constexpr RunMode runMode(DesignFileSplitTypes type)
{
    switch (type) {
    case DesignFileSplitTypes::DownloadOriginals:
        return RunMode::Download;
    case DesignFileSplitTypes::DownloadSelection:
    case DesignFileSplitTypes::Distribution:
        return RunMode::Products;
    case DesignFileSplitTypes::DownloadDelivery:
        return RunMode::Delivery;
    }
    Q_UNREACHABLE();
}

constexpr ListMode listMode(DesignFileSplitTypes type)
{
    switch (type) {
    case DesignFileSplitTypes::Distribution:
        return ListMode::Typed;
    case DesignFileSplitTypes::DownloadOriginals:
    case DesignFileSplitTypes::DownloadSelection:
    case DesignFileSplitTypes::DownloadDelivery:
        return ListMode::Plain;
    }
    Q_UNREACHABLE();
}

/// The card's name; an unknown name is 设计分件.
DesignFileSplitTypes splitTypeOf(const QString &card);
QString cardName(DesignFileSplitTypes type);
