#pragma once

#import <AppKit/AppKit.h>

#include "platform/Controls.h"

namespace vantrel::cocoa {

/// The control interfaces over AppKit. Each refers to a variable that holds the control, an outlet or a sender, and
/// looks into it at every call, so it may be made before the interface file has connected the outlet. While the
/// variable is nil, telling it something has no effect and asking gives 0 or nothing. The variable has to outlive it.

class CocoaCheckBox : public CheckBox {
   public:
    explicit CocoaCheckBox(NSButton *const &button) : button_(button) {}

    long state() const override;
    void setState(long state) override;
    void setEnabled(bool enabled) override;

   private:
    NSButton *const &button_;
};

class CocoaRadioMatrix : public RadioMatrix {
   public:
    explicit CocoaRadioMatrix(NSMatrix *const &matrix) : matrix_(matrix) {}

    long numberOfRows() const override;
    long selectedRow() const override;
    void selectCellAtRow(long row, long column) override;
    void setStateAtRow(long state, long row, long column) override;

   private:
    NSMatrix *const &matrix_;
};

class CocoaPopUpButton : public PopUpButton {
   public:
    explicit CocoaPopUpButton(NSPopUpButton *const &button) : button_(button) {}

    void removeAllItems() override;
    void addItemWithTitle(std::string_view title) override;
    long indexOfSelectedItem() const override;
    void selectItemAtIndex(long index) override;

   private:
    NSPopUpButton *const &button_;
};

class CocoaTextField : public TextField {
   public:
    explicit CocoaTextField(NSTextField *const &field) : field_(field) {}

    std::string stringValue() const override;
    void setStringValue(std::string_view text) override;
    bool hasCurrentEditor() const override;

   private:
    NSTextField *const &field_;
};

class CocoaPushButton : public PushButton {
   public:
    explicit CocoaPushButton(NSButton *const &button) : button_(button) {}

    void setEnabled(bool enabled) override;

   private:
    NSButton *const &button_;
};

/// A text kept in an instance variable, which owns it.
class CocoaString : public OwnedString {
   public:
    explicit CocoaString(NSString *&variable) : variable_(variable) {}

    std::optional<std::string> value() const override;
    void set(std::string_view text) override;
    void clear() override;

   private:
    NSString *&variable_;
};

}  // namespace vantrel::cocoa
