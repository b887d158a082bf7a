#pragma once

#include <QString>

/// What leaves this machine, by a hand that means well, must not tell of customers. Pure function,
/// for any thread.
///
/// \a text, lines of a log or of settings, without what tells of a person or opens a door:
/// telephone numbers, e-mail addresses, tokens and passwords, the values that a request sends
/// (numbers stay, they tell orders apart), and of paths and names of photos the Chinese characters
/// and the name of the Windows user. Length and form of the lines stay, so that one still sees what
/// went on.
QString masked(const QString &text);
