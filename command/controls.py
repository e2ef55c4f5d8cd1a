"""Makes of the interface file and the English string table what a program without a window has to know of the pane.

    controls.py OUTPUT VantrelPref.xib en.lproj/Localizable.strings

OUTPUT becomes a C++ source with the data that PaneControls.h declares: each control that holds a value, in the order of
the pane, and the folders that a new user starts with. A control is called as its cell is, or as the label before it.
"""

import json
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "Preference" / "Vantrel"))
sys.dont_write_bytecode = True
import localize  # noqa: E402

CONTROLS = ("button", "matrix", "popUpButton", "textField")


def outlets(interface):
    """The names of the pane's instance variables, by the id of what they hold. Some hold one control together."""
    names = {}
    for outlet in interface.find(".//customObject[@id='-2']").iter("outlet"):
        names.setdefault(outlet.get("destination"), []).append(outlet.get("property"))
    return names


def holds_value(element):
    cell = element.find("*[@key='cell']")
    return (element.tag in ("matrix", "popUpButton") or element.tag == "button" and cell.get("type") == "check"
            or element.tag == "textField" and cell.get("editable") == "YES")


def controls(interface, titles):
    """Yields outlet, group, title, items and whether it is on, for each control."""
    names = outlets(interface)
    for box in interface.iter("box"):
        label = None
        for element in box.iter():
            if element.tag not in CONTROLS:
                continue
            own = [titles[part] for part in element.iter() if part in titles]
            if element.tag == "textField" and not holds_value(element):
                label = own[0]
            elif holds_value(element):
                is_check_box = element.tag == "button"
                title = own[0] if is_check_box else label
                items = [] if is_check_box else own
                is_on = is_check_box and element.find("*[@key='cell']").get("state") == "on"
                for outlet in names.get(element.get("id"), []):
                    yield outlet, titles[box], title.removesuffix(":"), items, is_on


def quoted(text):
    return json.dumps(text, ensure_ascii=False)


def source(interface, table):
    titles = {element: table[key] for element, attribute, key in localize.texts(interface) if attribute == "title"}
    rows, items = [], []
    for outlet, group, title, titles_of_items, is_on in controls(interface, titles):
        if titles_of_items:
            items.append(f"constexpr std::string_view {outlet}Items[] = {{"
                         f"{', '.join(map(quoted, titles_of_items))}}};")
        rows.append(f"    {{{quoted(outlet)}, {quoted(group)}, {quoted(title)}, "
                    f"{f'{outlet}Items' if titles_of_items else '{}'}, {'true' if is_on else 'false'}}},")
    folders = [f"    {{{quoted(key)}, {quoted(text)}}}," for key, text in localize.folder_texts(table).items()]
    return "\n".join(['#include "command/PaneControls.h"', "", "namespace vantrel {", "namespace {", "", *items, "",
                      "constexpr PaneControl controls[] = {", *rows, "};", "",
                      "constexpr DefaultFolder folders[] = {", *folders, "};", "", "}  // namespace", "",
                      "const std::span<const PaneControl> paneControls = controls;",
                      "const std::span<const DefaultFolder> defaultFolders = folders;", "", "}  // namespace vantrel",
                      ""])


def main(output, interface_file, table_file):
    interface = ElementTree.parse(interface_file)
    Path(output).write_text(source(interface, localize.read_table(Path(table_file))), encoding="utf-8")


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main(*sys.argv[1:])
