#include "demo/backstage.h"

#include "demo/answerparts.h"
#include "demo/orderbook.h"
#include "demo/pictures.h"

#include <QDate>
#include <QJsonDocument>

namespace demo {

namespace {

constexpr int firstOrdinarySerial = 100;

QJsonArray texts(const QStringList &list)
{
    return QJsonArray::fromStringList(list);
}

QJsonArray sorted(const QSet<QString> &set)
{
    QStringList list = set.values();
    list.sort();
    return texts(list);
}

QJsonObject orderState(const Order &order)
{
    return {{QStringLiteral("id"), order.id},
            {QStringLiteral("order_photo_id"), order.photoSetId},
            {QStringLiteral("orderpayforkey"), order.number},
            {QStringLiteral("servicetimes"), order.service},
            {QStringLiteral("shopid"), order.shopId},
            {QStringLiteral("netpath"), order.netPath},
            {QStringLiteral("folderpath"), order.folderPath},
            {QStringLiteral("files"), texts(order.registeredFiles)},
            {QStringLiteral("downloaded"), texts(order.downloadedPhotos)},
            {QStringLiteral("yuanpian"), texts(order.registeredNames(PhotoKind::Original))},
            {QStringLiteral("yuanshidang"), texts(order.registeredNames(PhotoKind::Raw))},
            {QStringLiteral("jingxiu"), texts(order.registeredNames(PhotoKind::Retouched))},
            {QStringLiteral("announced"), sorted(order.announcedDeletions)},
            {QStringLiteral("deleted"), sorted(order.reportedDeletions)}};
}

} // namespace

Backstage::Backstage(const QString &dataFolder, const QString &pathPrefix, int orders)
    : share_(dataFolder), paths_(pathPrefix), orderCount_(orders), answers_(studio_, paths_)
{
    fill();
}

QString Backstage::open()
{
    return share_.prepare();
}

void Backstage::fill()
{
    QMap<QString, QString> publicRoots = share_.publicFolders();
    for (QString &folder : publicRoots)
        folder = paths_.toWire(folder);
    studio_ = Studio(publicRoots);
    const OrderBook book(studio_.shops(), paths_.toWire(share_.root()), QDate::currentDate());
    const QVector<Order> notable = book.notable().mid(0, orderCount_);
    studio_.addOrders(notable);
    const int others = orderCount_ - notable.size();
    studio_.addOrders(book.ordinary(others, firstOrdinarySerial));
    nextSerial_ = firstOrdinarySerial + others;
}

void Backstage::setServiceUrl(const QString &url)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    answers_.setServiceUrl(url);
}

void Backstage::close()
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        closed_ = true;
    }
    wake_.notify_all();
}

void Backstage::wait(std::unique_lock<std::mutex> &lock, const Misbehaviour &misbehaviour)
{
    const int releasesBefore = releases_;
    const auto letGo = [&] { return closed_ || releases_ != releasesBefore; };
    if (misbehaviour.delay.count() > 0)
        wake_.wait_for(lock, misbehaviour.delay, letGo);
    if (misbehaviour.kind == Misbehaviour::Kind::Hold) {
        ++held_;
        wake_.wait(lock, letGo);
        --held_;
    }
}

Backstage::Reply Backstage::handle(const QByteArray &query, const QByteArray &contentType,
                                   const QByteArray &body)
{
    const Fields address = decodeForm(query);
    const QString action = address.value(QStringLiteral("a"));
    const Fields fields = decodeForm(body);

    std::unique_lock<std::mutex> lock(mutex_);
    const std::optional<Misbehaviour> misbehaviour = misbehaviours_.take(action);
    Reply reply;
    reply.kind = misbehaviour ? misbehaviour->kindName : QString();
    log_.add({action, query, body, fields, QString::fromUtf8(contentType), reply.kind, {}});
    if (misbehaviour) {
        wait(lock, *misbehaviour);
        if (breakOff(*misbehaviour, &reply))
            return reply;
        if (misbehaviour->kind == Misbehaviour::Kind::Html)
            reply.contentType = "text/html";
    }

    QJsonObject answer = misbehaviour && !misbehaviour->acts() ? refusal(misbehaviour->message)
                                                               : answers_.answer(address, fields);
    const QJsonObject previous = lastAnswers_.value(action, answer);
    lastAnswers_.insert(action, answer);
    if (misbehaviour && misbehaviour->kind == Misbehaviour::Kind::Stale)
        answer = previous;
    reply.body = misbehaviour ? misbehaviour->distort(answer)
                              : QJsonDocument(answer).toJson(QJsonDocument::Compact);
    return reply;
}

// The ways to end a request that no answer is needed for.
bool Backstage::breakOff(const Misbehaviour &misbehaviour, Reply *reply)
{
    switch (misbehaviour.kind) {
    case Misbehaviour::Kind::Drop:
        reply->form = Reply::Form::HeadOnly;
        return true;
    case Misbehaviour::Kind::DropSilent:
        reply->form = Reply::Form::Nothing;
        return true;
    case Misbehaviour::Kind::HttpError:
        reply->status = misbehaviour.status;
        return true;
    default:
        return false;
    }
}

// What is sent in place of the picture; false when the picture is to be sent.
bool Backstage::spoilPicture(const Misbehaviour &misbehaviour, const QString &path, Reply *reply)
{
    const QByteArray jpegBegin = "\xff\xd8\xff\xe0";
    switch (misbehaviour.kind) {
    case Misbehaviour::Kind::Html:
        reply->contentType = "text/html";
        reply->body = misbehaviour.distort({});
        return true;
    case Misbehaviour::Kind::Empty:
        return true;
    case Misbehaviour::Kind::NotAPicture:
        reply->body = "no picture at all";
        return true;
    case Misbehaviour::Kind::HugePicture:
        reply->body = hugePicture();
        return true;
    case Misbehaviour::Kind::HugeBody:
    case Misbehaviour::Kind::EndlessBody:
        reply->form = misbehaviour.kind == Misbehaviour::Kind::HugeBody ? Reply::Form::Huge
                                                                        : Reply::Form::Endless;
        reply->body = jpegBegin;
        return true;
    case Misbehaviour::Kind::RedirectLoop:
    case Misbehaviour::Kind::Redirect:
        reply->status = 302;
        reply->location = misbehaviour.kind == Misbehaviour::Kind::Redirect
                              ? misbehaviour.message.toUtf8()
                              : path.toUtf8();
        return true;
    default:
        return breakOff(misbehaviour, reply);
    }
}

Backstage::Reply Backstage::picture(const QString &path, const QByteArray &userAgent)
{
    return picture(path, userAgent, [this, path] {
        const QString id = path.section(QLatin1Char('/'), -1).section(QLatin1Char('.'), 0, 0);
        std::unique_lock<std::mutex> lock(mutex_);
        const std::optional<PhotoFile> photo = studio_.findPhoto(id);
        lock.unlock();
        QByteArray drawn;
        if (photo && !photo->path.isEmpty())
            drawn = smallPicture(paths_.toDisk(photo->path));
        if (photo && !photo->isRegistered && drawn.isEmpty())
            drawn = inventedPicture(id);
        return drawn;
    });
}

Backstage::Reply Backstage::picture(const QString &path, const QByteArray &userAgent,
                                    const std::function<QByteArray()> &draw)
{
    Reply reply;
    reply.contentType = "image/jpeg";
    {
        std::unique_lock<std::mutex> lock(mutex_);
        const auto misbehaviour = misbehaviours_.take(QStringLiteral("image"));
        reply.kind = misbehaviour ? misbehaviour->kindName : QString();
        log_.add({QStringLiteral("image"), path.toUtf8(), {}, {}, {}, reply.kind, userAgent});
        if (misbehaviour) {
            wait(lock, *misbehaviour);
            if (spoilPicture(*misbehaviour, path, &reply))
                return reply;
        }
    }
    // Pictures take their time, and the other requests need not wait for them.
    reply.body = draw();
    if (reply.body.isEmpty())
        reply.status = 404;
    return reply;
}

bool Backstage::pause()
{
    std::unique_lock<std::mutex> lock(mutex_);
    return !wake_.wait_for(lock, std::chrono::milliseconds(50), [this] { return closed_; });
}

QJsonArray Backstage::requests(const QString &action) const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return log_.toJson(action);
}

void Backstage::clearRequests()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    log_.clear();
}

QString Backstage::misbehave(const QJsonObject &told)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return misbehaviours_.add(told);
}

void Backstage::release()
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        ++releases_;
    }
    wake_.notify_all();
}

QString Backstage::reset()
{
    QString problem;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        fill();
        log_.clear();
        misbehaviours_.clear();
        lastAnswers_.clear();
        ++releases_;
        problem = share_.empty();
    }
    wake_.notify_all();
    return problem;
}

QJsonObject Backstage::state() const
{
    const std::lock_guard<std::mutex> lock(mutex_);
    QJsonArray orders;
    for (const Order &order : studio_.orders())
        orders.append(orderState(order));
    return {{QStringLiteral("held"), held_},
            {QStringLiteral("share"), paths_.toClient(share_.root())},
            {QStringLiteral("orders"), orders}};
}

QString Backstage::changeOrders(const QJsonObject &change)
{
    const std::lock_guard<std::mutex> lock(mutex_);
    if (change.contains(QStringLiteral("add"))) {
        const int count = change.value(QStringLiteral("add")).toInt();
        const QString shopId = change.value(QStringLiteral("shopid")).toString();
        if (count < 1 || (!shopId.isEmpty() && !studio_.shop(shopId)))
            return QStringLiteral("add must be above 0, shopid a branch or left out");
        const OrderBook book(studio_.shops(), paths_.toWire(share_.root()), QDate::currentDate());
        studio_.addOrders(book.ordinary(count, nextSerial_, shopId));
        nextSerial_ += count;
        return QString();
    }
    Order *order = studio_.orderById(change.value(QStringLiteral("id")).toString());
    if (!order) {
        order = studio_.orderByPhotoSet(change.value(QStringLiteral("order_photo_id")).toString());
    }
    if (!order)
        return QStringLiteral("no such order");
    if (change.contains(QStringLiteral("photos"))) {
        choosePhotos(*order, change.value(QStringLiteral("photos")).toInt());
        return QString();
    }
    return changeOrder(*order, change.value(QStringLiteral("fields")).toObject());
}

} // namespace demo
