#include "distribution/run/imagefetches.h"

#include "distribution/run/fjdataoperate.h"
#include "net/basereq.h"

namespace {

constexpr int fetchesAtOnce = 4;

} // namespace

ImageFetches::ImageFetches(QObject *parent) : QObject(parent), queue_(fetchesAtOnce)
{
}

void ImageFetches::add(const QVector<ImageFetch> &fetches)
{
    for (const ImageFetch &fetch : fetches) {
        queue_.add([this, fetch](QObject *scope, const RequestQueue::Ended &ended) {
            auto *request = new BaseReq(scope);
            request->downloadImage(fetch.url, [this, request, ended, store = fetch.store](
                                                  const QByteArray &image, const QString &error) {
                request->deleteLater();
                if (ended())
                    finish(store, image, error);
            });
        });
    }
}

void ImageFetches::finish(DistributionTask store, const QByteArray &image, const QString &error)
{
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
