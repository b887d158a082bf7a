#include "app/context/accountcontext.h"
#include "app/context/k.h"
#include "bench/benchapplication.h"
#include "bench/fixture.h"
#include "bench/measure.h"
#include "fileimport/originalrequests.h"
#include "fileimport/photocell.h"
#include "fileimport/thumbnailtableview.h"
#include "net/servicecall.h"
#include "tests/support/democlient.h"
#include "tests/support/pictures.h"
#include "widgets/theme.h"

#include <QCommandLineParser>
#include <QFile>
#include <QJsonArray>
#include <QScrollBar>
#include <QSet>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <unistd.h>

namespace {

constexpr double eventBoundMs = 50;
constexpr double memoryBoundMb = 300;
constexpr int patienceMs = 10 * 60 * 1000;

double residentMb()
{
    malloc_trim(0);
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        throw bench::Failure(file.errorString());
    const qint64 pages = file.readAll().split(' ').value(1).toLongLong();
    return double(pages * sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

/// The address of a picture that the service makes from a file.
QString registerPicture(BenchApplication *application, const QString &folder)
{
    QFile file(folder + QStringLiteral("/picture.jpg"));
    if (!file.open(QIODevice::WriteOnly) || file.write(jpegOf(cornerPicture({400, 400}))) < 0)
        throw bench::Failure(file.errorString());
    file.close();
    const originalrequests::OrderMap order{
        {QStringLiteral("shopid"), QStringLiteral("101")},
        {QStringLiteral("order_photo_id"), QStringLiteral("800001")}};
    const QByteArray body = originalrequests::listBody(order, QString());
    QObject owner;
    QString url;
    callService(
        &owner, QStringLiteral("&m=order&a=savepicpath"),
        body + "&path=" + QUrl::toPercentEncoding(file.fileName()), [&](const ServiceReply &) {
            callService(&owner, originalrequests::listAction, body,
                        [&url](const ServiceReply &reply) {
                            const auto entries = originalrequests::readListing(reply.object);
                            url = entries.value(0).url;
                        });
        });
    if (!application->runUntil([&url] { return !url.isEmpty(); }, patienceMs))
        throw bench::Failure(QStringLiteral("the picture was not registered"));
    return url;
}

QVector<PhotoEntry> entriesWith(const QString &url, int count)
{
    QVector<PhotoEntry> entries;
    for (int index = 0; index < count; ++index) {
        PhotoEntry entry;
        entry.imgName = QStringLiteral("IMG_%1.jpg").arg(index + 1, 5, 10, QLatin1Char('0'));
        entry.url = QStringLiteral("%1?%2").arg(url).arg(index);
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
            throw bench::Failure(QStringLiteral("waited in vain for ") + what);
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
        bench::judge(QStringLiteral("  longest event while ") + what, costs.first().cpuMs,
                     eventBoundMs, QStringLiteral("ms"), 1);
        bench::line(QStringLiteral("    (%1 ms of the wall clock; event %2 to %3)")
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
        QStringLiteral("scrolling by %1 pixels").arg(step), [&ticks] { ticks.start(tickMs); },
        [desk] { return desk->bar()->value() == desk->bar()->maximum(); });
}

void measureGrid(BenchApplication *application, const QString &url, int count, float scale)
{
    K::uiScale = scale;
    bench::line(QStringLiteral("%1 photos at %2 %").arg(count).arg(qRound(double(scale) * 100)));
    const double before = residentMb();
    const auto entries = entriesWith(url, count);
    DemoClient().clearRequests();
    auto desk = std::make_unique<Desk>(application);
    ThumbnailTableView *grid = desk->grid();
    desk->measure(
        QStringLiteral("cells are made"), [&] { grid->setEntries(entries); },
        [&] {
            desk->look();
            return grid->createdCells() == count;
        });
    desk->await(QStringLiteral("first pictures"), [&] { return desk->showsPictures(); });
    const double withCells = residentMb();

    scrollThrough(desk.get(), desk->bar()->pageStep() / 4, [] { return true; });
    const auto requests = [] { return DemoClient().requests(QStringLiteral("image")).size(); };
    bench::judge(QStringLiteral("  images asked for, of those seen"), requests(), desk->seen(),
                 QString(), 0);
    desk->bar()->setValue(0);
    scrollThrough(desk.get(), desk->bar()->pageStep(), [&] { return desk->showsPictures(); });
    desk->await(QStringLiteral("last pictures"), [&] { return desk->showsPictures(); });
    bench::judge(QStringLiteral("  images asked for after every page was looked at"), requests(),
                 count, QString(), 0);
    const double withPictures = residentMb();
    bench::line(QStringLiteral("  resident: %1 MB before, %2 MB with cells, %3 MB with all images")
                    .arg(bench::number(before, 1), bench::number(withCells, 1),
                         bench::number(withPictures, 1)));
    if (scale > 1.0F)
        bench::line(QStringLiteral("  (memory is bounded at 100 % alone)"));
    else
        bench::judge(QStringLiteral("  resident memory"), withPictures, memoryBoundMb,
                     QStringLiteral("MB"), 1);

    desk->measure(
        QStringLiteral("selecting all and none"),
        [grid] {
            grid->selectAll();
            grid->clearSelection();
        },
        [] { return true; });
    desk->measure(
        QStringLiteral("another list replaces it"), [&] { grid->setEntries(entries.mid(0, 10)); },
        [grid] { return grid->viewport()->findChildren<PhotoCell *>().size() == 10; });
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("What the grid of imported photos costs and keeps its user waiting."));
    parser.addHelpOption();
    parser.addOption({QStringLiteral("photos"), QStringLiteral("Photos in the grid."),
                      QStringLiteral("N"), QStringLiteral("5000")});
    parser.addOption({QStringLiteral("folder"), QStringLiteral("Where the files lie."),
                      QStringLiteral("FOLDER"),
                      QCoreApplication::applicationDirPath() + QStringLiteral("/data")});
    parser.process(application);
    const int count = parser.value(QStringLiteral("photos")).toInt();
    if (count < 100) {
        std::fprintf(stderr, "--photos wants a number of 100 or more\n");
        return 2;
    }
    return bench::runIn(parser.value(QStringLiteral("folder")), [&](const QString &folder) {
        K::instance()->initApplication(&application);
        QApplication::setQuitOnLastWindowClosed(false);
        AccountContext::uid = QStringLiteral("9001");
        const QString url = registerPicture(&application, folder);
        for (const float scale : {1.0F, 2.0F})
            measureGrid(&application, url, count, scale);
        DemoClient().reset();
    });
}
