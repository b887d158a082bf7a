#pragma once

#include "cardcheck/rules/evidence.h"
#include "cardcheck/run/cardlister.h"
#include "files/contenthash.h"
#include "tasks/stopflag.h"

#include <atomic>
#include <functional>
#include <memory>

/// Reading the files that are compared. Blocks, for worker threads.
namespace filereadings {

/// Reads and hashes a file as readContent() does.
using Reader =
    std::function<ContentReading(const QString &path, const platform::TransferControl &control)>;
/// readContent() itself.
ContentReading readAsItIs(const QString &path, const platform::TransferControl &control);

/// What several readings share.
struct Ways
{
    Reader read;
    StopFlag stop;
    cardlister::CardPlace card;
    std::shared_ptr<std::atomic<qint64>> bytesRead; ///< by all of them, growing as they go on
};

evidence::Reading readSource(const Ways &ways, const QString &path);

struct TargetReading
{
    evidence::Reading reading;
    bool isReduced = false; ///< a picture with fewer pixels than that of the source
};

/// \a place, which should hold what \a source has; what is not as large says enough by that.
TargetReading readTarget(const Ways &ways, const cardfiles::CardFile &source,
                         const evidence::Place &place);

} // namespace filereadings
