#include "demo/distributionmaterial.h"

#include "demo/orientationtag.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLinearGradient>
#include <QMap>
#include <QPainter>
#include <QTransform>

namespace demo {

namespace {

constexpr int longSide = 600;
constexpr int shortSide = 400;

QByteArray jpeg(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "jpeg", 85) ? bytes : QByteArray();
}

QImage painted(const QString &seed, int width, int height)
{
    const uint hash = qHash(seed, 0);
    QImage image(width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, width, height);
    sky.setColorAt(0, QColor::fromHsv(int(hash % 360), 90, 245));
    sky.setColorAt(1, QColor::fromHsv(int((hash / 360 + 120) % 360), 140, 150));
    painter.fillRect(image.rect(), sky);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 250, 235));
    painter.drawEllipse(QPointF(width * 0.42, height * 0.45), width * 0.08, width * 0.1);
    painter.setBrush(QColor(60, 50, 60));
    painter.drawEllipse(QPointF(width * 0.6, height * 0.42), width * 0.08, width * 0.1);
    painter.setBrush(QColor(255, 255, 255, 190));
    painter.drawRoundedRect(QRectF(width * 0.3, height * 0.65, width * 0.42, height * 0.35),
                            width * 0.08, width * 0.08);
    return image;
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.exists() && file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

void writePhoto(const DistributionPhoto &photo, const QString &root)
{
    const QString folder = root + QLatin1Char('/') + photo.folder;
    const QString name = fileNameOnShare(photo.name);
    const QString full = folder + QStringLiteral("/all/") + name;
    if (QFile::exists(full))
        return;
    const QString seed = photo.folder + photo.name;
    for (const char *variant : {"all", "90", "190", "1920"})
        QDir().mkpath(folder + QLatin1Char('/') + QString::fromLatin1(variant));
    const QImage upright =
        photo.sideways ? painted(seed, shortSide, longSide) : painted(seed, longSide, shortSide);
    writeFile(full, photo.sideways
                        ? withOrientation(jpeg(upright.transformed(QTransform().rotate(-90))), 6)
                        : jpeg(upright));
    for (const int side : {90, 190}) {
        writeFile(QStringLiteral("%1/%2/%3").arg(folder).arg(side).arg(name),
                  jpeg(upright.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    }
    writeFile(folder + QStringLiteral("/1920/") + name, jpeg(upright));
    if (!photo.rawSuffix.isEmpty()) {
        writeFile(folder + QStringLiteral("/all/") + name.section(QLatin1Char('.'), 0, -2) +
                      photo.rawSuffix,
                  QByteArray(20000, 'r') + seed.toUtf8());
    }
}

// Code 39: nine elements a character, bars and gaps in turns, "w" for wide.
QString elementsOf(QChar character)
{
    static const QMap<QChar, QString> code = [] {
        QMap<QChar, QString> map;
        const QStringList rows =
            QStringLiteral("0nnnwwnwnn 1wnnwnnnnw 2nnwwnnnnw 3wnwwnnnnn 4nnnwwnnnw 5wnnwwnnnn "
                           "6nnwwwnnnn 7nnnwnnwnw 8wnnwnnwnn 9nnwwnnwnn Awnnnnwnnw Bnnwnnwnnw "
                           "Cwnwnnwnnn Dnnnnwwnnw Ewnnnwwnnn Fnnwnwwnnn Gnnnnnwwnw Hwnnnnwwnn "
                           "Innwnnwwnn Jnnnnwwwnn Kwnnnnnnww Lnnwnnnnww Mwnwnnnnwn Nnnnnwnnww "
                           "Ownnnwnnwn Pnnwnwnnwn Qnnnnnnwww Rwnnnnnwwn Snnwnnnwwn Tnnnnwnwwn "
                           "Uwwnnnnnnw Vnwwnnnnnw Wwwwnnnnnn Xnwnnwnnnw Ywwnnwnnnn Znwwnwnnnn "
                           "-nwnnnnwnw .wwnnnnwnn *nwnnwnwnn")
                .split(QLatin1Char(' '));
        for (const QString &row : rows)
            map.insert(row.at(0), row.mid(1));
        map.insert(QLatin1Char(' '), QStringLiteral("nwwnnnwnn"));
        return map;
    }();
    return code.value(character.toUpper());
}

} // namespace

DistributionSet distributionSet(const Order &order)
{
    DistributionSet set;
    if (order.chosenPhotos.isEmpty())
        return set;
    const QString selected = QStringLiteral("选片");
    for (const Photo &photo : order.chosenPhotos) {
        DistributionPhoto chosen{photo.id, photo.name, selected, set.chosen.size() == 1, {}};
        if (set.chosen.size() < 2)
            chosen.rawSuffix =
                set.chosen.isEmpty() ? QStringLiteral(".CR2") : QStringLiteral(".nef");
        set.chosen.append(chosen);
        set.basic.append(
            {photo.id + QLatin1Char('1'), photo.name, QStringLiteral("简修"), false, {}});
        if (set.retouched.size() < 2) {
            set.retouched.append(
                {photo.id + QLatin1Char('2'), photo.name, QStringLiteral("精修"), false, {}});
        }
    }
    for (int number = 1; number <= 2; ++number) {
        set.archive.append({QStringLiteral("%1%2").arg(order.photoSetId).arg(900 + number),
                            QStringLiteral("RD_000%1.jpg").arg(number),
                            selected,
                            false,
                            {}});
    }
    set.rejected.append({order.photoSetId + QStringLiteral("951"),
                         QStringLiteral("TP_0001.jpg"),
                         QStringLiteral("汰片"),
                         false,
                         {}});
    return set;
}

QString fileNameOnShare(const QString &photoName)
{
    QString name = photoName;
    for (const char *character : {"/", "\\", ":", "?", "*", "<", ">", "|", "\""})
        name.replace(QLatin1String(character), QLatin1String("_"));
    return name;
}

void writeDistributionSet(const DistributionSet &set, const QString &root)
{
    for (const auto &photos : {set.chosen, set.archive, set.rejected, set.basic, set.retouched}) {
        for (const DistributionPhoto &photo : photos)
            writePhoto(photo, root);
    }
}

QByteArray smallPhoto(const QString &seed, int width, int height)
{
    return jpeg(painted(seed, width, height));
}

QByteArray barcodePicture(const QString &text)
{
    constexpr int narrow = 2;
    constexpr int wide = 5;
    constexpr int margin = 20;
    constexpr int height = 90;
    QString elements;
    const QString framed = QLatin1Char('*') + text + QLatin1Char('*');
    for (const QChar character : framed) {
        const QString nine = elementsOf(character);
        if (!nine.isEmpty())
            elements += nine + QLatin1Char('n');
    }
    int width = 2 * margin;
    for (const QChar element : qAsConst(elements))
        width += element == QLatin1Char('w') ? wide : narrow;
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    int x = margin;
    for (int index = 0; index < elements.size(); ++index) {
        const int step = elements.at(index) == QLatin1Char('w') ? wide : narrow;
        if (index % 2 == 0) // nine elements and a gap: bars are the even ones throughout
            painter.fillRect(x, 10, step, height - 20, Qt::black);
        x += step;
    }
    painter.end();
    return jpeg(image);
}

} // namespace demo
