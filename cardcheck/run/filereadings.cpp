#include "cardcheck/run/filereadings.h"

#include "pictures/picturereader.h"
#include "pictures/uprightcopy.h"
#include "platform/fileaccess.h"
#include "platform/pathform.h"

#include <QFileInfo>

namespace filereadings {

using evidence::Reading;
using Outcome = Reading::Outcome;

namespace {

Reading read(const Ways &ways, const QString &path)
{
    platform::TransferControl control;
    control.cancelled = [&ways] { return ways.stop.isRaised(); };
    control.progress = [&ways, before = qint64(0)](qint64 bytes) mutable {
        ways.bytesRead->fetch_add(bytes - before);
        before = bytes;
    };
    const ContentReading content = ways.read(path, control);
    switch (content.ending) {
    case ContentReading::Ending::Read:
        return {Outcome::Read, content.size, content.hash, content.proof};
    case ContentReading::Ending::Changed:
        return {Outcome::Changed, -1, {}, Proof::None};
    case ContentReading::Ending::Cancelled:
        return {};
    case ContentReading::Ending::Failed:
        return {Outcome::Unreadable, -1, {}, Proof::None};
    }
    Q_UNREACHABLE();
}

QSize pixelsOf(const QString &path)
{
    const QSize size = PictureReader(path, picturebounds::shown).size();
    // Turned by a quarter it is the same picture.
    return size.width() < size.height() ? size.transposed() : size;
}

bool isReducedTo(const QString &source, const QString &target)
{
    const QSize before = pixelsOf(source);
    const QSize after = pixelsOf(target);
    return before.isValid() && after.isValid() &&
           (after.width() < before.width() || after.height() < before.height());
}

} // namespace

ContentReading readAsItIs(const QString &path, const platform::TransferControl &control)
{
    return readContent(path, control);
}

Reading readSource(const Ways &ways, const QString &path)
{
    return read(ways, path);
}

TargetReading readTarget(const Ways &ways, const cardfiles::CardFile &source,
                         const evidence::Place &place)
{
    const QString path = platform::toLocalPath(place.target);
    switch (platform::presenceOf(path)) {
    case platform::Presence::There:
        break;
    case platform::Presence::Gone:
        return {{Outcome::Missing, -1, {}, Proof::None}, false};
    case platform::Presence::Denied:
    case platform::Presence::Unknown:
        return {{Outcome::Unreadable, -1, {}, Proof::None}, false};
    }
    if (ways.card.holds(path) || platform::isSameFile(path, source.path))
        return {{Outcome::OnCard, -1, {}, Proof::None}, false};
    const QFileInfo target(path);
    if (!place.isUpright && target.isFile() && target.size() != source.bytes) {
        Reading other{Outcome::Read, target.size(), {}, Proof::None};
        other.looksUpright = place.copy == 0 && looksUprightCopyOf(source.path, path);
        return {other, false};
    }
    const Reading reading = read(ways, path);
    return {reading,
            place.isUpright && reading.outcome == Outcome::Read && isReducedTo(source.path, path)};
}

} // namespace filereadings
