#include "demo/backstage.h"

#include "demo/answerparts.h"
#include "demo/orderbook.h"

#include <QDate>
#include <QJsonDocument>

namespace demo {

namespace {

constexpr int firstOrdinarySerial = 100;

QJsonArray texts(const QStringList &list)
{
    return QJsonArray::fromStringList(list);
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
            {QStringLiteral("yuanpian"), texts(order.registered.value(PhotoKind::Original))},
            {QStringLiteral("yuanshidang"), texts(order.registered.value(PhotoKind::Raw))},
            {QStringLiteral("jingxiu"), texts(order.registered.value(PhotoKind::Retouched))}};
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
    log_.add({action, query, body, fields, QString::fromUtf8(contentType), reply.kind});
    if (misbehaviour) {
        wait(lock, *misbehaviour);
        switch (misbehaviour->kind) {
        case Misbehaviour::Kind::Drop:
            reply.form = Reply::Form::HeadOnly;
            return reply;
        case Misbehaviour::Kind::DropSilent:
            reply.form = Reply::Form::Nothing;
            return reply;
        case Misbehaviour::Kind::HttpError:
            reply.status = misbehaviour->status;
            return reply;
        case Misbehaviour::Kind::Html:
            reply.contentType = "text/html";
            break;
        default:
            break;
        }
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
    return changeOrder(*order, change.value(QStringLiteral("fields")).toObject());
}

} // namespace demo
