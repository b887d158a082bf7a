#pragma once

#include "distribution/plan/distributionplan.h"
#include "tasks/requestqueue.h"

#include <QObject>
#include <QVector>

/// Fetches the pictures of one order, a few at a time. Lives on the interface thread; each picture
/// is announced once, fetched or not, unless it is abandoned.
class ImageFetches : public QObject
{
    Q_OBJECT

public:
    explicit ImageFetches(QObject *parent = nullptr);

    void add(const QVector<ImageFetch> &fetches);
    /// Abandons what has not come yet.
    void cancel() { queue_.abandon(); }

signals:
    /// \a store holds the picture.
    void fetched(const DistributionTask &store);
    void failed(const DistributionTask &store, const QString &error);

private:
    void finish(DistributionTask store, const QByteArray &image, const QString &error);

    RequestQueue queue_;
};
