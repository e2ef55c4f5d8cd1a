#pragma once

#include <map>
#include <string>
#include <variant>

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
    using AnyControl =
        std::variant<CocoaCheckBox, CocoaRadioMatrix, CocoaPopUpButton, CocoaTextField, CocoaPushButton, CocoaString>;

    /// The instance variable of that name; one that is always nil where the object has none.
    id& variable(std::string_view name) const;

    template <typename Control, typename Object>
    Control& outlet(std::string_view name);

    id owner_;
    std::map<std::string, AnyControl, std::less<>> controls_;
};

}  // namespace vantrel::cocoa
