#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/Controls.h"
#include "platform/memory/Journal.h"

namespace vantrel::memory {

/// Controls without a window. Each records what it is told, by its outlet's name; the plain members are its state as
/// the user sees it, and what a test sets them to is what the user did.
class MemoryCheckBox : public CheckBox {
public:
    MemoryCheckBox(Journal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}

    long state() const override { return shown; }
    void setState(long state) override {
        journal_.record(name_ + " setState " + std::to_string(state));
        shown = state;
    }
    void setEnabled(bool isEnabled) override {
        journal_.record(name_ + (isEnabled ? " enable" : " disable"));
        enabled = isEnabled;
    }

    long shown = offState;
    bool enabled = true;

private:
    Journal& journal_;
    std::string name_;
};

class MemoryRadioMatrix : public RadioMatrix {
public:
    MemoryRadioMatrix(Journal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}

    long numberOfRows() const override { return rows; }
    long selectedRow() const override { return selected; }
    void selectCellAtRow(long row, long column) override {
        journal_.record(name_ + " selectCellAtRow " + std::to_string(row) + " column " + std::to_string(column));
        selected = row;
    }
    void setStateAtRow(long state, long row, long column) override {
        journal_.record(name_ + " setState " + std::to_string(state) + " atRow " + std::to_string(row) + " column " +
                        std::to_string(column));
        if (state == onState) selected = row;
    }

    long rows = 2;
    long selected = -1;

private:
    Journal& journal_;
    std::string name_;
};

class MemoryPopUpButton : public PopUpButton {
public:
    MemoryPopUpButton(Journal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}

    void removeAllItems() override {
        journal_.record(name_ + " removeAllItems");
        items.clear();
        selected = -1;
    }
    void addItemWithTitle(std::string_view title) override {
        journal_.record(name_ + " addItem " + std::string(title));
        items.emplace_back(title);
    }
    long indexOfSelectedItem() const override { return selected; }
    void selectItemAtIndex(long index) override {
        journal_.record(name_ + " selectItem " + std::to_string(index));
        selected = index;
    }

    std::vector<std::string> items;
    /// The index last asked for, inside the items or not.
    long selected = -1;

private:
    Journal& journal_;
    std::string name_;
};

class MemoryTextField : public TextField {
public:
    MemoryTextField(Journal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}

    std::string stringValue() const override { return text; }
    void setStringValue(std::string_view value) override {
        journal_.record(name_ + " setStringValue \"" + std::string(value) + '"');
        text = value;
    }
    bool hasCurrentEditor() const override { return editing; }

    std::string text;
    bool editing = false;

private:
    Journal& journal_;
    std::string name_;
};

class MemoryPushButton : public PushButton {
public:
    MemoryPushButton(Journal& journal, std::string name) : journal_(journal), name_(std::move(name)) {}

    void setEnabled(bool isEnabled) override {
        journal_.record(name_ + (isEnabled ? " enable" : " disable"));
        enabled = isEnabled;
    }

    bool enabled = false;

private:
    Journal& journal_;
    std::string name_;
};

class MemoryString : public OwnedString {
public:
    std::optional<std::string> value() const override { return text; }
    void set(std::string_view value) override { text = value; }
    void clear() override { text.reset(); }

    std::optional<std::string> text;
};

/// The outlets of a pane without a window, each made when it is first asked for.
class MemoryOutlets : public Outlets {
public:
    explicit MemoryOutlets(Journal& journal) : journal_(journal) {}

    MemoryCheckBox& checkBox(std::string_view name) override { return found(checkBoxes_, name); }
    MemoryRadioMatrix& radioMatrix(std::string_view name) override { return found(radioMatrices_, name); }
    MemoryPopUpButton& popUpButton(std::string_view name) override { return found(popUpButtons_, name); }
    MemoryTextField& textField(std::string_view name) override { return found(textFields_, name); }
    MemoryPushButton& pushButton(std::string_view name) override { return found(pushButtons_, name); }
    MemoryString& string(std::string_view name) override { return strings_[std::string(name)]; }

private:
    template <typename Control>
    using ByName = std::map<std::string, Control>;

    template <typename Control>
    Control& found(ByName<Control>& byName, std::string_view name) {
        return byName.try_emplace(std::string(name), journal_, std::string(name)).first->second;
    }

    Journal& journal_;
    ByName<MemoryCheckBox> checkBoxes_;
    ByName<MemoryRadioMatrix> radioMatrices_;
    ByName<MemoryPopUpButton> popUpButtons_;
    ByName<MemoryTextField> textFields_;
    ByName<MemoryPushButton> pushButtons_;
    ByName<MemoryString> strings_;
};

}  // namespace vantrel::memory
