#include "demo/form.h"

#include <cctype>

namespace demo {

namespace {

bool isHexAt(const QByteArray &text, int position)
{
    return position < text.size() && std::isxdigit(static_cast<unsigned char>(text.at(position)));
}

// Qt's own decoder makes garbage of a lone "%", and a client that forgot to escape one must be
// found out by what the service then reads.
QString decoded(const QByteArray &text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        if (text.at(i) == '+') {
            bytes += ' ';
        } else if (text.at(i) == '%' && isHexAt(text, i + 1) && isHexAt(text, i + 2)) {
            bytes += QByteArray::fromHex(text.mid(i + 1, 2));
            i += 2;
        } else {
            bytes += text.at(i);
        }
    }
    return QString::fromUtf8(bytes);
}

} // namespace

Fields decodeForm(const QByteArray &body)
{
    Fields fields;
    for (const QByteArray &pair : body.split('&')) {
        const int equals = pair.indexOf('=');
        const QString name = decoded(equals < 0 ? pair : pair.left(equals));
        if (!name.isEmpty())
            fields.insert(name, equals < 0 ? QString() : decoded(pair.mid(equals + 1)));
    }
    return fields;
}

} // namespace demo
