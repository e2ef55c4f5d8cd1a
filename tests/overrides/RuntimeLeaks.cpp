/// The Objective-C runtime and GNUstep keep their tables until the process ends; the leak sanitizer is to look for what
/// we lose. Without a sanitizer nobody asks.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {  // NOLINT
    return "leak:libobjc.so\nleak:libgnustep-base.so\n";
}
