#include "demo/misbehaviour.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QMap>

#include <algorithm>

namespace demo {

namespace {

const QMap<QString, Misbehaviour::Kind> &kinds()
{
    using Kind = Misbehaviour::Kind;
    static const QMap<QString, Kind> map = {
        {QStringLiteral("delay"), Kind::Delay},
        {QStringLiteral("hold"), Kind::Hold},
        {QStringLiteral("http-error"), Kind::HttpError},
        {QStringLiteral("drop"), Kind::Drop},
        {QStringLiteral("drop-silent"), Kind::DropSilent},
        {QStringLiteral("broken-json"), Kind::BrokenJson},
        {QStringLiteral("html"), Kind::Html},
        {QStringLiteral("empty"), Kind::Empty},
        {QStringLiteral("array"), Kind::Array},
        {QStringLiteral("truncated-utf8"), Kind::TruncatedUtf8},
        {QStringLiteral("refuse"), Kind::Refuse},
        {QStringLiteral("code-number"), Kind::CodeNumber},
        {QStringLiteral("missing-fields"), Kind::MissingFields},
        {QStringLiteral("data-wrong-type"), Kind::DataWrongType},
        {QStringLiteral("stale"), Kind::Stale},
        {QStringLiteral("not-a-picture"), Kind::NotAPicture},
        {QStringLiteral("huge-picture"), Kind::HugePicture},
        {QStringLiteral("huge-body"), Kind::HugeBody},
        {QStringLiteral("endless-body"), Kind::EndlessBody},
        {QStringLiteral("redirect-loop"), Kind::RedirectLoop},
        {QStringLiteral("redirect"), Kind::Redirect},
    };
    return map;
}

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray withCutCharacter(QByteArray json)
{
    const auto isContinuation = [](char byte) {
        return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
    };
    for (int i = json.size() - 1; i >= 0; --i) {
        if (isContinuation(json.at(i)))
            return json.remove(i, 1);
    }
    return json;
}

QJsonValue ofAnotherType(const QJsonValue &value)
{
    return value.isString() ? QJsonValue(QJsonArray()) : QJsonValue(QStringLiteral("none"));
}

void change(QJsonObject &object, const QString &name, bool remove)
{
    const int dot = name.indexOf(QLatin1Char('.'));
    const QString head = name.left(dot);
    if (!object.contains(head))
        return;
    if (dot < 0) {
        if (remove)
            object.remove(name);
        else
            object[name] = ofAnotherType(object.value(name));
        return;
    }
    const QString inner = name.mid(dot + 1);
    if (object.value(head).isObject()) {
        QJsonObject changed = object.value(head).toObject();
        change(changed, inner, remove);
        object[head] = changed;
        return;
    }
    QJsonArray entries = object.value(head).toArray();
    for (int i = 0; i < entries.size(); ++i) {
        QJsonObject entry = entries.at(i).toObject();
        change(entry, inner, remove);
        entries[i] = entry;
    }
    object[head] = entries;
}

QStringList listMembers(const QJsonObject &object)
{
    QStringList names;
    for (auto member = object.begin(); member != object.end(); ++member) {
        if (member->isArray())
            names << member.key();
    }
    return names;
}

} // namespace

QByteArray Misbehaviour::distort(QJsonObject answer) const
{
    switch (kind) {
    case Kind::BrokenJson: {
        const QByteArray whole = compact(answer);
        return whole.left(whole.size() / 2);
    }
    case Kind::Html:
        return "<html><body><h1>502 Bad Gateway</h1></body></html>";
    case Kind::Empty:
        return {};
    case Kind::Array:
        return QJsonDocument(QJsonArray{answer}).toJson(QJsonDocument::Compact);
    case Kind::TruncatedUtf8:
        return withCutCharacter(compact(answer));
    case Kind::CodeNumber:
        answer[QStringLiteral("code")] = answer.value(QStringLiteral("code")).toString().toInt();
        return compact(answer);
    case Kind::MissingFields:
    case Kind::DataWrongType:
        for (const QString &name : fields.isEmpty() ? listMembers(answer) : fields)
            change(answer, name, kind == Kind::MissingFields);
        return compact(answer);
    case Kind::Delay:
    case Kind::Hold:
    case Kind::HttpError:
    case Kind::Drop:
    case Kind::DropSilent:
    case Kind::Refuse:
    case Kind::Stale:
    case Kind::NotAPicture:
    case Kind::HugePicture:
    case Kind::HugeBody:
    case Kind::EndlessBody:
    case Kind::RedirectLoop:
    case Kind::Redirect:
        break;
    }
    return compact(answer);
}

QString Misbehaviours::add(const QJsonObject &told)
{
    Misbehaviour misbehaviour;
    misbehaviour.kindName = told.value(QStringLiteral("kind")).toString();
    misbehaviour.action = told.value(QStringLiteral("action")).toString();
    misbehaviour.times = told.value(QStringLiteral("times")).toInt(1);
    misbehaviour.delay = std::chrono::milliseconds(told.value(QStringLiteral("delay")).toInt(0));
    misbehaviour.message =
        told.value(QStringLiteral("message")).toString(QStringLiteral("服务暂不可用"));
    misbehaviour.status = told.value(QStringLiteral("status")).toInt(500);
    const QJsonArray fields = told.value(QStringLiteral("fields")).toArray();
    for (const QJsonValue &name : fields)
        misbehaviour.fields << name.toString();

    if (misbehaviour.action.isEmpty())
        return QStringLiteral("no action named");
    if (misbehaviour.kindName == QStringLiteral("none")) {
        takeBack(misbehaviour.action);
        return QString();
    }
    const auto kind = kinds().constFind(misbehaviour.kindName);
    if (kind == kinds().constEnd())
        return QStringLiteral("unknown kind: %1").arg(misbehaviour.kindName);
    if (misbehaviour.times == 0 || misbehaviour.times < -1 || misbehaviour.delay.count() < 0)
        return QStringLiteral("times must be -1 or above 0, delay not below 0");
    misbehaviour.kind = *kind;
    waiting_.append(misbehaviour);
    return QString();
}

void Misbehaviours::takeBack(const QString &action)
{
    waiting_.erase(std::remove_if(waiting_.begin(), waiting_.end(),
                                  [&](const Misbehaviour &m) { return m.action == action; }),
                   waiting_.end());
}

std::optional<Misbehaviour> Misbehaviours::take(const QString &action)
{
    const auto found = std::find_if(waiting_.begin(), waiting_.end(), [&](const Misbehaviour &m) {
        return m.action == action || m.action == QStringLiteral("*");
    });
    if (found == waiting_.end())
        return std::nullopt;
    Misbehaviour taken = *found;
    if (found->times > 0 && --found->times == 0)
        waiting_.erase(found);
    return taken;
}

} // namespace demo
