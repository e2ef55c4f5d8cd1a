#pragma once

#include <map>
#include <string>

#import "platform/cocoa/CocoaControls.h"

namespace vantrel::cocoa {

/// The outlets of an Objective-C object, which has to outlive this.
class CocoaOutlets : public Outlets {
public:
    explicit CocoaOutlets(id owner) : owner_(owner) {}

    CheckBox& checkBox(std::string_view name) override;
    RadioMatrix& radioMatrix(std::string_view name) override;
    PopUpButton& popUpButton(std::string_view name) override;
    TextField& textField(std::string_view name) override;
    PushButton& pushButton(std::string_view name) override;
    OwnedString& string(std::string_view name) override;

private:
    template <typename Control>
    using ByName = std::map<std::string, Control, std::less<>>;

    /// The instance variable of that name; one that is always nil where the object has none.
    template <typename Object>
    Object*& variable(std::string_view name) const;

    id owner_;
    ByName<CocoaCheckBox> checkBoxes_;
    ByName<CocoaRadioMatrix> radioMatrices_;
    ByName<CocoaPopUpButton> popUpButtons_;
    ByName<CocoaTextField> textFields_;
    ByName<CocoaPushButton> pushButtons_;
    ByName<CocoaString> strings_;
};

}  // namespace vantrel::cocoa
