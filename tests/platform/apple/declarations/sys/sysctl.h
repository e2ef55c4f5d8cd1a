// The one declaration of <sys/sysctl.h> that platform/apple/ uses. The header includes what Apple's does and no more,
// so that a source that needs more asks for it itself.
#pragma once

#include <sys/time.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

int sysctlbyname(const char* name, void* oldValue, size_t* oldSize, void* newValue, size_t newSize);

#ifdef __cplusplus
}
#endif
