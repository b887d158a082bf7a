#include "fuzz/harness.h"

#include "platform/pathform.h"

#include <QFile>
#include <QGuiApplication>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    // One line an input would be most of what there is to do.
    QLoggingCategory::setFilterRules(QStringLiteral("*=false"));
    static QGuiApplication application(*argc, *argv);
    return 0;
}

namespace fuzzing {

void require(bool holds, const char *what, const QString &detail)
{
    if (holds)
        return;
    std::fprintf(stderr, "DOES NOT HOLD: %s\n%s\n", what, qUtf8Printable(detail));
    std::abort();
}

QByteArray bytesOf(const uint8_t *data, size_t size)
{
    return QByteArray::fromRawData(reinterpret_cast<const char *>(data), int(size));
}

QString textOf(const uint8_t *data, size_t size)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
}

QString wideTextOf(const uint8_t *data, size_t size)
{
    QString text;
    for (size_t at = 0; at + 1 < size; at += 2)
        text += QChar(uint(data[at]) | uint(data[at + 1]) << 8);
    return text;
}

QStringList linesOf(const uint8_t *data, size_t size)
{
    return textOf(data, size).split(QLatin1Char('\n'));
}

QString scratchFolder()
{
    static const QTemporaryDir folder;
    require(folder.isValid(), "there is a folder to write to", folder.errorString());
    return folder.path();
}

QString scratchFile(const QString &name, const QByteArray &content)
{
    QFile file(scratchFolder() + QLatin1Char('/') + name);
    require(file.open(QIODevice::WriteOnly) && file.write(content) == content.size(),
            "the input can be written", file.errorString());
    return file.fileName();
}

bool isOneComponent(const QString &name)
{
    static const QRegularExpression forbidden(QStringLiteral("[<>:\"/\\\\|?*\\x00-\\x1f\\x7f]"));
    static const QRegularExpression device(
        QStringLiteral("^(con|prn|aux|nul|conin\\$|conout\\$|clock\\$|(com|lpt)[0-9¹²³]) *(\\.|$)"),
        QRegularExpression::CaseInsensitiveOption);
    // As it is listed again.
    const bool isWhole = QFile::decodeName(QFile::encodeName(name)) == name;
    return !name.isEmpty() && isWhole && platform::nameFits(name) && !name.contains(forbidden) &&
           !name.endsWith(QLatin1Char('.')) && !name.endsWith(QLatin1Char(' ')) &&
           !name.contains(device);
}

} // namespace fuzzing
