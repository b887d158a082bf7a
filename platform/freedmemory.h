#pragma once

namespace platform {

/// Gives memory that the process has freed back to the system, which the allocator otherwise keeps
/// for the next time. Takes its time after much was freed: for a thread.
void giveBackFreedMemory();

} // namespace platform
