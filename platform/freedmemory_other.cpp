#include "platform/freedmemory.h"

#include <cstdlib> // says which library it is

#ifdef __GLIBC__
#include <malloc.h>
#endif

void platform::giveBackFreedMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}
