// What the pane with macOS's services asks of its system: preferences and the kernel. The preferences are in the files
// in which GNUstep keeps them, so that the same tests can write and read them.
#include <sys/sysctl.h>

#import "platform/cocoa/CocoaFolders.h"
#import "platform/cocoa/CocoaSystem.h"
#include "platform/gnustep/GNUstepPreferences.h"
#include "platform/text/UTF16.h"
#include "tests/platform/apple/CoreFoundationObjects.h"

namespace vantrel::apple {
namespace {

gnustep::GNUstepPreferences &preferences() {
    static cocoa::CocoaLog log;
    static gnustep::GNUstepPreferences inFiles(cocoa::defaultsFolder(), log);
    return inFiles;
}

std::string textOf(CFStringRef string) {
    return text::fromUTF16(std::get<std::u16string>(contentOf(string)));
}

/// Null for a value that is absent. What the files say of a number that doesn't fit is only that.
CFPropertyListRef makeProperty(const PreferenceValue &value) {
    if (const auto *flag = std::get_if<bool>(&value)) return CFRetain(*flag ? kCFBooleanTrue : kCFBooleanFalse);
    if (const auto *number = std::get_if<Number>(&value)) {
        return number->longValue ? makeObject(std::int64_t{*number->longValue}) : makeObject(0.5);
    }
    if (const auto *text = std::get_if<std::string>(&value)) return makeObject(text::toUTF16(*text));
    return std::holds_alternative<Absent>(value) ? nullptr : makeObject(Stranger{});
}

NewPreferenceValue valueOf(CFPropertyListRef property) {
    const Content &content = contentOf(property);
    if (const auto *flag = std::get_if<bool>(&content)) return *flag;
    if (const auto *number = std::get_if<std::int64_t>(&content)) return static_cast<long>(*number);
    return text::fromUTF16(std::get<std::u16string>(content));
}

}  // namespace
}  // namespace vantrel::apple

using namespace vantrel::apple;

extern "C" {

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID) {
    return makeProperty(preferences().copyAppValue(textOf(key), textOf(applicationID)));
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID) {
    preferences().setAppValue(textOf(key), valueOf(value), textOf(applicationID));
}

Boolean CFPreferencesSynchronize(CFStringRef applicationID, CFStringRef user, CFStringRef host) {
    return user == kCFPreferencesCurrentUser && host == kCFPreferencesAnyHost &&
           preferences().synchronize(textOf(applicationID));
}

int sysctlbyname(const char *, void *oldValue, size_t *, void *, size_t) {
    *static_cast<int *>(oldValue) = 4;
    return 0;
}
}
