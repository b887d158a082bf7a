#include "bench/fixture.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "distribution/naming/foldernames.h"
#include "distribution/plan/distributionplan.h"
#include "distribution/sheet/productionsheet.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QRandomGenerator>

#include <ctime>
#include <memory>

namespace {

constexpr double decodeFactor = 3;
constexpr double allowance = 1.4;   // seconds of processor time
constexpr double wallAllowance = 2; // the disk is waited for, too
constexpr double largestFile = 15;

struct Settings
{
    int photos = 500;
    int rounds = 5;
};

QString photoName(int number)
{
    return "IMG_%1.jpg"_s.arg(number, 4, 10, QLatin1Char('0'));
}

/// A thumbnail with as much detail as a photo has.
QByteArray thumbnail(QRandomGenerator *random)
{
    QImage picture(random->bounded(2) ? QSize(90, 60) : QSize(60, 90), QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            picture.setPixel(x, y,
                             qRgb(x * 2 + random->bounded(40), y * 2 + random->bounded(40), 120));
        }
    }
    return jpegOf(picture);
}

/// An order with a thumbnail for each of its photos, each of which is chosen and in a product.
OrderDetail makeOrder(const QString &folder, int photoCount, int products)
{
    const QString thumbnails = folder + QLatin1Char('/') + foldernames::thumbnails;
    QDir().mkpath(thumbnails);
    QRandomGenerator random(7);
    OrderDetail detail;
    for (int number = 0; number < photoCount; ++number) {
        QFile file(thumbnails + QLatin1Char('/') + photoName(number));
        if (!file.open(QIODevice::WriteOnly) || file.write(thumbnail(&random)) <= 0)
            throw bench::Failure("cannot write "_s + file.fileName());
        DetailPhoto photo;
        photo.imgName = photoName(number);
        detail.images.append(photo);
    }
    for (int number = 0; number < products; ++number) {
        DetailProduct product;
        product.id = QString::number(number);
        product.goodName = "纪念相册 %1 寸"_s.arg(number);
        const int first = number * photoCount / products;
        product.imgs = detail.images.mid(first, (number + 1) * photoCount / products - first);
        (number < 2 ? detail.urgentGoods : detail.goods).append(product);
    }
    return detail;
}

struct Seconds
{
    double wall = 0;
    double cpu = 0;
};

/// The work is done on this thread alone.
template <typename Work> Seconds timed(const Work &work)
{
    QElapsedTimer clock;
    clock.start();
    const std::clock_t cpu = std::clock();
    work();
    return {double(clock.nsecsElapsed()) / 1e9, double(std::clock() - cpu) / CLOCKS_PER_SEC};
}

void decodeAll(const QString &folder, int photoCount)
{
    for (int number = 0; number < photoCount; ++number) {
        const QString path = folder + QLatin1Char('/') + foldernames::thumbnails +
                             QLatin1Char('/') + photoName(number);
        if (QImageReader(path).read().isNull())
            throw bench::Failure("cannot read "_s + path);
    }
}

void measure(const Settings &settings, const QString &folder, int products)
{
    const OrderDetail detail = makeOrder(folder, settings.photos, products);
    PlanRequest request;
    request.type = DesignFileSplitTypes::DownloadSelection;
    request.detail = std::make_shared<const OrderDetail>(detail);
    request.orderFolder = folder + QLatin1Char('/');
    const PlannedPictures pictures =
        planOrder(request, [](const QString &) { return QStringList(); }).pictures;
    QVector<double> wall;
    QVector<double> cpu;
    QVector<double> decoding;
    for (int round = 0; round < settings.rounds; ++round) {
        decoding.append(timed([&] { decodeAll(folder, settings.photos); }).cpu);
        QString problem;
        const Seconds printing =
            timed([&] { problem = printProductionSheet(detail, folder, pictures); });
        if (!problem.isEmpty())
            throw bench::Failure(problem);
        wall.append(printing.wall);
        cpu.append(printing.cpu);
    }
    const double decode = bench::median(decoding);
    bench::line("%1 products of %2 photos"_s.arg(products).arg(settings.photos / products));
    bench::line("bare decoding of %1 thumbnails: %2 s of processor time"_s.arg(settings.photos)
                    .arg(bench::number(decode, 3)));
    bench::line("printing, processor time: %1 s"_s.arg(bench::listed(cpu, 2)));
    bench::line("printing, wall: %1 s"_s.arg(bench::listed(wall, 2)));
    bench::judge("sheet, processor time"_s, bench::median(cpu), decodeFactor * decode + allowance,
                 "s"_s, 2);
    bench::judge("sheet, wall"_s, bench::median(wall), decodeFactor * decode + wallAllowance, "s"_s,
                 2);
    const QFileInfo sheet(folder + QLatin1Char('/') + foldernames::sheetFile);
    bench::judge("size of the file"_s, double(sheet.size()) / (1 << 20), largestFile, "MB"_s, 1);
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    Settings settings;
    const QString folder =
        bench::readOptions(application, "Times the printing of a production sheet."_s,
                           {{"photos", "Photos, all in products.", &settings.photos, 100},
                            {"rounds", "Times each figure is taken.", &settings.rounds}});
    return bench::runIn(folder, [&settings](const QString &made) {
        for (const int products : {10, 100})
            measure(settings, made, products);
    });
}
