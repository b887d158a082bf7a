#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <chrono>
#include <optional>

namespace demo {

// One way to treat a request badly.
struct Misbehaviour
{
    enum class Kind {
        Delay,         // the right answer, late
        Hold,          // the right answer, when released
        HttpError,     // status, nothing is done
        Drop,          // the head of an answer, then the connection ends; nothing is done
        DropSilent,    // the connection ends without a byte; nothing is done
        BrokenJson,    // the right answer, cut in half
        Html,          // a web page in its place
        Empty,         // no bytes in its place
        Array,         // the right answer inside an array
        TruncatedUtf8, // the right answer with a character cut short
        Refuse,        // code "0" with the message, nothing is done
        CodeNumber,    // the right answer, its code not as text
        MissingFields, // the right answer without some members
        DataWrongType, // the right answer, some members of another type
        Stale,         // what the request before this one got
        // Of pictures only; anything else is answered as if nothing had been told.
        NotAPicture,  // text under a picture's content type
        HugePicture,  // few bytes, 20,000 × 20,000 pixels
        HugeBody,     // 200 MB that begin like a picture
        EndlessBody,  // a byte now and then, for ever
        RedirectLoop, // to the same address
        Redirect,     // to the address in the message
    };

    Kind kind = Kind::Delay;
    QString kindName;
    QString action;                     // "*" for any
    int times = 1;                      // requests left, -1 without end
    std::chrono::milliseconds delay{0}; // waited before anything else, with every kind
    QString message;
    int status = 500;
    QStringList fields; // at the top level, or "data.netpath": a member of each entry of data

    // Whether the request takes effect at the service.
    bool acts() const
    {
        return kind != Kind::HttpError && kind != Kind::Drop && kind != Kind::DropSilent &&
               kind != Kind::Refuse;
    }
    QByteArray distort(QJsonObject answer) const;
};

// What is lined up for coming requests; for one action the first told comes first. Not thread-safe.
class Misbehaviours
{
public:
    // {"action": …, "kind": "delay" | "hold" | "http-error" | "drop" | "drop-silent" |
    // "broken-json" | "html" | "empty" | "array" | "truncated-utf8" | "refuse" | "code-number" |
    // "missing-fields" | "data-wrong-type" | "stale" | "not-a-picture" | "huge-picture" |
    // "huge-body" | "endless-body" | "redirect-loop" | "redirect" | "none", "times": 1,
    // "delay": ms, "message": …, "status": 500, "fields": […]}. The action of a picture is "image".
    // "none" takes back what is lined up for the action. Returns an empty text, or what is wrong
    // with it; then nothing changes.
    //
    // Every arrival counts as one time. Qt fetches again, up to three times and without telling
    // anybody, when the connection ends before the first byte of an answer: "drop-silent" for a
    // picture is best lined up with times -1 and taken back. Elsewhere one request is one arrival.
    QString add(const QJsonObject &told);
    std::optional<Misbehaviour> take(const QString &action);
    void clear() { waiting_.clear(); }

private:
    void takeBack(const QString &action);

    QVector<Misbehaviour> waiting_;
};

} // namespace demo
