#pragma once

#include <QString>

/// What the user of the account chose last, kept beyond the end of the program in the user's
/// settings folder. Convenience alone: what cannot be read or written counts as not chosen. A small
/// local file is read and written; interface thread.
namespace choices {

/// Empty when nothing is known.
QString remembered(const QString &key);
void remember(const QString &key, const QString &value);

/// The same whoever logs in.
QString rememberedOnMachine(const QString &key);
void rememberOnMachine(const QString &key, const QString &value);

} // namespace choices
