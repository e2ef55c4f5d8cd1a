// libc++ asks for it on macOS; what it declares there is in Debian's <locale.h>.
#include <locale.h>
