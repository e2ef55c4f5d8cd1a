#import "platform/cocoa/CocoaControls.h"

#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

void CocoaPopUpButton::addItemWithTitle(std::string_view title) {
#ifdef GNUSTEP
    // GNUstep's own puts an item into the menu and then changes it four times, and the menu measures itself each time.
    NSMenuItem *item = [[NSMenuItem alloc] initWithTitle:toNSString(title) action:nullptr keyEquivalent:@""];
    [item setOnStateImage:nil];
    [item setMixedStateImage:nil];
    [[button_ menu] addItem:item];
    [item release];
#else
    [button_ addItemWithTitle:toNSString(title)];
#endif
}

std::string CocoaTextField::stringValue() const {
    return toUTF8([field_ stringValue]);
}

void CocoaTextField::setStringValue(std::string_view text) {
    [field_ setStringValue:toNSString(text)];
}

std::optional<std::string> CocoaString::value() const {
    return variable_ ? std::optional(toUTF8(variable_)) : std::nullopt;
}

void CocoaString::set(std::string_view text) {
    clear();
    variable_ = [toNSString(text) retain];
}

void CocoaString::clear() {
    [variable_ release];
    variable_ = nil;
}

}  // namespace vantrel::cocoa
