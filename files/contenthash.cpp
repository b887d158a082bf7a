#include "files/contenthash.h"

#define XXH_INLINE_ALL
#include <new>
#include <xxhash.h>

struct ContentHash::State
{
    struct Free
    {
        void operator()(XXH3_state_t *state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Free> hash{XXH3_createState()};
};

ContentHash::ContentHash() : state_(std::make_unique<State>())
{
    if (!state_->hash)
        throw std::bad_alloc();
    XXH3_128bits_reset(state_->hash.get());
}

ContentHash::~ContentHash() = default;

void ContentHash::add(const char *data, qint64 size)
{
    XXH3_128bits_update(state_->hash.get(), data, size_t(size));
}

QByteArray ContentHash::result() const
{
    XXH128_canonical_t canonical;
    XXH128_canonicalFromHash(&canonical, XXH3_128bits_digest(state_->hash.get()));
    static_assert(sizeof canonical.digest == bytes);
    return {reinterpret_cast<const char *>(canonical.digest), bytes};
}

namespace {

constexpr qint64 nanosecondsPerMillisecond = 1'000'000;

Proof proofOf(platform::ReadOrigin origin)
{
    switch (origin) {
    case platform::ReadOrigin::Server:
        return Proof::Server;
    case platform::ReadOrigin::Medium:
        return Proof::Medium;
    case platform::ReadOrigin::Cache:
        break;
    }
    return Proof::Cache;
}

} // namespace

ContentReading readContent(const QString &path, const platform::TransferControl &control,
                           platform::FileReader::Way way)
{
    using Ending = ContentReading::Ending;
    ContentReading reading;
    platform::FileReader file(path, way);
    const platform::FileStamp before = file.stamp();
    if (!before.isKnown())
        return reading;
    reading.modified =
        QDateTime::fromMSecsSinceEpoch(before.modified / nanosecondsPerMillisecond, Qt::UTC);
    ContentHash hash;
    for (;;) {
        if (control.cancelled && control.cancelled()) {
            reading.ending = Ending::Cancelled;
            return reading;
        }
        const qint64 got = file.read();
        if (got < 0)
            return reading;
        if (got == 0)
            break;
        hash.add(file.data(), got);
        reading.size += got;
        if (control.progress)
            control.progress(reading.size);
    }
    // A file that ends before its size is one that was cut short meanwhile.
    if (file.stamp() != before || platform::stampOf(path) != before ||
        reading.size != before.size) {
        reading.ending = Ending::Changed;
        return reading;
    }
    reading.ending = Ending::Read;
    reading.hash = hash.result();
    reading.proof = proofOf(file.origin());
    return reading;
}
