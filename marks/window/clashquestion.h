#pragma once

#include "widgets/boxes/messagebox.h"

/// Asks what to do about files that would land on one target; \a notice lists them. Yes: all but
/// the first of each get other names; No: they are left out; Cancel: nothing is taken.
void askAboutClashes(QWidget *window, const BoxText &notice, const MessageBox::Answered &then);
