#include "platform/freedmemory.h"

#include <malloc.h>

void platform::giveBackFreedMemory()
{
    _heapmin();
}
