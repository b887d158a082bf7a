#include "demo/pictures.h"

#include "demo/orientationtag.h"

#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QTransform>

namespace demo {

namespace {

constexpr int longSide = 1500;
constexpr int shortSide = 1000;
constexpr int jpegQuality = 88;
constexpr int smallSide = 400; // of what the service shows of a photo

QColor hue(int degrees, int saturation, int value)
{
    return QColor::fromHsv(((degrees % 360) + 360) % 360, saturation, value);
}

// Flat colours compress to almost nothing; a photograph has grain.
void addGrain(QImage &image, QRandomGenerator &random)
{
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        quint32 noise = random.generate();
        for (int x = 0; x < image.width(); ++x) {
            noise = noise * 1664525u + 1013904223u;
            const int grain = static_cast<int>(noise >> 28) - 8;
            line[x] =
                qRgb(qBound(0, qRed(line[x]) + grain, 255), qBound(0, qGreen(line[x]) + grain, 255),
                     qBound(0, qBlue(line[x]) + grain, 255));
        }
    }
}

void paintHills(QPainter &painter, QRandomGenerator &random, int baseHue)
{
    for (int layer = 0; layer < 4; ++layer) {
        const int top = 430 + layer * 130;
        QPolygonF ridge;
        ridge << QPointF(0, shortSide);
        for (int x = 0; x <= longSide; x += 75)
            ridge << QPointF(x, top + random.bounded(150 - layer * 20) - 60);
        ridge << QPointF(longSide, shortSide);
        painter.setBrush(hue(baseHue + layer * 12, 60 + layer * 35, 190 - layer * 40));
        painter.drawPolygon(ridge);
    }
}

QImage landscape(QRandomGenerator &random)
{
    QImage image(longSide, shortSide, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const int skyHue = 190 + random.bounded(190);
    QLinearGradient sky(0, 0, 0, 650);
    sky.setColorAt(0, hue(skyHue, 150, 210));
    sky.setColorAt(1, hue(skyHue + 150, 50, 250));
    painter.fillRect(image.rect(), sky);
    const QPointF sun(200 + random.bounded(1100), 180 + random.bounded(180));
    QRadialGradient glow(sun, 260);
    glow.setColorAt(0, QColor(255, 250, 220, 255));
    glow.setColorAt(0.2, QColor(255, 240, 190, 200));
    glow.setColorAt(1, QColor(255, 230, 180, 0));
    painter.setBrush(glow);
    painter.drawEllipse(sun, 260, 260);
    paintHills(painter, random, 80 + random.bounded(140));
    painter.end();
    addGrain(image, random);
    return image;
}

void paintPerson(QPainter &painter, const QPointF &head, const QColor &clothes, bool longHair)
{
    painter.setBrush(QColor(45, 32, 28));
    if (longHair)
        painter.drawRoundedRect(QRectF(head.x() - 88, head.y() - 110, 176, 330), 80, 80);
    else
        painter.drawEllipse(head + QPointF(0, -30), 92, 95);
    QPolygonF body;
    body << head + QPointF(-60, 130) << head + QPointF(60, 130) << head + QPointF(210, 330)
         << head + QPointF(250, 1100) << head + QPointF(-250, 1100) << head + QPointF(-210, 330);
    painter.setBrush(clothes);
    painter.drawPolygon(body);
    painter.setBrush(QColor(238, 200, 175));
    painter.drawRect(QRectF(head.x() - 32, head.y() + 70, 64, 90));
    painter.drawEllipse(head, 76, 98);
}

QImage portrait(QRandomGenerator &random)
{
    QImage image(shortSide, longSide, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const int backHue = random.bounded(360);
    QLinearGradient back(0, 0, shortSide, longSide);
    back.setColorAt(0, hue(backHue, 70, 235));
    back.setColorAt(1, hue(backHue + 60, 110, 110));
    painter.fillRect(image.rect(), back);
    for (int i = 0; i < 40; ++i) {
        const int radius = 20 + random.bounded(90);
        QColor light = hue(backHue + random.bounded(80), 40, 255);
        light.setAlpha(40 + random.bounded(60));
        painter.setBrush(light);
        painter.drawEllipse(QPoint(random.bounded(shortSide), random.bounded(longSide)), radius,
                            radius);
    }
    paintPerson(painter, QPointF(380, 520 + random.bounded(60)), QColor(40, 44, 60), false);
    paintPerson(painter, QPointF(630, 600 + random.bounded(60)), QColor(246, 242, 236), true);
    painter.end();
    addGrain(image, random);
    return image;
}

QByteArray jpeg(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(jpegQuality);
    return writer.write(image) ? bytes : QByteArray();
}

QByteArray rawStandIn(QRandomGenerator &random)
{
    QVector<quint32> words(70000 + random.bounded(30000));
    random.fillRange(words.data(), words.size());
    return QByteArray(reinterpret_cast<const char *>(words.constData()),
                      words.size() * static_cast<int>(sizeof(quint32)));
}

template <typename Make> QString keepOrWrite(const QString &path, Make make)
{
    if (QFileInfo::exists(path))
        return QString();
    const QByteArray bytes = make();
    QSaveFile file(path);
    if (bytes.isEmpty() || !file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() ||
        !file.commit())
        return QStringLiteral("cannot write %1").arg(path);
    return QString();
}

QString makeCameraCard(const QString &folder)
{
    constexpr int photoCount = 12;
    for (int number = 1; number <= photoCount; ++number) {
        const QString name =
            QStringLiteral("/IMG_%1.%2")
                .arg(number, 4, 10, QLatin1Char('0'))
                .arg(number == photoCount ? QStringLiteral("JPEG") : QStringLiteral("jpg"));
        QString problem = keepOrWrite(folder + name, [number] {
            QRandomGenerator random(static_cast<quint32>(number));
            if (number % 2 == 1)
                return jpeg(landscape(random));
            const QImage upright = portrait(random);
            if (number % 4 == 0 && number != photoCount)
                return withOrientation(jpeg(upright.transformed(QTransform().rotate(-90))), 6);
            return jpeg(upright);
        });
        if (!problem.isEmpty())
            return problem;
    }
    for (const char *name : {"IMG_0001.CR2", "IMG_0002.NEF", "IMG_0003.arw", "IMG_0004.cr3"}) {
        QString problem = keepOrWrite(folder + QLatin1Char('/') + QLatin1String(name), [name] {
            QRandomGenerator random(qHash(QLatin1String(name), 0));
            return rawStandIn(random);
        });
        if (!problem.isEmpty())
            return problem;
    }
    return QString();
}

QString makeRetouched(const QString &folder, const QStringList &names)
{
    for (const QString &name : names) {
        QString problem = keepOrWrite(folder + QLatin1Char('/') + name, [&name] {
            QRandomGenerator random(qHash(name, 0));
            return jpeg(portrait(random));
        });
        if (!problem.isEmpty())
            return problem;
    }
    return QString();
}

} // namespace

QByteArray inventedPicture(const QString &seed)
{
    const uint number = qHash(seed, 0);
    QRandomGenerator random(number);
    const QImage picture = number % 2 == 0 ? landscape(random) : portrait(random);
    return jpeg(
        picture.scaled(smallSide, smallSide, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

QByteArray smallPicture(const QString &file)
{
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    if (reader.size().isValid())
        reader.setScaledSize(reader.size().scaled(smallSide, smallSide, Qt::KeepAspectRatio));
    const QImage picture = reader.read();
    return picture.isNull() ? QByteArray() : jpeg(picture);
}

QByteArray hugePicture()
{
    static const QByteArray png = [] {
        QImage picture(20000, 20000, QImage::Format_Mono);
        picture.fill(1);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        picture.save(&buffer, "png");
        return bytes;
    }();
    return png;
}

QString makeMaterial(const QString &folder, const QStringList &chosen)
{
    const QString card = folder + QStringLiteral("/camera-card/DCIM/100TESSA");
    const QString retouched = folder + QStringLiteral("/retouched");
    if (!QDir().mkpath(card) || !QDir().mkpath(retouched))
        return QStringLiteral("cannot make %1").arg(card);
    QString problem = makeCameraCard(card);
    if (!problem.isEmpty())
        return problem;
    return makeRetouched(retouched, chosen + QStringList{QStringLiteral("IMG_0099.jpg")});
}

} // namespace demo
