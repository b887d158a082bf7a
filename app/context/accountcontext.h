#pragma once

#include <QList>
#include <QString>

/// A branch of the studio as the login reply lists it.
struct ShopRecord
{
    QString id;
    QString name;
    QString goodsfoldernamerule; ///< the branch's rule for naming product folders
    QString
        importPublicPath; ///< root of the branch's import folders, in Windows form; may be empty
};

/// The login state and the fixed settings of the process. Plain values without a lock: all reading
/// and writing happens on the interface thread. A tool window copies what identifies it when it
/// opens and goes on with its own copy, so that two tools on two branches never act in each other's
/// name.
struct AccountContext
{
    AccountContext() = delete;

    static QString dataFolder; ///< ends with a slash
    static const QString appVersion;
    static const QString architecture;
    static QList<ShopRecord> shopList;
    static QString uid;
    static QString shopId; ///< the branch that the login listed first
    static QString superId;
    static QString eid;            ///< employee identifier
    static QString selectedShopId; ///< the branch chosen last in any tool
    static int photoMode;          ///< 0 photos, 1 trial-shoot videos, 2 retouched videos
    static QString distributionRule;
    static QString distributionSpare1;
    static QString distributionSpare2;
    static const QString apiToken;
    static QString baseUrl; ///< origin of the service, without a trailing slash
    /// Entry point of the service; computed once, a later change of baseUrl leaves it alone.
    static const QString indexUrl;
    static const QString groupParam;
    static const QString loginUrl;
    static const QString barcodeUrl;

    /// The name of the branch with that id; empty when the account has no such branch.
    static QString shopName(const QString &id);
};
