#include "bench/fixture.h"
#include "bench/measure.h"
#include "bench/options.h"
#include "ledger/ledger.h"
#include "tests/support/text.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlQuery>

#include <algorithm>
#include <functional>

// The ledger of years: how long its questions take, how large it becomes, and what it costs those
// that write into it.

namespace {

using namespace bench;

constexpr double lookBoundMs = 1;
constexpr double searchBoundMs = 300;
constexpr double sizeBoundMb = 600;
constexpr int copiesOfRun = 400;
constexpr qint64 minuteMs = 60000;

struct Options
{
    int copies = 2000000;
    int rounds = 7;
};

ledger::Hash hashOf(qint64 number)
{
    // As even as a real one, so that the index is as large.
    QByteArray hash(16, '\0');
    quint64 state = quint64(number);
    for (char &byte : hash) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        byte = char(state >> 56);
    }
    return hash;
}

ledger::OrderKey orderOf(int run)
{
    const QString number = QString::number(100000 + run);
    return {{"7"_s, "9"_s + number, "88"_s + number}, "TS%1-1"_s.arg(number), "王小明 李小红"_s};
}

QString targetFolder(int run)
{
    return R"(\\nas-studio\photos\2026\11\TS%1-1 王小明 李小红\)"_s.arg(100000 + run);
}

/// Names as cameras count them, over several cameras.
QString fileName(qint64 number)
{
    return "%1%2.CR3"_s.arg(QStringList{"IMG_"_s, "DSC_"_s, "_MG_"_s}.at(int(number / 10000 % 3)))
        .arg(number % 10000, 4, 10, QLatin1Char('0'));
}

ledger::FileStamp stampOf(qint64 number)
{
    return {fileName(number), 20000000 + number * 7919 % 12000000, 1600000000000 + number * 2000};
}

/// One run of copies, all the way to the service.
void writeRun(Ledger &ledger, int run, int copies)
{
    const ledger::RunId id =
        ledger.beginRun({{"1001"_s, "7"_s, ledger::Work::ImportOriginals}, "摄影师小李"_s});
    QVector<ledger::NewCopy> begun;
    for (int place = 0; place < copies; ++place) {
        const ledger::FileStamp stamp = stampOf(qint64(run) * copiesOfRun + place);
        ledger::NewCopy copy;
        copy.source = "E:/DCIM/%1CANON/"_s.arg(100 + run % 800) + stamp.name;
        copy.volume = {"EOS_DIGITAL"_s, QString::number(run % 50 + 0xA1B20000, 16)};
        copy.sourceBytes = stamp.bytes;
        copy.sourceModifiedMs = stamp.modifiedMs;
        copy.target = targetFolder(run) + stamp.name;
        copy.toRegister = true;
        begun.append(copy);
    }
    const QVector<ledger::CopyId> ids = ledger.beginCopies(id, orderOf(run), begun);
    for (int place = 0; place < copies; ++place) {
        const ledger::Hash hash = hashOf(qint64(run) * copiesOfRun + place);
        ledger::CopyResult result;
        result.proof = Proof::Server;
        result.sourceHash = hash;
        result.targetHash = hash;
        ledger.finishCopy(ids.at(place), result);
    }
    ledger.registerCopies(ids);
    ledger.endRun(id);
}

/// Runs of a few hundred copies over the days that are kept.
void fill(const QString &folder, int copies)
{
    const int runs = std::max(1, copies / copiesOfRun);
    {
        Ledger ledger(folder);
        for (int run = 0; run < runs; ++run) {
            writeRun(ledger, run, copiesOfRun);
            if (run % 25 == 24 && !ledger.waitUntilWritten(600000))
                throw Failure("the ledger does not write"_s);
        }
        if (!ledger.waitUntilWritten(600000))
            throw Failure("the ledger does not write"_s);
    }
    {
        QSqlDatabase database = QSqlDatabase::addDatabase("QSQLITE"_s, "bench"_s);
        database.setDatabaseName(folder + "/ledger.db"_s);
        database.open();
        QSqlQuery query(database);
        const qint64 step = qint64(Ledger::daysKept - 10) * 24 * 60 * minuteMs / runs;
        if (!query.exec("UPDATE entry SET begun = begun - (%1 - id) * %2"_s.arg(runs).arg(step)))
            throw Failure("the days cannot be spread"_s);
    }
    QSqlDatabase::removeDatabase("bench"_s);
}

/// The median of several, each with something else to look for.
double medianMs(const Options &options, const std::function<void(int round)> &question)
{
    QVector<double> times;
    for (int round = 0; round < options.rounds; ++round) {
        QElapsedTimer timer;
        timer.start();
        question(round);
        times.append(double(timer.nsecsElapsed()) / 1e6);
    }
    line("    %1"_s.arg(listed(times, 2)));
    return median(times);
}

void expect(bool isSo, const QString &what)
{
    if (!isSo)
        throw Failure(what);
}

void measureLooks(Ledger &ledger, const Options &options)
{
    const int runs = std::max(1, options.copies / copiesOfRun);
    const int batch = 1000;
    const auto like = medianMs(options, [&](int round) {
        QVector<ledger::FileStamp> stamps;
        for (int number = 0; number < batch; ++number)
            stamps.append(stampOf((qint64(number) * 7919 + round) % (runs * copiesOfRun)));
        const auto found = ledger.answer(
            [&stamps](const LedgerReader &reader) { return reader.copiesLike(stamps); });
        expect(!found.first().isEmpty() && !found.last().isEmpty(), "a file is not found"_s);
    });
    judge("A file by name, size and time, of %1"_s.arg(batch), like / batch, lookBoundMs, "ms"_s,
          4);
    const auto same = medianMs(options, [&](int round) {
        QVector<ledger::Hash> hashes;
        for (int number = 0; number < batch; ++number)
            hashes.append(hashOf((qint64(number) * 7919 + round) % (runs * copiesOfRun)));
        const auto found = ledger.answer(
            [&hashes](const LedgerReader &reader) { return reader.copiesOf(hashes); });
        expect(!found.first().isEmpty(), "content is not found"_s);
    });
    judge("A file by its content, of %1"_s.arg(batch), same / batch, lookBoundMs, "ms"_s, 4);
    const auto into = medianMs(options, [&](int round) {
        const QString folder = targetFolder(round * 37 % runs);
        const auto found = ledger.answer(
            [&folder](const LedgerReader &reader) { return reader.copiesInto(folder); });
        expect(found.size() == copiesOfRun, "copies are missing in a folder"_s);
    });
    judge("All copies in one folder"_s, into, searchBoundMs, "ms"_s, 1);
}

void measureSearches(Ledger &ledger, const Options &options)
{
    struct Form
    {
        const char *name;
        std::function<void(ledger::HistorySearch &, int round)> set;
    };
    const int runs = std::max(1, options.copies / copiesOfRun);
    const QDate today = QDate::currentDate();
    const QVector<Form> forms{
        {"newest", [](auto &, int) {}},
        {"order", [=](auto &s, int round) { s.order = orderOf(round * 31 % runs).number; }},
        {"customers", [](auto &s, int) { s.order = "李小"_s; }},
        {"customers, none", [](auto &s, int round) { s.order = "赵%1"_s.arg(round); }},
        {"a week",
         [=](auto &s, int round) {
             s.from = today.addDays(-300 + round * 7);
             s.to = s.from.addDays(6);
         }},
        {"card", [](auto &s, int round) { s.card = QString::number(round + 0xA1B20000, 16); }},
        {"file", [](auto &s, int round) { s.fileStart = "IMG_00%1"_s.arg(10 + round); }},
        {"file, one letter", [](auto &s, int) { s.fileStart = "d"_s; }},
        {"file, none", [](auto &s, int round) { s.fileStart = "HMG_%1"_s.arg(round); }},
        {"part of a file in a month",
         [=](auto &s, int round) {
             s.from = today.addDays(-300 + round * 30);
             s.to = s.from.addDays(30);
             s.filePart = "_77"_s;
         }},
        {"part of a file, none, in a month",
         [=](auto &s, int round) {
             s.from = today.addDays(-300 + round * 30);
             s.to = s.from.addDays(30);
             s.filePart = "xyz"_s;
         }},
        {"part of a file in an order",
         [=](auto &s, int round) {
             s.order = orderOf(round * 31 % runs).number;
             s.filePart = "7"_s;
         }},
    };
    for (const Form &form : forms) {
        int entries = 0;
        const double ms = medianMs(options, [&](int round) {
            ledger::HistorySearch search;
            form.set(search, round);
            const auto page = ledger.answer(
                [&search](const LedgerReader &reader) { return reader.history(search); });
            entries = page.entries.size();
        });
        judge("History by %1 (%2)"_s.arg(QLatin1String(form.name)).arg(entries), ms, searchBoundMs,
              "ms"_s, 1);
    }
}

/// What an import of small files waits for, with the ledger as full as it is.
void measureWriting(Ledger &ledger, const Options &options)
{
    const int files = std::min(5000, options.copies);
    QElapsedTimer timer;
    timer.start();
    writeRun(ledger, 1000000, files);
    const double toldMs = double(timer.nsecsElapsed()) / 1e6;
    ledger.waitUntilWritten(600000);
    line("%1 copies begun, finished and registered: told in %2 ms, written after %3 ms"_s.arg(
        QString::number(files), number(toldMs, 1), number(double(timer.nsecsElapsed()) / 1e6, 1)));
}

void measure(const QString &folder, const Options &options)
{
    QElapsedTimer timer;
    timer.start();
    fill(folder, options.copies);
    line("%1 copies written in %2 s"_s.arg(QString::number(options.copies),
                                           number(double(timer.elapsed()) / 1000, 1)));
    Ledger ledger(folder);
    const auto extent = ledger.answer([](const LedgerReader &reader) { return reader.extent(); });
    expect(extent.copies >= options.copies - copiesOfRun, "copies are missing"_s);
    judge("The file of %1 copies"_s.arg(extent.copies), double(extent.fileBytes) / 1e6, sizeBoundMb,
          "MB"_s, 0);
    measureLooks(ledger, options);
    measureSearches(ledger, options);
    measureWriting(ledger, options);
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Options options;
    const QString parent =
        readOptions(application, "Measures the ledger's questions, its size and its writing."_s,
                    {{"copies", "Copies in the ledger.", &options.copies, copiesOfRun},
                     {"rounds", "Rounds, of which the median counts.", &options.rounds}});
    return runIn(parent, [&options](const QString &folder) { measure(folder, options); });
}
