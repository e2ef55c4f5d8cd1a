#import "platform/cocoa/CocoaControls.h"

#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

void CocoaPopUpButton::addItemWithTitle(std::string_view title) {
    [button_ addItemWithTitle:toNSString(title)];
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
