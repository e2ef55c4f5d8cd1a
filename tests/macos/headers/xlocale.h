// libc++ asks for it on macOS. Part of what it declares there is in Debian's <locale.h>; the rest is this.
#pragma once

#include <ctype.h>
#include <locale.h>
#include <stdarg.h>

// Debian's macros look into a locale, which libc++ gives as 0 here.
#undef isdigit_l
#undef isxdigit_l

#ifdef __cplusplus
extern "C" {
#endif

int asprintf_l(char** text, locale_t locale, const char* format, ...);
int snprintf_l(char* text, unsigned long size, locale_t locale, const char* format, ...);
int sscanf_l(const char* text, locale_t locale, const char* format, ...);

#ifdef __cplusplus
}
#endif
