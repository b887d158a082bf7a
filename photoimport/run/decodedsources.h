#pragma once

#include <QImage>
#include <QString>

#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>

/// Decoded pictures shared by the jobs that make variants of one source: the first to come decodes,
/// the others wait for it and take the same pixels. At most two pictures are kept beyond what the
/// callers hold. Any thread.
class DecodedSources
{
public:
    static constexpr int kept = 2;

    /// The picture that \a key names: the one at hand, otherwise what \a decode returns. One that
    /// is null is not kept. When \a decode throws, the exception goes to its caller and those who
    /// waited decode by themselves.
    QImage picture(const QString &key, const std::function<QImage()> &decode);

    /// Lets go of the pictures kept.
    void clear();

private:
    struct Entry
    {
        enum class State { Decoding, Ready, Failed };

        explicit Entry(QString name) : key(std::move(name)) {}
        const QString key;
        State state = State::Decoding;
        QImage image;
    };
    using EntryPointer = std::shared_ptr<Entry>;

    QImage decodeInto(const EntryPointer &entry, const std::function<QImage()> &decode);
    void finish(const EntryPointer &entry, Entry::State state, const QImage &image);

    std::mutex mutex_; ///< guards everything below and the states and images of the entries
    std::condition_variable changed_;
    std::list<EntryPointer> entries_; ///< used last first
};
