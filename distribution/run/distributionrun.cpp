#include "distribution/run/distributionrun.h"

#include "distribution/files/rawfiles.h"
#include "distribution/naming/foldernames.h"
#include "distribution/plan/productfolders.h"
#include "distribution/rules/distributionrequests.h"
#include "distribution/run/fjdatathread.h"
#include "files/filewriting.h"
#include "files/pathgate.h"
#include "files/paths.h"
#include "files/safename.h"
#include "ledger/ledger.h"
#include "tasks/background.h"

#include <QDebug>
#include <QDir>
#include <QDirIterator>
#include <QJsonObject>
#include <QThread>

#include <utility>

namespace {

constexpr int stepIntervalMs = 250;

struct ReadDetail
{
    OrderDetailPtr detail;
    QString folder; ///< name of the order's
};

struct Planned
{
    QString folderError;
    OrderPlan plan;
};

/// Blocks; for worker threads.
Planned prepare(PlanRequest request, const QString &namingRule)
{
    const pathgate::Flaw flaw = pathgate::flawOf(request.orderFolder);
    if (flaw != pathgate::Flaw::None)
        return {request.orderFolder + QLatin1Char(' ') + pathgate::reasonOf(flaw), {}};
    if (!makeFolder(request.orderFolder))
        return {request.orderFolder + QStringLiteral(" 路径创建失败/连接不上服务端"), {}};
    // What an earlier run that was killed has left must not go to the factory.
    removeStaleTemporaries(request.orderFolder);
    QDirIterator below(request.orderFolder, QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                       QDirIterator::Subdirectories);
    while (below.hasNext())
        removeStaleTemporaries(below.next());
    request.productFolders = productFolderPaths(*request.detail, namingRule, request.orderFolder);
    RawFiles raws;
    return {{}, planOrder(request, [&raws](const QString &photo) { return raws.beside(photo); })};
}

QString yesNo(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

bool isDownload(TaskType type)
{
    switch (type) {
    case TaskType::DownloadRetouched:
    case TaskType::DownloadOriginals:
    case TaskType::DeliverOriginals:
    case TaskType::DeliverPhotos:
        return true;
    case TaskType::CopyPhoto:
    case TaskType::StorePhoto:
    case TaskType::CreateProducts:
    case TaskType::MakeSheet:
        return false;
    }
    Q_UNREACHABLE();
}

} // namespace

DistributionRun::DistributionRun(QObject *parent)
    : QObject(parent)
    , pool_(QStringLiteral("distribution"), QThread::idealThreadCount())
    , fetches_(this)
    , reports_(this)
    , detailCall_(this)
{
    qRegisterMetaType<OrderData>();
    qRegisterMetaType<OrderIdentity>();
    qRegisterMetaType<OrderDetailPtr>();
    qRegisterMetaType<RunSummary>();
    qRegisterMetaType<TaskResult>();
    stepTimer_.setInterval(stepIntervalMs);
    connect(&stepTimer_, &QTimer::timeout, this, &DistributionRun::announceStep);
    connect(&fetches_, &ImageFetches::fetched, this, &DistributionRun::startTask);
    connect(&fetches_, &ImageFetches::failed, this,
            [this](const DistributionTask &store, const QString &error) {
                FileOutcome file;
                file.target = joinLocalPath(store.targetFolder, safeFileName(store.imgName));
                count({false, store.type, file.target, {}, error, {file}, {}});
            });
    connect(&reports_, &DownloadReports::allAnswered, this, &DistributionRun::announceIdle);
}

DistributionRun::~DistributionRun()
{
    stopFlag_.raise();
    pool_.waitForDone();
}

bool DistributionRun::start(const QVector<OrderData> &orders, const RunSettings &settings)
{
    if (running_ || orders.isEmpty())
        return false;
    orders_ = orders;
    settings_ = settings;
    errors_.clear();
    refused_.clear();
    proofs_.clear();
    running_ = true;
    stopFlag_ = StopFlag();
    completed_ = 0;
    folders_.clear();
    index_ = -1;
    recording_.begin(settings.type, settings.identity);
    stepTimer_.start();
    startNextOrder();
    return true;
}

void DistributionRun::stop()
{
    if (!running_ || stopFlag_.isRaised())
        return;
    stopFlag_.raise();
    detailCall_.cancel();
    reading_.abandon();
    proving_.abandon();
    fetches_.cancel();
    if (tasksInFlight_ == 0)
        finish();
}

TransferProgress DistributionRun::progress() const
{
    TransferProgress progress{copyPicFinishNum_, expected_, bytesWritten_, 0};
    if (running_ && index_ >= 0 && index_ < orders_.size())
        progress.order = orders_.at(index_).displayNumber();
    return progress;
}

double DistributionRun::share() const
{
    return running_ ? (qMax(0, index_) + progress().share()) / qMax(1, orders_.size()) : 0;
}

void DistributionRun::startNextOrder()
{
    if (++index_ >= orders_.size()) {
        finish();
        return;
    }
    claim_.release();
    detail_.reset();
    expected_ = 0;
    photoResults_ = 0;
    copyPicFinishNum_ = 0;
    bytesWritten_ = 0;
    proFinishNum_ = 0;
    downPhotoFinishNums_ = 0;
    isSaveHtml_ = false;
    listSize_ = 0;
    listSettled_ = 0;
    orderTask_.reset();
    files_.clear();
    missing_.clear();
    outstanding_.clear();
    emit orderStarted(index_ + 1, orders_.size(), current());
    emit progressChanged(0, 0);
    announceStep();
    if (!orderqueries::mayWorkOn(current().identity(), settings_.identity)) {
        skipOrder(orderqueries::otherBranchText(current().displayNumber()));
        return;
    }
    if (current().orderPhotoId.isEmpty()) {
        skipOrder(QStringLiteral("订单没有照片编号"));
        return;
    }
    const auto conflict =
        ordersatwork::claim({current().identity()}, cardName(settings_.type), &claim_);
    if (conflict) {
        skipOrder(ordersatwork::refusal(current().displayNumber(), conflict->tool));
        return;
    }
    detailCall_.start(distributionrequests::detailAction,
                      distributionrequests::detailBody(current(), settings_.identity),
                      [this](const ServiceReply &reply) { onDetail(reply); });
}

void DistributionRun::onDetail(const ServiceReply &reply)
{
    if (!reply.isSuccess()) {
        const QString said = reply.message.isEmpty() ? reply.msg : reply.message;
        skipOrder(said.isEmpty() ? QStringLiteral("连接不上服务端") : said);
        return;
    }
    onProcessor(
        this,
        [object = reply.object] {
            const OrderDetailPtr detail = detailOf(object);
            return ReadDetail{detail, foldernames::orderFolder(*detail)};
        },
        reading_.only([this](const ReadDetail &read) { onDetailRead(read.detail, read.folder); }));
}

void DistributionRun::onDetailRead(const OrderDetailPtr &detail, const QString &folderName)
{
    const QString photoSet = detail->value("order_photo_id");
    if (!photoSet.isEmpty() && photoSet != current().orderPhotoId) {
        skipOrder(QStringLiteral("服务端返回了其他订单的资料"));
        return;
    }
    if (detail->value("orderpayforkey").isEmpty()) {
        skipOrder(QStringLiteral("订单资料不完整，没有订单号"));
        return;
    }
    emit detailRead(current().identity(), detail);
    planCurrent(detail, folderName);
}

void DistributionRun::planCurrent(const OrderDetailPtr &detail, const QString &folderName)
{
    detail_ = detail;
    orderFolder_ =
        QDir::cleanPath(settings_.directory) + QLatin1Char('/') + folderName + QLatin1Char('/');
    qDebug() << "生成的导入路径是：" << orderFolder_;
    const QString folder = orderFolder_.toCaseFolded();
    if (folders_.contains(folder)) {
        skipOrder(QStringLiteral("与前面的订单文件夹相同，没有下载（%1）").arg(orderFolder_));
        return;
    }
    folders_.insert(folder);
    PlanRequest request;
    request.type = settings_.type;
    request.options = settings_.options;
    request.detail = detail;
    request.orderFolder = orderFolder_;
    request.leftOut = settings_.leftOut.value(current().identity());
    // The raw files beside the photos are looked for.
    const QString photo = detail->images.isEmpty() ? QString() : detail->images.first().source();
    onDisk(
        this, {orderFolder_, photo},
        [request, rule = settings_.namingRule] { return prepare(request, rule); },
        [this, detail](const Planned &planned) {
            if (!running_ || detail != detail_ || stopFlag_.isRaised())
                return; // stopped meanwhile
            onPlanned(planned.folderError, planned.plan);
        });
}

void DistributionRun::onPlanned(const QString &folderError, const OrderPlan &plan)
{
    if (!folderError.isEmpty()) {
        skipOrder(folderError);
        return;
    }
    for (const QString &problem : plan.problems)
        addErrors(problem);
    pictures_ = plan.pictures;
    photoResults_ = plan.tasks.size() + plan.fetches.size();
    expected_ = photoResults_ + (plan.makesProducts ? 2 : 0);
    listSize_ = detail_->images.size();
    listSettled_ = listSize_;
    for (const DistributionTask &task : plan.tasks) {
        if (!task.imageId.isEmpty())
            ++outstanding_[task.imageId];
    }
    listSettled_ -= outstanding_.size();
    emit progressChanged(0, expected_);
    if (expected_ == 0) {
        if (plan.problems.isEmpty())
            addErrors(QStringLiteral("没有可下载的照片"));
        completeOrder();
        return;
    }
    for (const DistributionTask &task : plan.tasks)
        startTask(task);
    fetches_.add(plan.fetches);
    if (photoResults_ == 0)
        startOrderTask(TaskType::CreateProducts);
}

void DistributionRun::startTask(const DistributionTask &task)
{
    ++tasksInFlight_;
    const auto thread = std::make_shared<FJDataThread>(task, stopFlag_, perform_);
    inPool(
        &pool_, this,
        [thread] {
            thread->run();
            return thread->result();
        },
        [this](const std::optional<TaskResult> &result) { takeResult(result); });
}

/// Of one task that has ended.
void DistributionRun::takeResult(const std::optional<TaskResult> &result)
{
    --tasksInFlight_;
    if (result)
        count(*result);
    if (running_ && stopFlag_.isRaised() && tasksInFlight_ == 0)
        finish();
    announceIdle();
}

void DistributionRun::count(const TaskResult &result)
{
    ++copyPicFinishNum_;
    files_ += result.files;
    for (const FileOutcome &file : result.files)
        bytesWritten_ += file.isWritten() ? file.size : 0;
    recording_.add(current(), result.files, result.files.size() == 1 ? result.errmsg : QString());
    if (isDownload(result.type))
        ++downPhotoFinishNums_;
    addErrorsOf(result);
    switch (runMode(settings_.type)) {
    case RunMode::Download:
        countDownload(result);
        break;
    case RunMode::Products:
        countDistribution(result);
        break;
    case RunMode::Delivery:
        countDelivery();
        break;
    }
    emit resultCounted(result.success, taskTypeText(result.type), result.copyFile, result.imgData,
                       result.errmsg);
}

void DistributionRun::countDelivery()
{
    emit progressChanged(copyPicFinishNum_, expected_);
    if (copyPicFinishNum_ == expected_)
        completeOrder();
}

void DistributionRun::countDownload(const TaskResult &result)
{
    emit progressChanged(copyPicFinishNum_, expected_);
    settle(result);
    if (copyPicFinishNum_ == expected_)
        completeOrder();
}

void DistributionRun::countDistribution(const TaskResult &result)
{
    settle(result);
    const int progress = copyPicFinishNum_ + listSettled_ - listSize_;
    qDebug() << "下载选片结果 copypic" << progress << yesNo(isSaveHtml_);
    if (!result.errmsg.isEmpty())
        qDebug().noquote() << "有失败得照片: " << result.errmsg;
    if (result.type == TaskType::CreateProducts) {
        ++proFinishNum_;
        qDebug().noquote() << taskTypeText(result.type)
                           << (result.success ? QStringLiteral(" 成功  ")
                                              : QStringLiteral("失败  "));
    }
    if (result.type == TaskType::MakeSheet) {
        isSaveHtml_ = true;
        emit progressChanged(expected_, expected_);
        completeOrder();
        return;
    }
    emit progressChanged(qMax(0, progress), expected_);
    if (stopFlag_.isRaised())
        return;
    if (result.type == TaskType::CreateProducts)
        startOrderTask(TaskType::MakeSheet);
    else if (copyPicFinishNum_ == photoResults_)
        startOrderTask(TaskType::CreateProducts);
}

void DistributionRun::startOrderTask(TaskType type)
{
    DistributionTask task;
    task.type = type;
    task.targetFolder = orderFolder_;
    task.detail = detail_;
    task.pictures = pictures_;
    task.namingRule = settings_.namingRule;
    task.progress = std::make_shared<StepProgress>();
    productProgress_ = task.progress;
    orderTask_ = type;
    announceStep();
    startTask(task);
}

void DistributionRun::announceStep()
{
    const auto counted = [](const QString &what, int done, int total) {
        return QStringLiteral("%1 %2/%3").arg(what, QString::number(done), QString::number(total));
    };
    if (!running_)
        emit stepChanged({});
    else if (orderTask_ == TaskType::MakeSheet)
        emit stepChanged(QStringLiteral("正在生成明细制作单"));
    else if (orderTask_ == TaskType::CreateProducts)
        emit stepChanged(counted(QStringLiteral("正在创建产品文件夹"), productProgress_->done,
                                 productProgress_->total));
    else if (expected_ == 0)
        emit stepChanged(QStringLiteral("正在读取订单资料"));
    else
        emit stepChanged(counted(tasksInFlight_ > 0 ? QStringLiteral("正在拷贝照片")
                                                    : QStringLiteral("等待服务端图片"),
                                 copyPicFinishNum_, photoResults_));
}

/// The service is told of a photo when the last of its files is on the medium.
void DistributionRun::settle(const TaskResult &result)
{
    const auto files = outstanding_.find(result.imgData);
    if (files == outstanding_.end())
        return;
    if (result.success && --*files > 0)
        return;
    outstanding_.erase(files);
    ++listSettled_;
    if (!result.success)
        return;
    reports_.add(result.imgData, settings_.identity);
    emit photoDownloaded(current().identity(), result.imgData);
}

/// A photo that several products show is missing once.
void DistributionRun::addErrorsOf(const TaskResult &result)
{
    const QString missing = pathInOneForm(result.missing);
    if (!missing.isEmpty() && missing_.contains(missing))
        return;
    missing_.insert(missing);
    // The products' failures name their folders themselves.
    addErrors(result.errmsg, result.type == TaskType::CreateProducts ? QString() : result.copyFile);
}

void DistributionRun::addErrors(const QString &lines, const QString &file)
{
    const QStringList each = lines.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &line : each) {
        QString whole = current().displayNumber() + QStringLiteral(": ") + line;
        if (!file.isEmpty())
            whole += QStringLiteral("（%1）").arg(file);
        errors_.append(whole);
        emit errorAdded(whole);
    }
}

void DistributionRun::completeOrder()
{
    qDebug().noquote() << "总进度:" << index_ + 1 << '/' << orders_.size()
                       << " 当前进度:" << copyPicFinishNum_ << '/' << expected_
                       << "\ncopyPicFinishNum: " << copyPicFinishNum_
                       << "\nproFinishNum: " << proFinishNum_
                       << "\ndownPhotoFinishNums: " << downPhotoFinishNums_
                       << "\nisSaveHtml: " << yesNo(isSaveHtml_)
                       << "\n----------------------------------------";
    ++completed_;
    if (!stopFlag_.isRaised())
        proveOrder();
}

/// What the run was to write, beside what stands there: told at the end.
void DistributionRun::proveOrder()
{
    Ledger::current().ask(
        this,
        [folder = orderFolder_](const LedgerReader &reader) {
            return distributionrecords::earlierFiles(
                reader.copiesBelow(folder, distributionrecords::works()));
        },
        proving_.only([this](const QVector<EarlierFile> &earlier) { proveOrder(earlier); }));
}

void DistributionRun::proveOrder(const QVector<EarlierFile> &earlier)
{
    onDisk(
        this, orderFolder_,
        [folder = orderFolder_, files = files_, earlier, tool = cardName(settings_.type)] {
            return orderproof::prove(folder, files, earlier, tool);
        },
        proving_.only([this](const OrderProof &proof) {
            proofs_.append({current().identity(), current().displayNumber(), proof});
            startNextOrder();
        }));
}

void DistributionRun::skipOrder(const QString &reason)
{
    addErrors(reason);
    refused_.append(current().displayNumber());
    startNextOrder();
}

void DistributionRun::finish()
{
    RunSummary summary;
    summary.orders = orders_.size();
    summary.completed = completed_;
    summary.stopped = stopFlag_.isRaised();
    summary.refused = refused_;
    summary.errors = errors_;
    summary.proofs = proofs_;
    running_ = false;
    recording_.end();
    claim_.release();
    stepTimer_.stop();
    announceStep();
    detail_.reset();
    emit finished(summary);
    announceIdle();
}

void DistributionRun::announceIdle()
{
    if (!running_ && !isBusy())
        emit idle();
}
