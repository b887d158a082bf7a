#include "platform/power.h"

#include <windows.h>

namespace platform {

void keepAwake()
{
    SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);
}

void allowSleep()
{
    SetThreadExecutionState(ES_CONTINUOUS);
}

} // namespace platform
