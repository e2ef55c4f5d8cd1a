"""Tells where the pane's controls are, from the interface file, so that no test knows a pixel of the layout.

    controls.py FILE

prints a line for each control: the name of its outlet, the x and y of its top left corner, its width and height in
points, and the number of its items. x and y count from the top left corner of the pane's view, which is told first under
the name "view". Each row of a radio matrix has a line of its own, named outlet/row.
"""

import sys
import xml.etree.ElementTree as ElementTree

VIEWS = ("button", "matrix", "popUpButton", "textField")


def frame_of(element):
    """x, y, width and height of a view in its enclosing view; y counts from the bottom of both."""
    rect = element.find("rect[@key='frame']")
    return [float(rect.get(name)) for name in ("x", "y", "width", "height")] if rect is not None else [0, 0, 0, 0]


def controls(root):
    """Yields name, x, y, width, height and number of items."""
    parents = {child: parent for parent in root.iter() for child in parent}
    objects = {element.get("id"): element for element in root.iter() if element.get("id")}
    outlets = {outlet.get("property"): objects[outlet.get("destination")]
               for outlet in objects["-2"].find("connections").iter("outlet")}
    pane = outlets["_window"].find("view[@key='contentView']")
    _, _, pane_width, pane_height = frame_of(pane)
    yield "view", 0, 0, pane_width, pane_height, 0

    for name, control in outlets.items():
        if control.tag not in VIEWS:
            continue
        x, y, width, height = frame_of(control)
        enclosing = parents[control]
        while enclosing is not pane:
            x += frame_of(enclosing)[0]
            y += frame_of(enclosing)[1]
            enclosing = parents[enclosing]
        top = pane_height - y - height
        yield name, x, top, width, height, len(list(control.iter("menuItem")))

        if control.tag == "matrix":
            cell_height = float(control.find("size[@key='cellSize']").get("height"))
            spacing = float(control.find("size[@key='intercellSpacing']").get("height"))
            for row in range(len(list(control.find("cells").iter("buttonCell")))):
                yield f"{name}/{row}", x, top + row * (cell_height + spacing), width, cell_height, 0


if __name__ == "__main__":
    for name, *numbers in controls(ElementTree.parse(sys.argv[1]).getroot()):
        print(name, *(round(number) for number in numbers))
