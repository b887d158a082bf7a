#include "distribution/imagefetches.h"

#include "distribution/fjdataoperate.h"
#include "net/basereq.h"

namespace {

constexpr int fetchesAtOnce = 4;

} // namespace

ImageFetches::ImageFetches(QObject *parent)
    : QObject(parent), requests_(std::make_unique<QObject>())
{
}

void ImageFetches::add(const QVector<ImageFetch> &fetches)
{
    for (const ImageFetch &fetch : fetches)
        waiting_.enqueue(fetch);
    feed();
}

void ImageFetches::cancel()
{
    waiting_.clear();
    underWay_ = 0;
    requests_ = std::make_unique<QObject>();
}

void ImageFetches::feed()
{
    while (!waiting_.isEmpty() && underWay_ < fetchesAtOnce) {
        const ImageFetch next = waiting_.dequeue();
        ++underWay_;
        auto *request = new BaseReq(requests_.get());
        request->downloadImage(next.url, [this, request, store = next.store](
                                             const QByteArray &image, const QString &error) {
            request->deleteLater();
            finish(store, image, error);
        });
    }
}

void ImageFetches::finish(DistributionTask store, const QByteArray &image, const QString &error)
{
    --underWay_;
    feed();
    if (error.isEmpty()) {
        store.image = image;
        emit fetched(store);
    } else {
        emit failed(store, store.imgName + error);
    }
}

// Here, not where the files are worked on: that brings along what printing needs.
void FJDataOperate::downloadImageAsDataUrl(const QString &url, QObject *owner,
                                           const BaseReq::ImageCallback &callback)
{
    auto *request = new BaseReq(owner);
    request->downloadImageAsDataUrl(
        url, [request, callback](bool ok, const QString &dataUrl, const QString &error) {
            request->deleteLater();
            callback(ok, dataUrl, error);
        });
}
