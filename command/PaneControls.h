#pragma once

#include <span>
#include <string_view>

namespace vantrel {

/// A control of the pane as its interface file has it, in English.
struct PaneControl {
    /// The instance variable that holds it.
    std::string_view outlet;
    /// The title of the box around it.
    std::string_view group;
    std::string_view title;
    /// The titles of its rows or items; none for a menu that is filled when the pane opens.
    std::span<const std::string_view> items;
    /// Whether it is a check box that is on before anything has been read.
    bool isOn;
};

/// Every control that holds a value, in the order of the pane; one that several variables hold stands here as often.
extern const std::span<const PaneControl> paneControls;

/// A folder that a new user starts with, by its key in the string table.
struct DefaultFolder {
    std::string_view key;
    std::string_view path;
};

extern const std::span<const DefaultFolder> defaultFolders;

}  // namespace vantrel
