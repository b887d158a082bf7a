#include "photoimport/run/decodedsources.h"

#include <algorithm>

QImage DecodedSources::picture(const QString &key, const std::function<QImage()> &decode)
{
    std::unique_lock<std::mutex> lock(mutex_);
    const auto known =
        std::find_if(entries_.begin(), entries_.end(),
                     [&key](const EntryPointer &entry) { return entry->key == key; });
    if (known == entries_.end()) {
        const auto entry = std::make_shared<Entry>(key);
        entries_.push_front(entry);
        lock.unlock();
        return decodeInto(entry, decode);
    }
    const EntryPointer entry = *known;
    entries_.splice(entries_.begin(), entries_, known);
    changed_.wait(lock, [&entry] { return entry->state != Entry::State::Decoding; });
    if (entry->state == Entry::State::Ready)
        return entry->image;
    lock.unlock();
    return decode();
}

void DecodedSources::clear()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    // What is being decoded still reaches those who wait for it, and is not kept then.
    entries_.clear();
}

QImage DecodedSources::decodeInto(const EntryPointer &entry, const std::function<QImage()> &decode)
{
    QImage image;
    try {
        image = decode();
    } catch (...) {
        finish(entry, Entry::State::Failed, QImage());
        throw;
    }
    finish(entry, Entry::State::Ready, image);
    return image;
}

void DecodedSources::finish(const EntryPointer &entry, Entry::State state, const QImage &image)
{
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        entry->state = state;
        entry->image = image;
        if (image.isNull())
            entries_.remove(entry);
        int ready = 0;
        entries_.remove_if([&ready](const EntryPointer &other) {
            return other->state == Entry::State::Ready && ++ready > kept;
        });
    }
    changed_.notify_all();
}
