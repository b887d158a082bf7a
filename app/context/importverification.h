#pragma once

/// How an imported file is compared with its source: read back, or by its size alone. The
/// installation decides, or leaves it to the user of this machine. Any thread, save set().
namespace importverification {

bool readsBack();
/// The user has nothing to choose.
bool isDecidedByInstallation();
/// The user's choice, for copies that begin from now on, and kept; interface thread. Ignored where
/// the installation decides.
void setReadsBack(bool readsBack);

} // namespace importverification
