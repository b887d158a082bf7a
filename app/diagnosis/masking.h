#pragma once

#include <QString>

/// What leaves this machine, by a hand that means well, must not tell of customers. Pure function,
/// for any thread.
///
/// \a text, lines of a log or of settings, without what tells of a person or opens a door:
/// telephone numbers, e-mail addresses, tokens and passwords, the values that a request sends
/// (numbers stay, they tell orders apart), and of paths and names of photos the Chinese characters
/// and the name of the Windows user. The lines stay, so that one still sees what went on. A name in
/// other letters, or one that stands outside of all that, is not known for one: whoever saves the
/// result looks at it first.
QString masked(const QString &text);
