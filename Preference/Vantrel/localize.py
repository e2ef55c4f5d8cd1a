"""Makes of the interface file and the string tables, one a language, what each system's bundle is made of.

    localize.py gnustep OUTPUT VantrelPref.xib en.lproj/Localizable.strings de.lproj/Localizable.strings ...
    localize.py macos   OUTPUT VantrelPref.xib en.lproj/Localizable.strings de.lproj/Localizable.strings ...

OUTPUT gets a folder for each language, with the interface file in that language and a table of the texts that the pane
itself asks for.

The text under "fmtRGB8Bit.toolTip" is the tool tip of the object that Xcode shows as fmtRGB8Bit (its userLabel),
"fmtRGB8Bit.title" its own title or that of the cell in it. Objects of the same label, like the two "demosaicVNG", share
a text. A title without a letter is nobody's language.

A key that is missing in a table, or that nothing asks for, ends the program with status 1 and a line for each.
"""

import re
import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path

ATTRIBUTES = ("title", "toolTip")
FOLDER_KEYS = ("KVRXLutsPath", "KVRXOverridePath")  # read by the pane itself


def read_table(path):
    """The entries of a string table, in their order."""
    text = re.sub(r"/\*.*?\*/", "", path.read_text(encoding="utf-8"), flags=re.DOTALL)
    quoted = r'"((?:[^"\\]|\\.)*)"'
    entry = re.compile(rf"\s*{quoted}\s*=\s*{quoted}\s*;")
    entries, end = {}, 0
    while match := entry.match(text, end):
        key, value = (re.sub(r"\\(.)", r"\1", part) for part in match.groups())
        if key in entries:
            sys.exit(f"{path}: {key} stands twice")
        entries[key], end = value, match.end()
    if text[end:].strip():
        sys.exit(f"{path}: can't be read from here on: {text[end:].strip().splitlines()[0]}")
    return entries


def write_table(path, entries):
    """Writes a table with a byte-order mark, without which GNUstep takes it for ASCII."""
    path.parent.mkdir(parents=True, exist_ok=True)
    lines = (f'"{escaped(key)}" = "{escaped(value)}";\n' for key, value in entries.items())
    path.write_text("".join(lines), encoding="utf-8-sig")


def escaped(text):
    return text.replace("\\", "\\\\").replace('"', '\\"')


def texts(interface):
    """Every text of the interface that people read: its element, attribute and key."""
    return texts_in(interface.getroot(), None)


def texts_in(element, label):
    label = element.get("userLabel", label)
    for attribute in ATTRIBUTES:
        if re.search(r"[^\W\d_]", element.get(attribute, "")):
            yield element, attribute, f"{label}.{attribute}"
    for child in element:
        yield from texts_in(child, label)


def check(path, table, wanted):
    """Ends the program unless the table has exactly the keys that are wanted."""
    faults = [f"{path}: {key} is missing" for key in wanted if key not in table]
    faults += [f"{path}: nothing asks for {key}" for key in table if key not in wanted]
    if faults:
        sys.exit("\n".join(faults))


def folder_texts(table):
    return {key: table[key] for key in FOLDER_KEYS}


def adapt_to_gnustep(interface):
    """Says what GNUstep takes for granted in another way, and gives window and buttons what is its own."""
    for window in interface.iter("window"):
        window.set("customClass", "VantrelPaneWindow")
    for element in list(interface.iter()):
        for connection in element.findall("accessibilityConnection"):
            element.remove(connection)
    for box in interface.iter("box"):
        ElementTree.SubElement(box, "size", key="contentViewMargins", width="0.0", height="0.0")
    for cell in (*interface.iter("textFieldCell"), *interface.iterfind(".//column/buttonCell")):
        cell.set("editable", cell.get("editable", "NO"))
    for menu in interface.iter("menu"):
        menu.set("title", "")  # without one, it opens in a window of any size
    for cell in interface.iter():
        if cell.get("bezelStyle") == "rounded":
            del cell.attrib["bezelStyle"]  # which it draws as a pill


def write(folder, interface_file, table, adapt):
    interface = ElementTree.parse(interface_file)
    for element, attribute, key in list(texts(interface)):
        element.set(attribute, table[key])
    adapt(interface)
    write_table(folder / "Localizable.strings", folder_texts(table))
    interface.write(folder / interface_file.name, encoding="utf-8", xml_declaration=True)


ADAPTATIONS = {"gnustep": adapt_to_gnustep, "macos": lambda interface: None}


def main(system, output, interface_file, *tables):
    interface_file = Path(interface_file)
    wanted = {key for _, _, key in texts(ElementTree.parse(interface_file))} | set(FOLDER_KEYS)
    for path in map(Path, tables):
        table = read_table(path)
        check(path, table, wanted)
        write(Path(output) / path.parent.name, interface_file, table, ADAPTATIONS[system])


if __name__ == "__main__":
    if len(sys.argv) < 5 or sys.argv[1] not in ADAPTATIONS:
        sys.exit(__doc__)
    main(*sys.argv[1:])
