#include "cardcheck/rules/evidence.h"

#include "files/paths.h"
#include "look/colours.h"
#include "net/orderfiles.h"

namespace evidence {

namespace {

struct Look
{
    QStringView text;
    QStringView sign;
    QRgb colour;
};

Look lookOf(State state)
{
    switch (state) {
    case State::Verified:
        return {u"已核对", u"✓", colours::success};
    case State::VerifiedOnStorage:
        return {u"已核对（不登记）", u"✓", colours::success};
    case State::Unregistered:
        return {u"已复制未登记", u"!", colours::unproved};
    case State::CacheOnly:
        return {u"仅从缓存核对", u"!", colours::unproved};
    case State::ServiceUnknown:
        return {u"登记未核实", u"!", colours::unproved};
    case State::Upright:
        return {u"转正副本", u"!", colours::unproved};
    case State::LooksUpright:
        return {u"看来是转正副本", u"!", colours::unproved};
    case State::Unproved:
        return {u"转正副本，未核实", u"!", colours::unproved};
    case State::Waiting:
        return {u"待核对", u"…", colours::muted};
    case State::Unreadable:
        return {u"无法读取", u"!", colours::unproved};
    case State::Changed:
        return {u"核对中有变化", u"!", colours::unproved};
    case State::ContentDiffers:
        return {u"内容不同", u"✗", colours::failure};
    case State::TargetMissing:
        return {u"目标缺失", u"✗", colours::failure};
    case State::OnlyOnCard:
        return {u"副本也在卡上", u"✗", colours::failure};
    case State::NotImported:
        return {u"未导入", u"✗", colours::failure};
    }
    Q_UNREACHABLE();
}

/// Same bytes on both sides: what the service knows of them decides.
State provedState(const Reading &card, const Place &place, const Reading &target,
                  const ServiceList *list)
{
    const bool isWanted = registeredAs(place.target) != Registered::Never;
    const bool isAnswered =
        list && list->state == ServiceList::State::Answered && list->order == place.order.identity;
    if (isWanted && isAnswered && !list->lists(place.target))
        return State::Unregistered;
    if (!isReadPastCache(card.proof) || !isReadPastCache(target.proof))
        return State::CacheOnly;
    if (!isWanted)
        return State::VerifiedOnStorage;
    return isAnswered ? State::Verified : State::ServiceUnknown;
}

State uprightState(const Reading &card, const Place &place, const Reading &target)
{
    if (place.sourceHash.isEmpty() || place.targetHash.isEmpty())
        return State::Unproved;
    const bool isTheCopy = card.hash == place.sourceHash && target.hash == place.targetHash;
    return isTheCopy ? State::Upright : State::ContentDiffers;
}

} // namespace

bool ServiceList::lists(const QString &target) const
{
    const QString name = target.section(QLatin1Char('\\'), -1).toLower();
    return paths.contains(wirePathKey(target)) || names.contains(name);
}

Registered registeredAs(const QString &target)
{
    const QString folder = target.section(QLatin1Char('\\'), -2, -2);
    if (folder == orderfiles::trialVideoFolder || folder == orderfiles::retouchedVideoFolder)
        return Registered::AmongVideos;
    const QString name = target.section(QLatin1Char('\\'), -1);
    // Retouched photos are announced, but listed nowhere.
    const bool isListed =
        folder == orderfiles::uprightFolder ||
        ((folder == orderfiles::originalsFolder || folder == orderfiles::rawFolder) &&
         orderfiles::isAnnounced(folder, name));
    return isListed ? Registered::AmongImported : Registered::Never;
}

State stateOf(const Reading &card, const Place &place, const Reading &target,
              const ServiceList *list)
{
    using Outcome = Reading::Outcome;
    if (card.outcome == Outcome::Changed || target.outcome == Outcome::Changed)
        return State::Changed;
    if (target.outcome == Outcome::Missing)
        return State::TargetMissing;
    if (target.outcome == Outcome::OnCard)
        return State::OnlyOnCard;
    if (card.outcome == Outcome::NotRead || target.outcome == Outcome::NotRead)
        return State::Waiting;
    if (card.outcome != Outcome::Read || target.outcome != Outcome::Read)
        return State::Unreadable;
    if (card.bytes == target.bytes && !card.hash.isEmpty() && card.hash == target.hash)
        return provedState(card, place, target, list);
    if (place.isUpright)
        return uprightState(card, place, target);
    return target.looksUpright ? State::LooksUpright : State::ContentDiffers;
}

bool isOnStorage(State state)
{
    return state <= State::ServiceUnknown;
}

QString stateText(State state)
{
    return lookOf(state).text.toString();
}

unsigned int stateColour(State state)
{
    return lookOf(state).colour;
}

QString proofText(const CheckedFile &file)
{
    const auto side = [](const Reading &reading) {
        switch (reading.proof) {
        case Proof::Medium:
            return QStringLiteral("介质");
        case Proof::Server:
            return QStringLiteral("服务器");
        case Proof::Cache:
            return QStringLiteral("缓存");
        case Proof::None:
        case Proof::Size:
        case Proof::Derived:
            break;
        }
        return QStringLiteral("—");
    };
    if (file.card.proof == Proof::None && file.target.proof == Proof::None)
        return {};
    return QStringLiteral("卡: %1 · 存储: %2").arg(side(file.card), side(file.target));
}

QString stateSign(State state)
{
    return lookOf(state).sign.toString();
}

} // namespace evidence
