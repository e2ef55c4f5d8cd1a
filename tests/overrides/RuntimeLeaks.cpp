/// The Objective-C runtime and GNUstep keep their tables until the process ends; the leak sanitizer, which asks for
/// this by the name behind it, is to look for what we lose.
extern "C" __attribute__((visibility("default"))) const char* leaksOfTheRuntime() __asm__(
    "__lsan_default_suppressions");

const char* leaksOfTheRuntime() {
    return "leak:libobjc.so\nleak:libgnustep-base.so\n";
}
