#include "distribution/plan/productfolders.h"

#include "distribution/files/photowriting.h"
#include "distribution/files/rawfiles.h"
#include "distribution/naming/foldernames.h"
#include "files/pathgate.h"
#include "files/paths.h"
#include "tasks/task.h"
#include "tasks/workerpool.h"

#include <QFileInfo>
#include <QSet>
#include <QThread>

#include <algorithm>
#include <atomic>

namespace {

struct PhotoCopy
{
    QString name; ///< as the reply writes it
    FileOutcome file;
    QString problem; ///< what was thrown meanwhile
    enum class Ending { NotBegun, NoFolder, Copied, Failed } ending = Ending::NotBegun;
};

/// One copy for each file, however often it is listed; two files of one name get two.
void planCopies(const DetailProduct &product, const QString &folder, PhotoCopy::Ending ending,
                QVector<PhotoCopy> *copies)
{
    QSet<QString> sources;
    foldernames::DistinctNames names;
    const QVector<DetailPhoto> photos = photosById(product);
    for (const DetailPhoto &photo : photos) {
        const QString source = sourceOnDisk(photo.source());
        if (sources.contains(source))
            continue;
        sources.insert(source);
        PhotoCopy copy;
        copy.name = photo.imgName;
        copy.file.source = source;
        copy.file.target = joinLocalPath(folder, names.take(photo.imgName));
        copy.ending = ending;
        copies->append(copy);
    }
}

/// Which photo, of which product, and why as far as that can be told.
QString failure(const PhotoCopy &copy)
{
    const QString product = copy.file.target.section(QLatin1Char('/'), -2, -2);
    const QString flaw = flawOfSource(copy.file.source);
    if (!flaw.isEmpty())
        return copy.name + flaw + QStringLiteral("（") + product + QStringLiteral("）");
    QString reason;
    if (!copy.problem.isEmpty())
        reason = QStringLiteral("，") + copy.problem;
    else if (!QFileInfo(copy.file.source).isFile())
        reason = QStringLiteral("，照片不存在");
    return copy.name + QStringLiteral("拷贝失败（") + product + reason + QStringLiteral("）");
}

/// Calls \a work with each number from 0 below \a count, on this thread and on as many others as
/// the machine runs at once, and returns when all is done.
template <typename Work> void inParallel(int count, const Work &work)
{
    std::atomic<int> next{0};
    const auto takeTurns = [&] {
        for (int number = next++; number < count; number = next++)
            work(number);
    };
    const int others = std::min(count - 1, QThread::idealThreadCount());
    WorkerPool pool(QStringLiteral("product photos"), others); // waits for its end when it goes
    for (int thread = 0; thread < others; ++thread)
        pool.start(takeTurns);
    takeTurns();
}

QString folderFailure(const QString &name)
{
    return name + QStringLiteral(" 路径创建失败/连接不上服务端");
}

} // namespace

QStringList productFolderPaths(const OrderDetail &detail, const QString &ruleText,
                               const QString &orderFolder)
{
    const QString factory = joinLocalPath(orderFolder, foldernames::factoryFolder(detail));
    const namingrule::Rule rule = namingrule::parse(ruleText).value_or(namingrule::Rule());
    QStringList paths = foldernames::productFolders(rule, detail);
    for (QString &path : paths)
        path = joinLocalPath(factory, path);
    return paths;
}

QStringList createProductFolders(const OrderDetail &detail, const QString &ruleText,
                                 const QString &orderFolder, const std::function<bool()> &stopped,
                                 StepProgress *progress, QVector<FileOutcome> *files)
{
    QStringList errors;
    const QString factoryName = foldernames::factoryFolder(detail);
    const bool hasFactory = photowriting::ensureFolder(joinLocalPath(orderFolder, factoryName));
    if (!hasFactory)
        errors.append(folderFailure(factoryName));
    // Finished photos that no product uses are copied there.
    else if (!photowriting::ensureFolder(joinLocalPath(
                 joinLocalPath(orderFolder, foldernames::other), foldernames::finished)))
        errors.append(folderFailure(foldernames::finished));
    QVector<PhotoCopy> copies;
    const QStringList folders = productFolderPaths(detail, ruleText, orderFolder);
    const QVector<DetailProduct> products = detail.products();
    for (int index = 0; index < products.size(); ++index) {
        const QString &folder = folders.at(index);
        const bool isThere = hasFactory && pathgate::isBelow(folder, orderFolder) &&
                             photowriting::ensureFolder(folder);
        planCopies(products.at(index), folder,
                   isThere ? PhotoCopy::Ending::NotBegun : PhotoCopy::Ending::NoFolder, &copies);
        if (hasFactory && !isThere)
            errors.append(folderFailure(folder.section(QLatin1Char('/'), -1)));
    }

    if (progress)
        progress->total = copies.size();
    inParallel(copies.size(), [&stopped, progress, all = copies.data()](int number) {
        PhotoCopy &copy = all[number];
        if (copy.ending == PhotoCopy::Ending::NoFolder)
            return;
        copy.problem = problemOf([&] {
            if (stopped && stopped())
                return;
            const bool copied =
                flawOfSource(copy.file.source).isEmpty() && photowriting::copyOnto(&copy.file);
            copy.ending = copied ? PhotoCopy::Ending::Copied : PhotoCopy::Ending::Failed;
        });
        if (!copy.problem.isEmpty())
            copy.ending = PhotoCopy::Ending::Failed;
        if (progress && copy.ending != PhotoCopy::Ending::NotBegun)
            ++progress->done;
    });
    int notBegun = 0;
    for (const PhotoCopy &copy : qAsConst(copies)) {
        if (copy.ending == PhotoCopy::Ending::Failed)
            errors.append(failure(copy));
        else if (copy.ending == PhotoCopy::Ending::NotBegun)
            ++notBegun;
        if (files)
            files->append(copy.file);
    }
    if (notBegun > 0)
        errors.append(QStringLiteral("已停止，%1张产品照片未拷贝").arg(notBegun));
    return errors;
}
