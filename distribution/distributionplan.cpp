#include "distribution/distributionplan.h"

#include "distribution/distributionrequests.h"
#include "distribution/foldernames.h"
#include "distribution/photofiles.h"
#include "files/safename.h"

#include <QHash>

#include <utility>

DownloadOptions defaultOptions(DesignFileSplitTypes type)
{
    DownloadOptions options;
    options.originals = type == DesignFileSplitTypes::DownloadOriginals;
    options.fullSize = !options.originals;
    options.retouched = !options.originals;
    return options;
}

QString orderFolderName(const OrderDetail &detail)
{
    return safeFileName(QStringLiteral("%1-服务%2 %3-%4 %5")
                            .arg(detail.value("orderpayforkey"), detail.value("servicetimes"),
                                 detail.value("mname"), detail.value("wname"),
                                 detail.value("pickuptypename")));
}

QString roleFolder(const QString &role)
{
    if (role == photorole::thumbnail)
        return QStringLiteral("缩略图/");
    if (role == photorole::rejected || role == photorole::archive)
        return role + QLatin1Char('/');
    return QStringLiteral("成品/");
}

QString cropFileName(const DetailProduct &product, const DetailPhoto &photo)
{
    return safeFileName(product.id + QLatin1Char('_') + photo.imgName);
}

QString cropUrl(const DetailProduct &product, const DetailPhoto &photo)
{
    if (photo.croppingImgUrl.isEmpty() && product.imgs.size() == 1)
        return product.croppingImgUrl;
    return photo.croppingImgUrl;
}

namespace {

/// The photos of a product and of what it consists of.
template <typename Visit> void forEachPhoto(const DetailProduct &product, const Visit &visit)
{
    for (const DetailPhoto &photo : product.imgs)
        visit(product, photo);
    for (const DetailProduct &part : product.sonGood)
        forEachPhoto(part, visit);
}

QHash<QString, DetailPhoto> byName(const QVector<DetailPhoto> &photos)
{
    QHash<QString, DetailPhoto> named;
    for (const DetailPhoto &photo : photos)
        named.insert(photo.imgName, photo);
    return named;
}

/// The file that a task reads, the same for every way of writing its path.
QString comparable(const DistributionTask &task)
{
    QString path = task.sourcePath;
    path.replace(QLatin1String("\\/"), QLatin1String("/"));
    if (task.type == tasktype::copyPhoto)
        path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return path;
}

class Planner
{
public:
    Planner(const PlanRequest &request, const FindRaws &findRaws)
        : request_(request), detail_(*request.detail), findRaws_(findRaws)
    {
        for (const DetailPhoto &photo : detail_.images) {
            if (request.leftOut.contains(photo.id))
                leftOutNames_.insert(photo.imgName);
        }
        if (request.options.retouched)
            retouched_ = byName(detail_.imagesJingxiu);
        if (request.options.basic || request.options.basicWithRejected)
            basic_ = byName(detail_.images11);
    }

    OrderPlan plan()
    {
        switch (runMode(request_.type)) {
        case 1:
            planDownload(tasktype::downloadOriginals, tasktype::downloadRetouched);
            break;
        case 3:
            planDownload(tasktype::deliverOriginals, tasktype::deliverPhotos);
            break;
        default:
            planDistribution();
        }
        return std::move(plan_);
    }

private:
    void planDownload(const QString &originalsType, const QString &photosType);
    void planDistribution();
    void planSelection();
    void planProducts();
    void planSheetPictures();

    void takeAll(const QVector<DetailPhoto> &photos, const QString &type, const char *folder,
                 bool chosen = true);
    void takeOriginals(const QString &type, const QString &folder);
    void takeThumbnail(const DetailPhoto &photo, const QString &folder);
    bool takeImproved(const QString &imgName, const QString &folder);
    void takeRole(const DetailPhoto &photo, const QString &role, const QString &folder);
    void fetch(const QString &url, const QString &imageType, const QString &folder,
               const QString &imgName);
    bool add(DistributionTask task, const QString &subFolder = {});
    QString freeName(DistributionTask &task, const QString &subFolder, const QString &source);
    QString orderFolder(const char *sub) const
    {
        return request_.orderFolder + QString::fromUtf8(sub);
    }

    const PlanRequest &request_;
    const OrderDetail &detail_;
    const FindRaws &findRaws_;
    QSet<QString> leftOutNames_;
    QHash<QString, DetailPhoto> retouched_; ///< as far as asked for, by name
    QHash<QString, DetailPhoto> basic_;
    QHash<QString, QString> targets_; ///< source by target path in lower case
    QSet<QString> reported_;          ///< ids whose download somebody is told of
    OrderPlan plan_;
};

/// The name that the task's file gets; empty when another task brings the same file there.
QString Planner::freeName(DistributionTask &task, const QString &subFolder, const QString &source)
{
    const QString folder = (task.targetFolder + subFolder).toLower();
    const QString wanted = safeFileName(task.imgName);
    for (QStringList sameNames{wanted};; sameNames.append(wanted)) {
        const QString name = foldernames::distinctFileNames(sameNames).constLast();
        const auto other = targets_.constFind(folder + name.toLower());
        if (other != targets_.constEnd()) {
            if (*other == source)
                return {};
            continue;
        }
        if (sameNames.size() > 1) {
            plan_.problems.append(
                QStringLiteral("%1文件名重复，另存为 %2（%3）").arg(task.imgName, name, source));
            task.imgName = name;
        }
        return name;
    }
}

/// False when there is nothing to do: another task does the same, or the target is taken.
bool Planner::add(DistributionTask task, const QString &subFolder)
{
    if (task.imgName.isEmpty()) {
        plan_.problems.append(QStringLiteral("照片没有文件名: %1").arg(task.sourcePath));
        return false;
    }
    const QString source = comparable(task);
    const QString name = freeName(task, subFolder, source);
    if (name.isEmpty())
        return false;
    targets_.insert((task.targetFolder + subFolder + name).toLower(), source);
    if (reported_.contains(task.imageId))
        task.imageId.clear();
    if (!task.imageId.isEmpty())
        reported_.insert(task.imageId);
    plan_.tasks.append(task);
    return true;
}

void Planner::takeAll(const QVector<DetailPhoto> &photos, const QString &type, const char *folder,
                      bool chosen)
{
    for (const DetailPhoto &photo : photos) {
        if (chosen && leftOutNames_.contains(photo.imgName))
            continue;
        DistributionTask task;
        task.type = type;
        task.sourcePath = photo.source();
        task.targetFolder = orderFolder(folder);
        task.imgName = photo.imgName;
        task.imageId = photo.id;
        add(task);
    }
}

void Planner::takeOriginals(const QString &type, const QString &folder)
{
    for (const DetailPhoto &photo : detail_.images) {
        if (leftOutNames_.contains(photo.imgName))
            continue;
        DistributionTask task;
        task.type = type;
        task.sourcePath = photo.source();
        task.targetFolder = folder;
        task.imgName = photo.imgName;
        task.imageId = photo.id;
        add(task);
        const QStringList raws = findRaws_(photo.source());
        for (const QString &raw : raws) {
            DistributionTask beside = task;
            beside.sourcePath = raw;
            beside.imgName = raw.section(QLatin1Char('/'), -1);
            beside.imageId.clear();
            add(beside);
        }
    }
}

void Planner::planDownload(const QString &originalsType, const QString &photosType)
{
    const DownloadOptions &options = request_.options;
    if (options.originals)
        takeOriginals(originalsType, orderFolder("原始档/"));
    if (options.fullSize)
        takeAll(detail_.images, photosType, "原图/");
    if (options.basic || options.basicWithRejected)
        takeAll(detail_.images11, photosType, "简修/");
    if (options.basicWithRejected)
        takeAll(detail_.images10, photosType, "简修/汰片/", false);
    if (options.retouched)
        takeAll(detail_.imagesJingxiu, photosType, "精修/");
}

void Planner::planDistribution()
{
    plan_.makesProducts = true;
    if (request_.options.originals)
        takeOriginals(tasktype::downloadOriginals, orderFolder("其他/成品原始档/"));
    if (request_.type == DesignFileSplitTypes::Distribution)
        planProducts();
    else
        planSelection();
    if (request_.options.fullSize) {
        for (const DetailPhoto &photo : detail_.imagesRudi)
            takeRole(photo, photorole::archive, request_.orderFolder);
    }
    if (request_.options.basicWithRejected) {
        for (const DetailPhoto &photo : detail_.images10)
            takeRole(photo, photorole::rejected, request_.orderFolder);
    }
    planSheetPictures();
}

/// The finished photos together in 成品/, each once.
void Planner::planSelection()
{
    for (const DetailPhoto &photo : detail_.images) {
        if (!takeImproved(photo.imgName, request_.orderFolder) && request_.options.fullSize)
            takeRole(photo, photorole::finished, request_.orderFolder);
    }
}

/// The products' photos come into the product folders when these are made; beside them go what
/// retouching has made of them, and thumbnails. What no product uses is kept together.
void Planner::planProducts()
{
    QSet<QString> used;
    const QVector<DetailProduct> products = detail_.products();
    for (int index = 0; index < products.size(); ++index) {
        const QString folder = request_.productFolders.value(index) + QLatin1Char('/');
        forEachPhoto(products.at(index), [&](const DetailProduct &, const DetailPhoto &photo) {
            used.insert(photo.imgName);
            takeImproved(photo.imgName, folder);
            takeThumbnail(photo, folder);
        });
    }
    for (const DetailPhoto &photo : detail_.images) {
        const QString folder = orderFolder("其他/");
        if (!used.contains(photo.imgName) && !takeImproved(photo.imgName, folder))
            takeRole(photo, photorole::finished, folder);
    }
}

/// What the production sheet shows.
void Planner::planSheetPictures()
{
    for (const DetailPhoto &photo : detail_.images)
        takeThumbnail(photo, request_.orderFolder);
    for (const DetailPhoto &photo : detail_.imagesRudi)
        takeThumbnail(photo, request_.orderFolder);
    const QVector<DetailProduct> products = detail_.products();
    for (const DetailProduct &each : products) {
        forEachPhoto(each, [this](const DetailProduct &product, const DetailPhoto &photo) {
            takeThumbnail(photo, request_.orderFolder);
            const QString url = cropUrl(product, photo);
            if (!url.isEmpty()) {
                fetch(url, imagetype::crop, orderFolder("裁剪/"), cropFileName(product, photo));
            }
        });
    }
    for (const DetailPhoto &photo : detail_.imagesBiaoji) {
        fetch(photo.url, imagetype::marked, orderFolder("其他/标记/"), photo.imgName);
    }
    const QString number = detail_.value("orderpayforkey");
    fetch(distributionrequests::barcodeUrl(number), imagetype::barcode, orderFolder("其他/"),
          QStringLiteral("条形码.jpg"));
    if (!detail_.downTxt.isEmpty()) {
        DistributionTask task;
        task.type = tasktype::storePhoto;
        task.subType = imagetype::delivery;
        task.targetFolder = orderFolder("其他/");
        task.imgName = QStringLiteral("快递信息.txt");
        task.data = detail_.downTxt;
        add(task);
    }
}

void Planner::takeRole(const DetailPhoto &photo, const QString &role, const QString &folder)
{
    DistributionTask task;
    task.type = tasktype::copyPhoto;
    task.subType = role;
    task.sourcePath = photo.source();
    task.targetFolder = folder;
    task.imgName = photo.imgName;
    add(task, roleFolder(role));
}

void Planner::takeThumbnail(const DetailPhoto &photo, const QString &folder)
{
    DetailPhoto small = photo;
    small.picPath.clear();
    if (photo.localPath90.isEmpty())
        small.localPath = photofiles::thumbnailOf(photo.source());
    else
        small.localPath = photo.localPath90;
    takeRole(small, photorole::thumbnail, folder);
}

/// The photo's most finished version among those asked for, if there is one.
bool Planner::takeImproved(const QString &imgName, const QString &folder)
{
    const auto retouched = retouched_.constFind(imgName);
    const auto basic = basic_.constFind(imgName);
    if (retouched != retouched_.constEnd())
        takeRole(*retouched, photorole::retouched, folder);
    else if (basic != basic_.constEnd())
        takeRole(*basic, photorole::finished, folder);
    else
        return false;
    return true;
}

void Planner::fetch(const QString &url, const QString &imageType, const QString &folder,
                    const QString &imgName)
{
    DistributionTask store;
    store.type = tasktype::storePhoto;
    store.subType = imageType;
    store.sourcePath = url;
    store.targetFolder = folder;
    store.imgName = imgName;
    if (url.isEmpty()) {
        plan_.problems.append(QStringLiteral("%1没有图片地址").arg(imgName));
        return;
    }
    if (add(store))
        plan_.fetches.append({url, plan_.tasks.takeLast()});
}

} // namespace

OrderPlan planOrder(const PlanRequest &request, const FindRaws &findRaws)
{
    return Planner(request, findRaws).plan();
}
