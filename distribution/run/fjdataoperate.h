#pragma once

#include "distribution/plan/distributiontask.h"
#include "net/basereq.h"

/// What a distribution run does to files, and where it gets pictures from. Tasks share nothing, so
/// that any number may run at once.
class FJDataOperate
{
public:
    FJDataOperate() = delete;

    /// Does what \a task says. A result without a type: there is no such task. Blocks; for worker
    /// threads.
    static TaskResult perform(const DistributionTask &task);

    /// Fetches an image and hands it over as a data URL, later and on this thread; never when
    /// \a owner dies first.
    static void downloadImageAsDataUrl(const QString &url, QObject *owner,
                                       const BaseReq::ImageCallback &callback);
};
