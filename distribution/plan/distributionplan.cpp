#include "distribution/plan/distributionplan.h"

#include "distribution/files/photowriting.h"
#include "distribution/naming/foldernames.h"
#include "distribution/rules/distributionrequests.h"
#include "distribution/rules/photoidentity.h"
#include "files/pathgate.h"
#include "files/safename.h"

#include <QHash>
#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

DownloadOptions defaultOptions(DesignFileSplitTypes type)
{
    DownloadOptions options;
    options.originals = type == DesignFileSplitTypes::DownloadOriginals;
    options.fullSize = !options.originals;
    options.retouched = !options.originals;
    return options;
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

/// The file or picture that a task reads, the same for every way of writing its path.
QString comparable(const DistributionTask &task)
{
    return task.type == TaskType::StorePhoto ? task.sourcePath : pathInOneForm(task.sourcePath);
}

QString fileName(const QString &path)
{
    return path.section(QLatin1Char('/'), -1);
}

QString withoutSuffix(const QString &name)
{
    return name.section(QLatin1Char('.'), 0, -2);
}

/// With its dot.
QString suffixOf(const QString &path)
{
    return path.mid(path.lastIndexOf(QLatin1Char('.')));
}

/// Products stay where they are: the request counts their folders by their places.
OrderDetail inIdOrder(OrderDetail detail)
{
    for (QVector<DetailPhoto> *photos : {&detail.images, &detail.imagesRudi, &detail.images11,
                                         &detail.images10, &detail.imagesJingxiu})
        *photos = byIds(*photos);
    return detail;
}

class Planner
{
public:
    Planner(const PlanRequest &request, const FindRaws &findRaws)
        : request_(request)
        , detail_(inIdOrder(*request.detail))
        , findRaws_(findRaws)
        , photos_(detail_)
        , retouched_(photos_,
                     request.options.retouched ? detail_.imagesJingxiu : QVector<DetailPhoto>())
        , basic_(photos_, request.options.basic || request.options.basicWithRejected
                              ? detail_.images11
                              : QVector<DetailPhoto>())
    {
    }

    OrderPlan plan()
    {
        switch (runMode(request_.type)) {
        case RunMode::Download:
            planDownload(TaskType::DownloadOriginals, TaskType::DownloadRetouched);
            break;
        case RunMode::Delivery:
            planDownload(TaskType::DeliverOriginals, TaskType::DeliverPhotos);
            break;
        case RunMode::Products:
            planDistribution();
            break;
        }
        return std::move(plan_);
    }

private:
    struct Given
    {
        QString name;
        bool isPlanned = false;
    };
    /// What is planned for one folder.
    struct Folder
    {
        foldernames::DistinctNames names;
        QHash<QString, Given> given; ///< by the name wanted and what it is made from
    };
    /// Where something goes, and whether it had not been planned before.
    struct Place
    {
        QString path;
        bool isNew = false;
    };

    void planDownload(TaskType originalsType, TaskType photosType);
    void planDistribution();
    void planSelection();
    void planProducts();
    void planSheetPictures();

    bool isLeftOut(const DetailPhoto &photo) const
    {
        return request_.leftOut.contains(photo.key());
    }
    bool isWanted(const PhotoVersions &versions, const DetailPhoto &version, const QString &kind);
    Place take(const DetailPhoto &photo, TaskType type, const QString &folder);
    void takeVersions(const QVector<DetailPhoto> &photos, const PhotoVersions &versions,
                      const QString &kind, TaskType type);
    void takeOriginals(TaskType type, const QString &folder);
    void takeThumbnail(const DetailPhoto &photo, const QString &folder);
    bool takeImproved(const DetailPhoto &photo, const QString &folder, bool together = false);
    bool takeTogether(const QString &imgName, const PhotoVersions &versions, PhotoRole role,
                      const QString &folder);
    void tellUnclear(const QString &imgName, const QString &kind);
    Place takeRole(const DetailPhoto &photo, PhotoRole role, const QString &folder);
    void fetch(const QString &url, StoredImage image, const QString &folder,
               const QString &imgName);
    Place add(DistributionTask task, const QString &subFolder = {});
    QString orderFolder(const char *sub) const
    {
        return request_.orderFolder + QString::fromUtf8(sub);
    }

    const PlanRequest &request_;
    const OrderDetail detail_;
    const FindRaws &findRaws_;
    const OrderPhotos photos_;
    const PhotoVersions retouched_; ///< as far as asked for
    const PhotoVersions basic_;
    QHash<QString, Folder> folders_; ///< by path in one case
    QSet<QString> reported_;         ///< ids whose download somebody is told of
    QSet<QString> unclear_;          ///< names and kinds that the user has been told of
    /// What is left out keeps its name: an earlier run may have written it, and its namesake must
    /// not replace it now.
    bool onlyNames_ = false;
    OrderPlan plan_;
};

/// Without a path when there is nothing that could be planned.
Planner::Place Planner::add(DistributionTask task, const QString &subFolder)
{
    if (task.imgName.isEmpty()) {
        if (!onlyNames_)
            plan_.problems.append(QStringLiteral("照片没有文件名: %1").arg(task.sourcePath));
        return {};
    }
    const QString path = task.targetFolder + subFolder;
    Folder &folder = folders_[path.toCaseFolded()];
    const QString wanted = safeFileName(task.imgName);
    const QString source = comparable(task);
    Given &given = folder.given[wanted.toCaseFolded() + QLatin1Char('\n') + source];
    if (given.name.isEmpty())
        given.name = folder.names.take(wanted);
    const QString name = given.name;
    if (onlyNames_ || given.isPlanned)
        return {path + name};
    given.isPlanned = true;
    if (!pathgate::isBelow(path + name, request_.orderFolder)) {
        plan_.problems.append(QStringLiteral("%1不在订单文件夹中，没有写入").arg(path + name));
        return {};
    }
    if (name != wanted) {
        plan_.problems.append(
            QStringLiteral("%1文件名重复，另存为 %2（%3）").arg(task.imgName, name, source));
        task.imgName = name;
    }
    if (reported_.contains(task.imageId))
        task.imageId.clear();
    if (!task.imageId.isEmpty())
        reported_.insert(task.imageId);
    plan_.tasks.append(task);
    return {path + name, true};
}

Planner::Place Planner::take(const DetailPhoto &photo, TaskType type, const QString &folder)
{
    DistributionTask task;
    task.type = type;
    task.sourcePath = photo.source();
    task.targetFolder = folder;
    task.imgName = photo.imgName;
    task.imageId = photo.id;
    return add(task);
}

/// Whether the user wants the photo that \a version is of; no when that cannot be told.
bool Planner::isWanted(const PhotoVersions &versions, const DetailPhoto &version,
                       const QString &kind)
{
    const QStringList owners = versions.ownersOf(version);
    const auto unwanted = std::count_if(owners.cbegin(), owners.cend(), [this](const QString &key) {
        return request_.leftOut.contains(key);
    });
    if (unwanted > 0 && unwanted < owners.size())
        tellUnclear(version.imgName, kind);
    return unwanted == 0;
}

void Planner::takeVersions(const QVector<DetailPhoto> &photos, const PhotoVersions &versions,
                           const QString &kind, TaskType type)
{
    for (const DetailPhoto &photo : photos) {
        const QScopedValueRollback<bool> rollback(onlyNames_, !isWanted(versions, photo, kind));
        take(photo, type, request_.orderFolder + kind + QLatin1Char('/'));
    }
}

void Planner::takeOriginals(TaskType type, const QString &folder)
{
    for (const DetailPhoto &photo : detail_.images) {
        const QScopedValueRollback<bool> rollback(onlyNames_, isLeftOut(photo));
        const Place place = take(photo, type, folder);
        const QString reported = place.isNew ? plan_.tasks.constLast().imageId : QString();
        const QString name = fileName(place.path);
        const bool renamed = !name.isEmpty() && name != safeFileName(photo.imgName);
        const QStringList raws = findRaws_(photo.source());
        for (const QString &raw : raws) {
            DetailPhoto beside;
            beside.localPath = raw;
            beside.imgName = fileName(raw);
            // It stays beside its photo, not beside the one that has the name.
            if (renamed)
                beside.imgName = withoutSuffix(name) + suffixOf(raw);
            if (take(beside, type, folder).isNew)
                plan_.tasks.last().imageId = reported;
        }
    }
}

void Planner::planDownload(TaskType originalsType, TaskType photosType)
{
    const DownloadOptions &options = request_.options;
    if (options.originals)
        takeOriginals(originalsType, orderFolder("原始档/"));
    if (options.fullSize) {
        for (const DetailPhoto &photo : detail_.images) {
            const QScopedValueRollback<bool> rollback(onlyNames_, isLeftOut(photo));
            take(photo, photosType, orderFolder("原图/"));
        }
    }
    if (options.basic || options.basicWithRejected)
        takeVersions(detail_.images11, basic_, QStringLiteral("简修"), photosType);
    if (options.basicWithRejected) {
        for (const DetailPhoto &photo : detail_.images10)
            take(photo, photosType, orderFolder("简修/汰片/"));
    }
    if (options.retouched)
        takeVersions(detail_.imagesJingxiu, retouched_, QStringLiteral("精修"), photosType);
}

void Planner::planDistribution()
{
    plan_.makesProducts = true;
    if (request_.options.originals)
        takeOriginals(TaskType::DownloadOriginals, orderFolder("其他/成品原始档/"));
    if (request_.type == DesignFileSplitTypes::Distribution)
        planProducts();
    else
        planSelection();
    if (request_.options.fullSize) {
        for (const DetailPhoto &photo : detail_.imagesRudi)
            takeRole(photo, PhotoRole::Archive, request_.orderFolder);
    }
    if (request_.options.basicWithRejected) {
        for (const DetailPhoto &photo : detail_.images10)
            takeRole(photo, PhotoRole::Rejected, request_.orderFolder);
    }
    planSheetPictures();
}

/// The finished photos together in 成品/, each once.
void Planner::planSelection()
{
    for (const DetailPhoto &photo : detail_.images) {
        const QScopedValueRollback<bool> rollback(onlyNames_, isLeftOut(photo));
        if (!takeImproved(photo, request_.orderFolder, true) && request_.options.fullSize)
            takeRole(photo, PhotoRole::Finished, request_.orderFolder);
    }
}

/// The products' photos come into the product folders when these are made; beside them go what
/// retouching has made of them, and thumbnails. What no product uses is kept together.
void Planner::planProducts()
{
    QSet<QString> used; // keys
    const QVector<DetailProduct> products = detail_.products();
    for (int index = 0; index < products.size(); ++index) {
        const QString folder = request_.productFolders.value(index) + QLatin1Char('/');
        const QVector<DetailPhoto> photos = photosById(products.at(index));
        for (const DetailPhoto &photo : photos) {
            if (const auto key = photos_.keyOf(photo))
                used.insert(*key);
            takeImproved(photo, folder);
            takeThumbnail(photo, folder);
        }
    }
    for (const DetailPhoto &photo : detail_.images) {
        const QString folder = orderFolder("其他/");
        if (used.contains(photo.key()))
            continue;
        const QScopedValueRollback<bool> rollback(onlyNames_, isLeftOut(photo));
        if (!takeImproved(photo, folder))
            takeRole(photo, PhotoRole::Finished, folder);
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
    QVector<DetailPhoto> inProducts;
    for (const DetailProduct &each : products) {
        inProducts += photosById(each);
        forEachPhoto(each, [this](const DetailProduct &product, const DetailPhoto &photo) {
            const QString url = cropUrl(product, photo);
            if (!url.isEmpty()) {
                fetch(url, StoredImage::Crop, orderFolder("裁剪/"), cropFileName(product, photo));
            }
        });
    }
    inProducts = byIds(inProducts);
    for (const DetailPhoto &photo : qAsConst(inProducts))
        takeThumbnail(photo, request_.orderFolder);
    for (const DetailPhoto &photo : detail_.imagesBiaoji) {
        fetch(photo.url, StoredImage::Marked, orderFolder("其他/标记/"), photo.imgName);
    }
    const QString number = detail_.value("orderpayforkey");
    fetch(distributionrequests::barcodeUrl(number), StoredImage::Barcode, orderFolder("其他/"),
          QStringLiteral("条形码.jpg"));
    if (!detail_.downTxt.isEmpty()) {
        DistributionTask task;
        task.type = TaskType::StorePhoto;
        task.stored = StoredImage::Delivery;
        task.targetFolder = orderFolder("其他/");
        task.imgName = QStringLiteral("快递信息.txt");
        task.data = detail_.downTxt;
        add(task);
    }
}

Planner::Place Planner::takeRole(const DetailPhoto &photo, PhotoRole role, const QString &folder)
{
    DistributionTask task;
    task.type = TaskType::CopyPhoto;
    task.role = role;
    task.sourcePath = photo.source();
    task.targetFolder = folder;
    task.imgName = photo.imgName;
    return add(task, foldernames::roleFolder(role));
}

void Planner::takeThumbnail(const DetailPhoto &photo, const QString &folder)
{
    DetailPhoto small = photo;
    small.picPath.clear();
    small.localPath = thumbnailSource(photo);
    const Place place = takeRole(small, PhotoRole::Thumbnail, folder);
    if (folder == request_.orderFolder)
        plan_.pictures.insert(small.localPath, photo.imgName, place.path);
}

/// The photo's most finished version among those asked for. True when there is one, also when it
/// cannot be told which it is: the user is told then, and gets no less finished one in its place.
/// \a together: those of all photos lie in one folder, so that it matters less whose they are.
bool Planner::takeImproved(const DetailPhoto &photo, const QString &folder, bool together)
{
    struct Kind
    {
        const PhotoVersions &versions;
        QString name;
        PhotoRole role;
    };
    for (const Kind &kind : {Kind{retouched_, QStringLiteral("精修"), PhotoRole::Retouched},
                             Kind{basic_, QStringLiteral("简修"), PhotoRole::Finished}}) {
        const PhotoVersions::Found found = kind.versions.of(photo);
        if (found.version)
            takeRole(*found.version, kind.role, folder);
        else if (found.unclear &&
                 !(together && takeTogether(photo.imgName, kind.versions, kind.role, folder)))
            tellUnclear(photo.imgName, kind.name);
        if (found.version || found.unclear)
            return true;
    }
    return false;
}

bool Planner::takeTogether(const QString &imgName, const PhotoVersions &versions, PhotoRole role,
                           const QString &folder)
{
    const QStringList names = photos_.namesakes(imgName);
    if (std::any_of(names.cbegin(), names.cend(),
                    [this](const QString &key) { return request_.leftOut.contains(key); }))
        return false;
    const QVector<DetailPhoto> all = versions.oneForEach(imgName);
    for (const DetailPhoto &version : all)
        takeRole(version, role, folder);
    return !all.isEmpty();
}

void Planner::tellUnclear(const QString &imgName, const QString &kind)
{
    const QString problem =
        QStringLiteral("%1有多张同名照片，无法判断%2属于哪一张，没有拷贝").arg(imgName, kind);
    if (onlyNames_ || unclear_.contains(problem))
        return;
    unclear_.insert(problem);
    plan_.problems.append(problem);
}

void Planner::fetch(const QString &url, StoredImage image, const QString &folder,
                    const QString &imgName)
{
    DistributionTask store;
    store.type = TaskType::StorePhoto;
    store.stored = image;
    store.sourcePath = url;
    store.targetFolder = folder;
    store.imgName = imgName;
    if (url.isEmpty()) {
        plan_.problems.append(QStringLiteral("%1没有图片地址").arg(imgName));
        return;
    }
    const Place place = add(store);
    if (place.isNew)
        plan_.fetches.append({url, plan_.tasks.takeLast()});
    plan_.pictures.insert(url, imgName, place.path);
}

} // namespace

QString thumbnailSource(const DetailPhoto &photo)
{
    return photo.localPath90.isEmpty() ? photowriting::thumbnailOf(photo.source())
                                       : photo.localPath90;
}

OrderPlan planOrder(const PlanRequest &request, const FindRaws &findRaws)
{
    return Planner(request, findRaws).plan();
}
