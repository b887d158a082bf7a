#include "bench/measure.h"
#include "bench/options.h"
#include "bench/windowbench.h"
#include "fileimport/imported/originalrequests.h"
#include "net/orderfiles.h"
#include "net/servicecall.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "tests/support/text.h"
#include "thumbnails/photocell.h"
#include "thumbnails/thumbnailtableview.h"
#include "widgets/theme/theme.h"

#include <QFile>
#include <QJsonArray>
#include <QScrollBar>
#include <QSet>
#include <QTimer>
#include <QUrl>

#include <algorithm>

namespace {

constexpr double eventBoundMs = 50;
constexpr double memoryBoundMb = 300;
constexpr int patienceMs = 10 * 60 * 1000;

/// The address of a picture that the service makes from a file.
QString registerPicture(BenchApplication *application, const QString &folder)
{
    QFile file(folder + "/picture.jpg"_s);
    if (!file.open(QIODevice::WriteOnly) || file.write(jpegOf(cornerPicture({400, 400}))) < 0)
        throw bench::Failure(file.errorString());
    file.close();
    const originalrequests::OrderMap order{{"shopid"_s, "101"_s}, {"order_photo_id"_s, "800001"_s}};
    const QByteArray body = originalrequests::listBody(order, QString());
    QObject owner;
    QString url;
    callService(
        &owner, "&m=order&a=savepicpath"_s,
        body + "&path=" + QUrl::toPercentEncoding(file.fileName()), [&](const ServiceReply &) {
            callService(&owner, orderfiles::listAction, body, [&url](const ServiceReply &reply) {
                const auto entries = originalrequests::readListing(reply.object);
                url = entries.value(0).url;
            });
        });
    if (!application->runUntil([&url] { return !url.isEmpty(); }, patienceMs))
        throw bench::Failure("the picture was not registered"_s);
    return url;
}

QVector<PhotoEntry> entriesWith(const QString &url, int count)
{
    QVector<PhotoEntry> entries;
    for (int index = 0; index < count; ++index) {
        PhotoEntry entry;
        entry.imgName = "IMG_%1.jpg"_s.arg(index + 1, 5, 10, QLatin1Char('0'));
        entry.url = "%1?%2"_s.arg(url).arg(index);
        entries.append(entry);
    }
    return entries;
}

/// The grid, its user, and what its user has seen.
class Desk
{
public:
    explicit Desk(BenchApplication *application) : application_(application)
    {
        grid_.setStyleSheet(theme::windowStyle());
        grid_.resize(K::scaledPx(600), K::scaledPx(500));
        grid_.show();
        QObject::connect(grid_.verticalScrollBar(), &QScrollBar::valueChanged, &grid_,
                         [this] { look(); });
    }

    ThumbnailTableView *grid() { return &grid_; }
    QScrollBar *bar() { return grid_.verticalScrollBar(); }
    int seen() const { return seen_.size(); }

    void await(const QString &what, const std::function<bool()> &done)
    {
        if (!application_->runUntil(done, patienceMs))
            throw bench::Failure("waited in vain for "_s + what);
    }
    /// What \a act and the waiting for \a done cost in single events.
    void measure(const QString &what, const std::function<void()> &act,
                 const std::function<bool()> &done)
    {
        application_->startWatching();
        QMetaObject::invokeMethod(&grid_, act, Qt::QueuedConnection);
        bool began = false;
        QMetaObject::invokeMethod(
            &grid_, [&began] { began = true; }, Qt::QueuedConnection);
        await(what, [&] { return began && done(); });
        const auto costs = application_->stopWatching();
        bench::judge("  longest event while "_s + what, costs.first().cpuMs, eventBoundMs, "ms"_s,
                     1);
        bench::line("    (%1 ms of the wall clock; event %2 to %3)"_s
                        .arg(bench::number(costs.first().wallMs, 1))
                        .arg(costs.first().type)
                        .arg(QString::fromLatin1(costs.first().receiver)));
    }
    bool showsPictures() const
    {
        const auto visible = visibleCells();
        return std::all_of(visible.cbegin(), visible.cend(),
                           [this](int index) { return grid_.cell(index)->isLoaded; });
    }
    /// Notes which cells are on the screen.
    void look()
    {
        const auto visible = visibleCells();
        for (const int index : visible)
            seen_.insert(index);
    }

private:
    QVector<int> visibleCells() const
    {
        constexpr int columns = 5;
        QVector<int> visible;
        if (grid_.createdCells() <= columns)
            return visible;
        const int pitch = grid_.cell(columns)->y();
        const int top = grid_.verticalScrollBar()->value();
        const int rows = (top + grid_.viewport()->height()) / pitch + 1;
        for (int index = top / pitch * columns; index < qMin(rows * columns, grid_.createdCells());
             ++index)
            visible.append(index);
        return visible;
    }

    BenchApplication *application_;
    QSet<int> seen_;
    ThumbnailTableView grid_;
};

/// From top to bottom, one step at each tick at which \a mayGoOn.
void scrollThrough(Desk *desk, int step, const std::function<bool()> &mayGoOn)
{
    constexpr int tickMs = 8;
    QTimer ticks;
    QObject::connect(&ticks, &QTimer::timeout, desk->grid(), [&] {
        if (mayGoOn())
            desk->bar()->setValue(desk->bar()->value() + step);
    });
    desk->measure(
        "scrolling by %1 pixels"_s.arg(step), [&ticks] { ticks.start(tickMs); },
        [desk] { return desk->bar()->value() == desk->bar()->maximum(); });
}

void measureGrid(BenchApplication *application, const QString &url, int count, float scale)
{
    K::uiScale = scale;
    bench::line("%1 photos at %2 %"_s.arg(count).arg(qRound(double(scale) * 100)));
    const double before = bench::residentMb();
    const auto entries = entriesWith(url, count);
    DemoClient().clearRequests();
    auto desk = std::make_unique<Desk>(application);
    ThumbnailTableView *grid = desk->grid();
    desk->measure(
        "cells are made"_s, [&] { grid->setEntries(entries); },
        [&] {
            desk->look();
            return grid->createdCells() == count;
        });
    desk->await("first pictures"_s, [&] { return desk->showsPictures(); });
    const double withCells = bench::residentMb();

    scrollThrough(desk.get(), desk->bar()->pageStep() / 4, [] { return true; });
    const auto requests = [] { return DemoClient().requests("image"_s).size(); };
    bench::judge("  images asked for, of those seen"_s, requests(), desk->seen(), QString(), 0);
    desk->bar()->setValue(0);
    scrollThrough(desk.get(), desk->bar()->pageStep(), [&] { return desk->showsPictures(); });
    desk->await("last pictures"_s, [&] { return desk->showsPictures(); });
    bench::judge("  images asked for after every page was looked at"_s, requests(), count,
                 QString(), 0);
    const double withPictures = bench::residentMb();
    bench::line("  resident: %1 MB before, %2 MB with cells, %3 MB with all images"_s.arg(
        bench::number(before, 1), bench::number(withCells, 1), bench::number(withPictures, 1)));
    if (scale > 1.0F)
        bench::line("  (memory is bounded at 100 % alone)"_s);
    else
        bench::judge("  resident memory"_s, withPictures, memoryBoundMb, "MB"_s, 1);

    desk->measure(
        "selecting all and none"_s,
        [grid] {
            grid->selectAll();
            grid->clearSelection();
        },
        [] { return true; });
    desk->measure(
        "another list replaces it"_s, [&] { grid->setEntries(entries.mid(0, 10)); },
        [grid] { return grid->viewport()->findChildren<PhotoCell *>().size() == 10; });
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    int count = 5000;
    const QString parent = bench::readOptions(
        application, "What the grid of imported photos costs and keeps its user waiting."_s,
        {{"photos", "Photos in the grid.", &count, 100}});
    return bench::runWindowIn(&application, parent, [&](const QString &folder) {
        const QString url = registerPicture(&application, folder);
        for (const float scale : {1.0F, 2.0F})
            measureGrid(&application, url, count, scale);
        DemoClient().reset();
    });
}
