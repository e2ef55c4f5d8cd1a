#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantrel {

/// Control states as the platform numbers them; a check box that shows neither is in the mixed state.
inline constexpr long mixedState = -1;
inline constexpr long offState = 0;
inline constexpr long onState = 1;

/// Whether a state counts as on: its lowest byte, as the platform's signed 8-bit Boolean, is not 0. The mixed state
/// counts.
constexpr bool truthOf(long state) {
    return static_cast<std::int8_t>(state) != 0;
}

/// A check box.
class CheckBox {
public:
    virtual long state() const = 0;
    virtual void setState(long state) = 0;
    virtual void setEnabled(bool enabled) = 0;

protected:
    ~CheckBox() = default;
};

/// A matrix of radio buttons. Rows and columns count from 0 at the top left.
class RadioMatrix {
public:
    virtual long numberOfRows() const = 0;
    /// The selected row, or -1 when none is.
    virtual long selectedRow() const = 0;
    virtual void selectCellAtRow(long row, long column) = 0;
    /// Sets one cell's state; in a radio matrix, switching a cell on selects it.
    virtual void setStateAtRow(long state, long row, long column) = 0;

protected:
    ~RadioMatrix() = default;
};

/// A pop-up menu. Items count from 0 at the top.
class PopUpButton {
public:
    virtual void removeAllItems() = 0;
    virtual void addItemWithTitle(std::string_view title) = 0;
    /// The selected item, or -1 when none is.
    virtual long indexOfSelectedItem() const = 0;
    /// An index outside the items leaves the menu in the state that the platform gives it.
    virtual void selectItemAtIndex(long index) = 0;

protected:
    ~PopUpButton() = default;
};

/// A field of text, UTF-8 here.
class TextField {
public:
    virtual std::string stringValue() const = 0;
    virtual void setStringValue(std::string_view text) = 0;
    /// Whether the field is the one being edited: it has the window's field editor.
    virtual bool hasCurrentEditor() const = 0;

protected:
    ~TextField() = default;
};

/// A push button.
class PushButton {
public:
    virtual void setEnabled(bool enabled) = 0;

protected:
    ~PushButton() = default;
};

/// A text that the pane keeps, or nothing.
class OwnedString {
public:
    virtual std::optional<std::string> value() const = 0;
    /// Keeps a copy of `text` and lets go of the text kept before.
    virtual void set(std::string_view text) = 0;
    virtual void clear() = 0;

protected:
    ~OwnedString() = default;
};

/// A pane's controls and texts, by the names of the instance variables that hold them. They may be asked for before the
/// interface file has connected them, and serve as long as this does. Asking for a name that the pane doesn't have, or
/// that holds another kind of control, is a mistake in the program.
class Outlets {
public:
    virtual CheckBox& checkBox(std::string_view name) = 0;
    virtual RadioMatrix& radioMatrix(std::string_view name) = 0;
    virtual PopUpButton& popUpButton(std::string_view name) = 0;
    virtual TextField& textField(std::string_view name) = 0;
    virtual PushButton& pushButton(std::string_view name) = 0;
    virtual OwnedString& string(std::string_view name) = 0;

protected:
    ~Outlets() = default;
};

}  // namespace vantrel
