// The one declaration of <sys/sysctl.h> that platform/apple/ uses (see CoreFoundation/CoreFoundation.h beside this).
#pragma once

#include <cstddef>

extern "C" int sysctlbyname(const char* name, void* oldValue, std::size_t* oldSize, void* newValue,
                            std::size_t newSize);
