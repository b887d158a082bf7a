// A branch's naming rule and an order's detail: the folders and files that come of them.
#include "distribution/naming/foldernames.h"
#include "distribution/plan/distributionplan.h"
#include "distribution/plan/productfolders.h"
#include "files/pathgate.h"
#include "files/safename.h"
#include "fuzz/harness.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

using fuzzing::isOneComponent;
using fuzzing::require;

namespace {

const QString &root()
{
    static const QString folder = QStringLiteral("/srv/orders/");
    return folder;
}

void requireRule(const QString &text)
{
    const auto rule = namingrule::parse(text);
    if (!rule)
        return;
    require(namingrule::parse(namingrule::toText(*rule)) == rule, "a rule is read as it is written",
            text);
    namingrule::saveBody(*rule, {});
    const QString name = namingrule::folderName(*rule, namingrule::sampleValues());
    require(namingrule::namesNothing(name) || namingrule::warnings(name).isEmpty() ||
                safeFileName(name) != name || name.size() > 200,
            "a warning has a reason", name);
}

QString targetOf(const DistributionTask &task)
{
    QString folder = task.targetFolder;
    if (task.type == TaskType::CopyPhoto)
        folder += foldernames::roleFolder(task.role);
    return folder + safeFileName(task.imgName);
}

void requirePlan(const PlanRequest &request)
{
    const FindRaws besides = [](const QString &photo) {
        return QStringList(photo + QStringLiteral(".cr2"));
    };
    const OrderPlan plan = planOrder(request, besides);
    QSet<QString> targets;
    const auto requireOwn = [&](const DistributionTask &task) {
        const QString target = targetOf(task);
        require(pathgate::isBelow(target, request.orderFolder), "a file lies in its order's folder",
                target);
        require(!targets.contains(target.toCaseFolded()), "no two tasks have one target", target);
        targets.insert(target.toCaseFolded());
    };
    for (const DistributionTask &task : plan.tasks)
        requireOwn(task);
    for (const ImageFetch &fetch : plan.fetches)
        requireOwn(fetch.store);
}

void requireFolders(const QString &rule, const OrderDetail &detail)
{
    require(isOneComponent(foldernames::orderFolder(detail)), "an order's folder is one component");
    require(isOneComponent(foldernames::factoryFolder(detail)), "so is the factory's");
    const QStringList folders =
        foldernames::productFolders(namingrule::parse(rule).value_or(namingrule::Rule()), detail);
    require(folders.size() == detail.products().size(), "each product has a folder");
    QSet<QString> distinct;
    for (const QString &folder : folders) {
        require(isOneComponent(folder), "a product's folder is one component", folder);
        distinct.insert(folder.toCaseFolded());
    }
    require(distinct.size() == folders.size(), "no two products share a folder", rule);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzzing::bytesOf(data, size);
    const int end = bytes.indexOf('\n');
    const QString rule = QString::fromUtf8(bytes.left(end));
    requireRule(rule);
    const auto detail = detailOf(QJsonDocument::fromJson(bytes.mid(end + 1)).object());
    requireFolders(rule, *detail);
    PlanRequest request;
    request.detail = detail;
    request.orderFolder = root() + foldernames::orderFolder(*detail) + QLatin1Char('/');
    request.productFolders = productFolderPaths(*detail, rule, request.orderFolder);
    const bool all = size % 2 == 0;
    request.options = {all, true, all, true, true};
    for (const auto type :
         {DesignFileSplitTypes::Distribution, DesignFileSplitTypes::DownloadSelection,
          DesignFileSplitTypes::DownloadOriginals, DesignFileSplitTypes::DownloadDelivery}) {
        request.type = type;
        requirePlan(request);
    }
    return 0;
}
