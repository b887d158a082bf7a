#include "fuzz/seeds/seeds.h"

#include <QDir>
#include <QFile>

#include <cstdio>

/// Writes the seeds of each fuzzer into a folder of its name below the one that is given.
int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("Usage: fuzz_seeds FOLDER\n", stderr);
        return 2;
    }
    Seeds seeds;
    addReplySeeds(&seeds);
    addTextSeeds(&seeds);
    addPictureSeeds(&seeds);
    for (auto target = seeds.cbegin(); target != seeds.cend(); ++target) {
        const QString folder = QFile::decodeName(argv[1]) + QLatin1Char('/') + target.key();
        QDir().mkpath(folder);
        for (auto seed = target->cbegin(); seed != target->cend(); ++seed) {
            QFile file(folder + QLatin1Char('/') + seed.key());
            if (!file.open(QIODevice::WriteOnly) || file.write(*seed) != seed->size()) {
                std::fprintf(stderr, "%s: %s\n", qPrintable(file.fileName()),
                             qPrintable(file.errorString()));
                return 1;
            }
        }
    }
    return 0;
}
