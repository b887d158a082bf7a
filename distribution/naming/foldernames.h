#pragma once

#include "distribution/naming/namingrule.h"
#include "distribution/rules/orderdetail.h"
#include "distribution/rules/photorole.h"

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>

/// The names of the folders that one order is distributed into. Each result is one safe component
/// of a path, without a slash. Pure functions.
namespace foldernames {

/// Folders and files below an order's folder.
inline const QString other = QStringLiteral("其他");
inline const QString finished = QStringLiteral("成品");
inline const QString thumbnails = QStringLiteral("缩略图");
inline const QString marked = QStringLiteral("标记"); ///< below "其他"
inline const QString crops = QStringLiteral("裁剪");
inline const QString barcodeFile = QStringLiteral("条形码.jpg"); ///< below "其他"
inline const QString sheetFile = QStringLiteral("明细制作单.pdf");

/// Holds everything of one order.
QString orderFolder(const OrderDetail &detail);
/// In the order's folder; holds the folders of its products.
QString factoryFolder(const OrderDetail &detail);

/// What the fields of a naming rule contribute for one product.
namingrule::Values ruleValues(const OrderDetail &detail, const DetailProduct &product);
/// A product's folder: by \a rule, or by the built-in pattern where there is no rule or where the
/// rule names nothing. \a number counts the order's products from 1.
QString productFolder(const namingrule::Rule &rule, const OrderDetail &detail,
                      const DetailProduct &product, int number);
QString builtInProductFolder(const OrderDetail &detail, const DetailProduct &product, int number);

/// One folder for each of detail.products(), all different. Of those that would have the same name
/// the one with the smallest id gets it and the others follow by their ids, so that the next run
/// meets the same folders, whatever order the products come in.
QStringList productFolders(const namingrule::Rule &rule, const OrderDetail &detail);

/// The sub-folder that \a role fills, with a slash.
QString roleFolder(PhotoRole role);

/// Gives out names for one folder, safe and all different. Names that differ in case alone are one
/// on the users' machines: the second that would have the same name gets " (2)" behind it, before
/// its suffix, and so on.
class DistinctNames
{
public:
    QString take(const QString &name);

private:
    QSet<QString> taken_;
    QHash<QString, int> next_; ///< the number to try, by name
};

} // namespace foldernames
