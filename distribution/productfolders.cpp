#include "distribution/productfolders.h"

#include "distribution/foldernames.h"
#include "distribution/photofiles.h"

#include <QSet>
#include <QtConcurrentMap>

namespace {

struct PhotoCopy
{
    QString name; ///< as the reply writes it
    QString source;
    QString target;
    enum class Ending { NotBegun, Copied, Failed } ending = Ending::NotBegun;
};

/// The photos of a product and of its parts.
QVector<DetailPhoto> photosOf(const DetailProduct &product)
{
    QVector<DetailPhoto> photos = product.imgs;
    for (const DetailProduct &part : product.sonGood)
        photos += photosOf(part);
    return photos;
}

/// One copy for each file, however often it is listed; two files of one name get two.
void planCopies(const QVector<DetailPhoto> &photos, const QString &folder,
                QVector<PhotoCopy> *copies)
{
    QSet<QString> sources;
    QVector<PhotoCopy> planned;
    QStringList names;
    for (const DetailPhoto &photo : photos) {
        const QString source = photofiles::localSource(photo.source());
        if (sources.contains(source))
            continue;
        sources.insert(source);
        names.append(photo.imgName);
        planned.append({photo.imgName, source, {}});
    }
    const QStringList targets = foldernames::distinctFileNames(names);
    for (int index = 0; index < planned.size(); ++index)
        planned[index].target = folder + QLatin1Char('/') + targets.at(index);
    *copies += planned;
}

QString folderFailure(const QString &name)
{
    return name + QStringLiteral(" 路径创建失败/连接不上服务端");
}

} // namespace

QStringList createProductFolders(const OrderDetail &detail, const QString &ruleText,
                                 const QString &orderFolder, const std::function<bool()> &stopped)
{
    const QString factoryName = foldernames::factoryFolder(detail);
    const QString factory = orderFolder + QLatin1Char('/') + factoryName;
    if (!photofiles::ensureFolder(factory))
        return {folderFailure(factoryName)};

    QStringList errors;
    QVector<PhotoCopy> copies;
    // Finished photos that no product uses are copied there.
    const QString leftOver = orderFolder + QLatin1Char('/') + foldernames::other +
                             QLatin1Char('/') + foldernames::finished;
    if (!photofiles::ensureFolder(leftOver))
        errors.append(folderFailure(foldernames::finished));
    const namingrule::Rule rule = namingrule::parse(ruleText).value_or(namingrule::Rule());
    const QStringList folders = foldernames::productFolders(rule, detail);
    const QVector<DetailProduct> products = detail.products();
    for (int index = 0; index < products.size(); ++index) {
        const QString folder = factory + QLatin1Char('/') + folders.at(index);
        if (photofiles::ensureFolder(folder))
            planCopies(photosOf(products.at(index)), folder, &copies);
        else
            errors.append(folderFailure(folders.at(index)));
    }

    QtConcurrent::blockingMap(copies, [&stopped](PhotoCopy &copy) {
        if (stopped && stopped())
            return;
        copy.ending = photofiles::copyOnto(copy.source, copy.target) ? PhotoCopy::Ending::Copied
                                                                     : PhotoCopy::Ending::Failed;
    });
    int notBegun = 0;
    for (const PhotoCopy &copy : qAsConst(copies)) {
        if (copy.ending == PhotoCopy::Ending::Failed)
            errors.append(copy.name + QStringLiteral("拷贝失败"));
        else if (copy.ending == PhotoCopy::Ending::NotBegun)
            ++notBegun;
    }
    if (notBegun > 0)
        errors.append(QStringLiteral("已停止，%1张产品照片未拷贝").arg(notBegun));
    return errors;
}
