#pragma once

class QWidget;

/// Tells the user, once and in the window in use, what is wrong with the ledger: what was found
/// before \a launcher opened, and what is found from now on. Interface thread.
void tellLedgerNotices(QWidget *launcher);
