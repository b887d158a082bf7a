#include "bench/benchapplication.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "bench/windowbench.h"
#include "files/filewriting.h"
#include "orderbrowser/rules/orderarrangement.h"
#include "orderbrowser/rules/ordersheet.h"
#include "orderbrowser/window/browsertable.h"
#include "platform/freedmemory.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QScrollBar>

#include <ctime>

namespace {

constexpr int shownBoundMs = 300;
constexpr int keystrokeBoundMs = 50;
constexpr int scrollBoundMs = 50;
constexpr int exportBoundMs = 3000;
constexpr int memoryBoundMb = 200;
constexpr int scrolls = 200;

double threadCpuMs()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
}

double residentMb()
{
    QFile status("/proc/self/statm"_s);
    if (!status.open(QIODevice::ReadOnly))
        throw bench::Failure("no /proc"_s);
    return status.readAll().split(' ').at(1).toDouble() * 4096 / 1024 / 1024;
}

/// Orders of forty members, most of them other than the next order's.
QJsonObject reply(int orders)
{
    QJsonArray data;
    for (int i = 0; i < orders; ++i) {
        QJsonObject order;
        const auto &fields = orderfields::known();
        for (const orderfields::OrderField &field : fields) {
            if (field.key.startsWith(QLatin1Char('#')) || order.size() >= 30)
                continue;
            const bool isDate = field.kind == orderfields::Kind::Date;
            order.insert(field.key, isDate ? "2026-%1-%2"_s.arg(i % 12 + 1).arg(i % 28 + 1)
                                           : "%1"_s.arg((i * 7919) % 100003));
        }
        order.insert("mname"_s, "张%1"_s.arg(i % 997));
        order.insert("netpath"_s, "\\\\server\\photos\\2026\\%1"_s.arg(i));
        for (int own = order.size(); own < 40; ++own)
            order.insert("own_%1"_s.arg(own), "value %1"_s.arg(i % 50));
        data.append(order);
    }
    return {{"data"_s, data}};
}

double paintMs(BrowserTable *table)
{
    const double before = threadCpuMs();
    table->viewport()->repaint();
    QCoreApplication::processEvents();
    return threadCpuMs() - before;
}

void showAll(BrowserTable *table, const OrderListing &listing)
{
    OrderView view;
    for (const orderfields::OrderField &field : listing.fields)
        view.columns.append({field.key, 0});
    view.columns.resize(qMin(40, view.columns.size()));
    table->showView(view);
}

OrderArrangement arrangement()
{
    OrderArrangement arrangement;
    arrangement.sorting = {{"mname"_s, Qt::AscendingOrder}, {"shotdate"_s, Qt::DescendingOrder}};
    arrangement.today = QDate::currentDate();
    return arrangement;
}

void measure(const QString &folder, int few, int many)
{
    BrowserTable table;
    table.resize(1600, 900);
    table.show();
    QCoreApplication::processEvents();
    QElapsedTimer clock;
    {
        const QJsonObject answer = reply(few);
        showAll(&table, orderlistings::read(answer, {}));
        clock.start();
        const OrderListing listing = orderlistings::read(answer, {});
        OrderArrangement shown = arrangement();
        table.showOrders(listing, orderarrangement::rows(listing, shown));
        paintMs(&table);
        bench::judge("%1 orders of 40 columns read, sorted and shown"_s.arg(few),
                     double(clock.nsecsElapsed()) / 1e6, shownBoundMs, "ms"_s, 1);
        QVector<double> keystrokes;
        for (const QString &typed : {"张"_s, "张1"_s, "张12"_s, "张123"_s}) {
            clock.start();
            shown.filters = {{"mname"_s, typed}};
            table.showOrders(listing, orderarrangement::rows(listing, shown));
            paintMs(&table);
            keystrokes.append(double(clock.nsecsElapsed()) / 1e6);
        }
        bench::judge("keystroke in a filter, slowest"_s, bench::largest(keystrokes),
                     keystrokeBoundMs, "ms"_s, 1);
    }
    table.showOrders({}, {});
    const double idle = residentMb();
    OrderListing listing;
    {
        const QJsonObject answer = reply(many);
        listing = orderlistings::read(answer, {});
    }
    // The heap keeps what the parsed reply took, for the next one.
    bench::line("%1 MB above idle as the heap is left by reading"_s.arg(
        bench::number(residentMb() - idle, 0)));
    platform::giveBackFreedMemory(); // as the window does
    const QVector<int> rows = orderarrangement::rows(listing, arrangement());
    double before = threadCpuMs();
    table.showOrders(listing, rows);
    paintMs(&table);
    bench::judge("%1 orders shown, processor time"_s.arg(many), threadCpuMs() - before,
                 scrollBoundMs, "ms"_s, 1);
    bench::judge("memory of the orders and their table, above idle"_s, residentMb() - idle,
                 memoryBoundMb, "MB"_s, 0);
    QVector<double> events;
    QScrollBar *bar = table.verticalScrollBar();
    for (int i = 0; i < scrolls; ++i) {
        before = threadCpuMs();
        bar->setValue(int(qint64(bar->maximum()) * i / scrolls));
        QCoreApplication::processEvents();
        events.append(threadCpuMs() - before);
    }
    bench::judge("scrolling, slowest event, processor time"_s, bench::largest(events),
                 scrollBoundMs, "ms"_s, 1);
    clock.start();
    const OrderSheet sheet{listing, rows, table.shownKeys(), table.orders()->display()};
    if (!writeBytes(folder + "/orders.csv"_s, sheet.head() + sheet.lines(0, rows.size())))
        throw bench::Failure("the table was not written"_s);
    bench::judge("export of %1 rows"_s.arg(many), double(clock.nsecsElapsed()) / 1e6, exportBoundMs,
                 "ms"_s, 0);
}

} // namespace

int main(int argc, char **argv)
{
    BenchApplication application(argc, argv);
    int few = 5000;
    int many = 50000;
    const QString parent = bench::readOptions(
        application, "How long the order browser takes for long lists."_s,
        {{"few", "Orders of a usual list.", &few}, {"many", "Orders of a long one.", &many}});
    return bench::runWindowIn(&application, parent,
                              [&](const QString &folder) { measure(folder, few, many); });
}
