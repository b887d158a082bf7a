#include "platform/power.h"

namespace platform {

// Studios run Windows; on a developer's machine the session's own power settings are left alone.
void keepAwake()
{
}

void allowSleep()
{
}

} // namespace platform
