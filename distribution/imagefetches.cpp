#include "distribution/imagefetches.h"

#include "net/basereq.h"

namespace {

constexpr int fetchesAtOnce = 4;

} // namespace

ImageFetches::ImageFetches(QObject *parent) : QObject(parent)
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
    const QVector<BaseReq *> abandoned = underWay_;
    underWay_.clear();
    for (BaseReq *request : abandoned) {
        request->abortRequest();
        request->deleteLater();
    }
}

void ImageFetches::feed()
{
    while (!waiting_.isEmpty() && underWay_.size() < fetchesAtOnce) {
        const ImageFetch next = waiting_.dequeue();
        auto *request = new BaseReq(this);
        underWay_.append(request);
        request->downloadImageAsDataUrl(
            next.url, [this, request, store = next.store](bool ok, const QString &dataUrl,
                                                          const QString &error) {
                finish(request, store, ok, dataUrl, error);
            });
    }
}

void ImageFetches::finish(BaseReq *request, DistributionTask store, bool ok, const QString &dataUrl,
                          const QString &error)
{
    if (!underWay_.removeOne(request))
        return; // abandoned
    request->deleteLater();
    feed();
    if (ok) {
        store.data = dataUrl;
        emit fetched(store);
    } else {
        emit failed(store, store.imgName + error);
    }
}
