#pragma once

namespace platform {

/// Asks the system to keep machine and display awake until allowSleep() or the end of the process:
/// an import of thousands of files must not stall because nobody touches the mouse.
void keepAwake();

/// Gives the machine back its normal power management.
void allowSleep();

} // namespace platform
