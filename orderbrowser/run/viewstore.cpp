#include "orderbrowser/run/viewstore.h"

#include "app/context/logging.h"
#include "files/filewriting.h"
#include "files/safename.h"
#include "tasks/background.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

/// Far more than the file ever holds.
constexpr qint64 largestFile = qint64(4) * 1024 * 1024;

void keepAside(const QString &path)
{
    const QString aside = QStringLiteral("%1.%2").arg(
        path, QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss-zzz")));
    if (!QFile::rename(path, aside))
        qCWarning(lcTessavo) << "order views are not kept aside:" << aside;
}

OrderViews readFile(const QString &path)
{
    QFile file(path);
    if (!file.exists())
        return {};
    QString problem;
    if (!file.open(QIODevice::ReadOnly)) {
        problem = file.errorString();
    } else if (file.size() > largestFile) {
        problem = QStringLiteral("too large");
    } else if (const auto views = OrderViews::fromJson(file.readAll(), &problem)) {
        return *views;
    }
    file.close();
    qCWarning(lcTessavo) << "order views cannot be read:" << path << problem;
    keepAside(path);
    return {};
}

bool writeFile(const QString &path, const QByteArray &json)
{
    return makeFolder(QFileInfo(path).absolutePath()) && writeBytes(path, json);
}

} // namespace

ViewStore::ViewStore(const QString &uid, QObject *parent)
    : QObject(parent)
    , path_(QDir(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation))
                .filePath(safeFileName(QStringLiteral("order_list_%1.json").arg(uid))))
{
}

void ViewStore::read()
{
    onDisk(
        this, path_, [path = path_] { return readFile(path); },
        [this](const OrderViews &views) { emit hasRead(views); });
}

void ViewStore::write(const OrderViews &views)
{
    waiting_ = views.toJson();
    if (!isWriting_)
        writeNext();
}

void ViewStore::writeNext()
{
    isWriting_ = waiting_.has_value();
    if (!isWriting_) {
        emit hasWritten();
        return;
    }
    onDisk(
        this, path_,
        [path = path_, json = *std::exchange(waiting_, std::nullopt)] {
            return writeFile(path, json);
        },
        [this](bool written) {
            if (!written)
                qCWarning(lcTessavo) << "order views cannot be written:" << path_;
            writeNext();
        });
}
