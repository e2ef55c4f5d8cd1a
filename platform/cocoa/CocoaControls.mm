#import "platform/cocoa/CocoaControls.h"

#import "platform/cocoa/CocoaText.h"

namespace vantrel::cocoa {

long CocoaCheckBox::state() const {
    return [button_ state];
}

void CocoaCheckBox::setState(long state) {
    [button_ setState:state];
}

void CocoaCheckBox::setEnabled(bool enabled) {
    [button_ setEnabled:enabled];
}

long CocoaRadioMatrix::numberOfRows() const {
    return [matrix_ numberOfRows];
}

long CocoaRadioMatrix::selectedRow() const {
    return [matrix_ selectedRow];
}

void CocoaRadioMatrix::selectCellAtRow(long row, long column) {
    [matrix_ selectCellAtRow:row column:column];
}

void CocoaRadioMatrix::setStateAtRow(long state, long row, long column) {
    [matrix_ setState:state atRow:row column:column];
}

void CocoaPopUpButton::removeAllItems() {
    [button_ removeAllItems];
}

void CocoaPopUpButton::addItemWithTitle(std::string_view title) {
#ifdef GNUSTEP
    // GNUstep's own puts an item into the menu and then changes it four times, and the menu measures itself each time.
    NSMenuItem *item = [[NSMenuItem alloc] initWithTitle:toNSString(title) action:nullptr keyEquivalent:toNSString("")];
    [item setOnStateImage:nil];
    [item setMixedStateImage:nil];
    [[button_ menu] addItem:item];
    [item release];
#else
    [button_ addItemWithTitle:toNSString(title)];
#endif
}

long CocoaPopUpButton::indexOfSelectedItem() const {
    return [button_ indexOfSelectedItem];
}

void CocoaPopUpButton::selectItemAtIndex(long index) {
    [button_ selectItemAtIndex:index];
}

std::string CocoaTextField::stringValue() const {
    return toUTF8([field_ stringValue]);
}

void CocoaTextField::setStringValue(std::string_view text) {
    [field_ setStringValue:toNSString(text)];
}

bool CocoaTextField::hasCurrentEditor() const {
    return [field_ currentEditor] != nil;
}

void CocoaPushButton::setEnabled(bool enabled) {
    [button_ setEnabled:enabled];
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
