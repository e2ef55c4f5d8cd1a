#import "platform/cocoa/CocoaOutlets.h"

#import <objc/runtime.h>

namespace vantrel::cocoa {

template <typename Object>
Object *&CocoaOutlets::variable(std::string_view name) const {
    static Object *none = nil;
    Ivar found = class_getInstanceVariable([owner_ class], std::string(name).c_str());
    if (!found) return none;
    char *object = (char *)owner_;
    return *reinterpret_cast<Object **>(object + ivar_getOffset(found));
}

CheckBox &CocoaOutlets::checkBox(std::string_view name) {
    return checkBoxes_.try_emplace(std::string(name), variable<NSButton>(name)).first->second;
}

RadioMatrix &CocoaOutlets::radioMatrix(std::string_view name) {
    return radioMatrices_.try_emplace(std::string(name), variable<NSMatrix>(name)).first->second;
}

PopUpButton &CocoaOutlets::popUpButton(std::string_view name) {
    return popUpButtons_.try_emplace(std::string(name), variable<NSPopUpButton>(name)).first->second;
}

TextField &CocoaOutlets::textField(std::string_view name) {
    return textFields_.try_emplace(std::string(name), variable<NSTextField>(name)).first->second;
}

PushButton &CocoaOutlets::pushButton(std::string_view name) {
    return pushButtons_.try_emplace(std::string(name), variable<NSButton>(name)).first->second;
}

OwnedString &CocoaOutlets::string(std::string_view name) {
    return strings_.try_emplace(std::string(name), variable<NSString>(name)).first->second;
}

}  // namespace vantrel::cocoa
