#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

/// What the fuzzers begin with: by target, then by a name that says what it is. Small, and made
/// here; what a fuzzer has once found stands among them.
using Seeds = QMap<QString, QMap<QString, QByteArray>>;

void addReplySeeds(Seeds *seeds);
void addTextSeeds(Seeds *seeds);
void addPictureSeeds(Seeds *seeds);
