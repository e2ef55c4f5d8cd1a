#import "platform/cocoa/CocoaOutlets.h"

#import <objc/runtime.h>

namespace vantrel::cocoa {

id &CocoaOutlets::variable(std::string_view name) const {
    static id none = nil;
    Ivar found = class_getInstanceVariable(object_getClass(owner_), std::string(name).c_str());
    if (!found) return none;
    char *object = (char *)owner_;
    return *reinterpret_cast<id *>(object + ivar_getOffset(found));
}

template <typename Control, typename Object>
Control &CocoaOutlets::outlet(std::string_view name) {
    const AnyControl control = Control(reinterpret_cast<Object *&>(variable(name)));
    return *std::get_if<Control>(&controls_.try_emplace(std::string(name), control).first->second);
}

CheckBox &CocoaOutlets::checkBox(std::string_view name) {
    return outlet<CocoaCheckBox, NSButton>(name);
}

RadioMatrix &CocoaOutlets::radioMatrix(std::string_view name) {
    return outlet<CocoaRadioMatrix, NSMatrix>(name);
}

PopUpButton &CocoaOutlets::popUpButton(std::string_view name) {
    return outlet<CocoaPopUpButton, NSPopUpButton>(name);
}

TextField &CocoaOutlets::textField(std::string_view name) {
    return outlet<CocoaTextField, NSTextField>(name);
}

PushButton &CocoaOutlets::pushButton(std::string_view name) {
    return outlet<CocoaPushButton, NSButton>(name);
}

OwnedString &CocoaOutlets::string(std::string_view name) {
    return outlet<CocoaString, NSString>(name);
}

}  // namespace vantrel::cocoa
