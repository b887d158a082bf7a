// The ledger's file, damaged: the program opens it, puts it aside or tells that it keeps nothing,
// and asks it everything. The input is a list of places in a file that was whole, with what stands
// there instead: three bytes of a place, one of a value.
#include "fuzz/harness.h"
#include "ledger/ledger.h"

#include <QDir>
#include <QFile>

using fuzzing::require;

namespace {

const ledger::Desk desk{QStringLiteral("u"), QStringLiteral("b"), ledger::Work::ImportOriginals};
const ledger::OrderKey order{{QStringLiteral("b"), QStringLiteral("1"), QStringLiteral("p")},
                             QStringLiteral("TS1-1"),
                             QStringLiteral("王")};

QString folder()
{
    return fuzzing::scratchFolder() + QStringLiteral("/ledger");
}

ledger::NewCopy copyOf(int number)
{
    ledger::NewCopy copy;
    copy.source = QStringLiteral("E:/DCIM/IMG_%1.JPG").arg(number);
    copy.target = QStringLiteral(R"(\\nas\photos\IMG_%1.JPG)").arg(number);
    copy.sourceBytes = number;
    copy.toRegister = true;
    return copy;
}

bool use(Ledger *ledger)
{
    const ledger::RunId run = ledger->beginRun({desk, {}});
    const auto ids = ledger->beginCopies(run, order, {copyOf(1), copyOf(2)});
    const bool isWritten = ledger->waitUntilWritten();
    ledger->finishCopy(ids.first(), {});
    ledger->beginDeletions(run, order, {{}});
    ledger->endRun(run);
    return isWritten;
}

/// A file with some of everything; made once.
QByteArray wholeFile()
{
    QDir(folder()).removeRecursively();
    {
        Ledger ledger(folder());
        use(&ledger);
    }
    QFile file(folder() + QStringLiteral("/ledger.db"));
    require(file.open(QIODevice::ReadOnly), "a new ledger can be made");
    return file.readAll();
}

void askEverything(Ledger *ledger)
{
    ledger->answer([](const LedgerReader &reader) {
        reader.unregistered(desk);
        reader.openDeletions(desk);
        reader.unansweredDeletions(desk);
        reader.pending(desk);
        reader.history({});
        reader.copiesOfOrder(order.identity);
        reader.deletionsOfOrder(order.identity);
        reader.copiesOnto({copyOf(1).target});
        reader.copiesInto(QStringLiteral(R"(\\nas\photos)"));
        return reader.extent().copies;
    });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QByteArray whole = wholeFile();
    constexpr size_t change = 4;
    QByteArray content = whole;
    for (size_t at = 0; at + change <= size; at += change) {
        const int place = int(data[at]) << 16 | int(data[at + 1]) << 8 | int(data[at + 2]);
        content[place % content.size()] = char(data[at + 3]);
    }
    if (size % change != 0) // what is left over cuts it off
        content.truncate(content.size() * int(data[size - 1]) / 256);
    QDir(folder()).removeRecursively();
    QDir().mkpath(folder());
    fuzzing::scratchFile(QStringLiteral("ledger/ledger.db"), content);
    {
        Ledger ledger(folder());
        askEverything(&ledger);
        const bool isWritten = use(&ledger);
        askEverything(&ledger);
        require(isWritten || !ledger.takeNotices().isEmpty() || !ledger.isKept(),
                "what is not kept is told");
    }
    Ledger again(folder());
    askEverything(&again);
    return 0;
}
