"""What must hold of the interface file and the string tables, whatever system they are made ready for."""

import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
from pathlib import Path

PREFERENCE = Path(__file__).resolve().parents[3] / "Preference" / "Vantrel"
RESOURCES = PREFERENCE / "Resources"
INTERFACE_FILE = RESOURCES / "VantrelPref.xib"
LANGUAGES = ("en", "de", "fr", "es", "ja")

sys.path.insert(0, str(PREFERENCE))
import localize  # noqa: E402

CONTROLS = ("button", "popUpButton", "matrix")
ACTIONS = {
    "colorMatrix": "colorMatrixCheckBox:",
    "gamma": "gammaCheckBox:",
    "look": "lookCheckBox:",
    "whiteBalance": "whiteBalanceCheckBox:",
    "filter422To444": "filter422To444Button:",
    "fmtRGB8Bit": "fmtRGB8BitCheckBox:",
    "fmtRGB16Bit": "fmtRGB16BitCheckBox:",
    "fmtRGB32Bit": "fmtRGB32BitCheckBox:",
    "fmtYUV8Bit": "fmtYUV8BitCheckBox:",
    "fmtYUV16Bit": "fmtYUV16BitCheckBox:",
    "fmtYUV32Bit": "fmtYUV32BitCheckBox:",
    "fmtYUV8BitA": "fmtYUV8BitACheckBox:",
    "fmtDualStream3D": "fmtDualStream3DCheckBox:",
    "fmtFCPGamma": "fmtFCPGammaRadioButton:",
    "fmtQTGamma": "fmtQTGammaRadioButton:",
    "fmtFCPLetterbox": "fmtFCPLetterboxCheckBox:",
    "fcpRTEnable": "fcpRTEnableCheckBox:",
    "cs5SourceSettings": "cs5SourceSettingsCheck:",
    "encodeThreads": "encodeThreadLimitChange:",
    "decodeThreads": "decodeThreadLimitChange:",
    "presentationDemosaic": "presentationDemosaicSelect:",
    "renderDemosaic": "precisionDemosaicSelect:",
    "_LUTsOK": "LUTsOKUpdate:",
    "_LUTsUndo": "LUTSUndoUpdate:",
    "_overrideOK": "overrideOKUpdate:",
    "_overrideUndo": "overrideUndoUpdate:",
    "_showStereoStatus": "stereoModeStatusViewChange:",
}
FIELDS = ("_LUTsPath", "_overridePath")
UNTITLED = ("matrix", "popUpButton", "textField")
FOLDER_BUTTONS = ("_LUTsOK", "_LUTsUndo", "_overrideOK", "_overrideUndo")


class Interface(unittest.TestCase):
    def setUp(self):
        self.root = ElementTree.parse(INTERFACE_FILE).getroot()
        # Objects by the names that people see in Xcode; several may share one.
        self.objects = {element.get("userLabel"): element for element in self.root.iter() if element.get("userLabel")}
        self.names = {element.get("id"): element.get("userLabel") for element in self.root.iter() if element.get("id")}
        self.outlets = self.connected(self.objects["File's Owner"], "outlet")

    def connected(self, element, kind):
        """What the element's connections of that kind lead to, by property or selector."""
        return {connection.get("property", connection.get("selector")):
                self.names[connection.get("destination", connection.get("target"))]
                for connection in element.findall(f"connections/{kind}")}

    def controls(self):
        """Everything that the user can change."""
        fields = [self.objects[field] for field in FIELDS]
        return [element for element in self.root.iter() if element.tag in CONTROLS] + fields

    def test_no_two_objects_have_the_same_id(self):
        ids = [element.get("id") for element in self.root.iter() if element.get("id")]
        self.assertEqual(len(ids), len(set(ids)))

    def test_ids_have_the_form_that_xcode_gives_them(self):
        for element in self.root.iter():
            if element.get("id"):
                self.assertRegex(element.get("id"), r"^(-[123]|[0-9A-Za-z]{3}-[0-9A-Za-z]{2}-[0-9A-Za-z]{3})$")

    def test_every_control_of_the_class_is_an_outlet_of_its_own_name(self):
        header = (PREFERENCE / "PrincipalClass.h").read_text(encoding="utf-8")
        declared = re.findall(r"IBOutlet \w+ \*(\w+);", header)
        self.assertEqual(len(declared), 30)
        for name in declared:
            with self.subTest(name):
                self.assertEqual(self.outlets.get(name), name)
                self.assertIn(name, self.objects)

    def test_the_window_and_the_ends_of_the_keyboard_order_are_outlets(self):
        window = self.objects["File's Owner"].find("connections/outlet[@property='_window']").get("destination")
        self.assertEqual([element.get("id") for element in self.root.iter("window")], [window])
        for name in ("_firstKeyView", "_initialKeyView", "_lastKeyView"):
            self.assertIn(self.outlets[name], self.objects)

    def test_every_control_sends_its_action_to_the_pane(self):
        for name, selector in ACTIONS.items():
            with self.subTest(name):
                self.assertEqual(self.connected(self.objects[name], "action"), {selector: "File's Owner"})

    def test_no_control_is_without_an_action_of_its_own(self):
        actions = [action.get("selector") for action in self.root.iter("action")]
        self.assertCountEqual(actions, ACTIONS.values())

    def test_the_pane_is_the_delegate_of_both_fields(self):
        for name in FIELDS:
            with self.subTest(name):
                self.assertEqual(self.connected(self.objects[name], "outlet")["delegate"], "File's Owner")

    def test_only_the_folder_buttons_are_disabled(self):
        disabled = [control.get("userLabel") for control in self.controls()
                    if any(element.get("enabled") == "NO" for element in control.iter())]
        self.assertCountEqual(disabled, FOLDER_BUTTONS)

    def test_a_control_without_a_title_of_its_own_is_tied_to_its_label(self):
        untitled = [name for name in self.outlets.values() if name and self.objects[name].tag in UNTITLED]
        self.assertEqual(len(untitled), 9)
        for name in untitled:
            with self.subTest(name):
                label = self.connected(self.objects[name], "accessibilityConnection")["title"]
                self.assertIn(label, (f"{name}Label", f"{name.strip('_').removesuffix('Path').removesuffix('Number')}Label"))
                self.assertEqual(self.objects[label].tag, "textField")

    def test_every_control_has_a_tool_tip(self):
        for control in self.controls():
            with self.subTest(control.get("userLabel")):
                self.assertTrue(control.get("toolTip"))

    def test_every_font_has_a_size(self):
        for font in self.root.iter("font"):
            self.assertGreaterEqual(float(font.get("size", 0)), 10)

    def test_tab_goes_through_all_controls_from_the_top_left_to_the_bottom_right(self):
        first = self.outlets["_initialKeyView"]
        order, name = [], first
        while name not in order:
            order.append(name)
            name = self.connected(self.objects[name], "outlet")["nextKeyView"]
        self.assertEqual(name, first)
        self.assertEqual(order[-1], self.outlets["_lastKeyView"])
        self.assertCountEqual(order, [control.get("userLabel") for control in self.controls()])
        self.assertEqual(order, sorted(order, key=self.reading_place))

    def reading_place(self, name):
        """Where the eye meets a control: its group, its row in there, its place in the row."""
        group = next(number for number, box in enumerate(self.root.iter("box"))
                     if any(element.get("userLabel") == name for element in box.iter()))
        frame = self.objects[name].find("rect[@key='frame']")
        top = float(frame.get("y")) + float(frame.get("height"))
        return group, -round(top / 10), float(frame.get("x"))

    def test_both_demosaic_pop_ups_offer_the_same_methods_and_no_more_than_sixteen(self):
        presentation, render = ([item.get("title") for item in self.objects[name].iter("menuItem")]
                                for name in ("presentationDemosaic", "renderDemosaic"))
        self.assertEqual(presentation, render)
        self.assertLessEqual(len(presentation), 16)
        self.assertEqual(len(presentation), len(set(presentation)))

    def test_a_gamma_matrix_is_one_column_whose_first_row_is_selected(self):
        for name in ("fmtFCPGamma", "fmtQTGamma"):
            columns = self.objects[name].findall("cells/column")
            self.assertEqual(len(columns), 1)
            states = [cell.get("state") for cell in columns[0]]
            self.assertEqual(states, ["on"] + [None] * (len(states) - 1))
            self.assertGreaterEqual(len(states), 2)


class Languages(unittest.TestCase):
    def setUp(self):
        self.interface = ElementTree.parse(INTERFACE_FILE)
        self.tables = {language: localize.read_table(RESOURCES / f"{language}.lproj" / "Localizable.strings")
                       for language in LANGUAGES}

    def test_there_is_a_table_for_each_language_and_no_other(self):
        folders = [path.name for path in RESOURCES.glob("*.lproj")]
        self.assertCountEqual(folders, [f"{language}.lproj" for language in LANGUAGES])

    def test_no_language_misses_or_adds_a_key(self):
        wanted = {key for _, _, key in localize.texts(self.interface)} | set(localize.FOLDER_KEYS)
        for language, table in self.tables.items():
            with self.subTest(language):
                self.assertEqual(sorted(table), sorted(wanted))

    def test_all_tables_have_their_keys_in_the_same_order(self):
        for language, table in self.tables.items():
            with self.subTest(language):
                self.assertEqual(list(table), list(self.tables["en"]))

    def test_the_interface_file_has_the_english_texts(self):
        for element, attribute, key in localize.texts(self.interface):
            with self.subTest(key):
                self.assertEqual(element.get(attribute), self.tables["en"][key])

    def test_no_text_is_empty(self):
        for language, table in self.tables.items():
            for key, text in table.items():
                with self.subTest(f"{language} {key}"):
                    self.assertTrue(text.strip())

    def test_a_tool_tip_is_one_sentence(self):
        for language, table in self.tables.items():
            for key, text in table.items():
                if key.endswith(".toolTip"):
                    with self.subTest(f"{language} {key}"):
                        self.assertRegex(text, r"^[^.。;；（(]+[.。]$")

    def test_no_two_controls_of_a_language_have_the_same_tool_tip(self):
        for language, table in self.tables.items():
            with self.subTest(language):
                tips = [text for key, text in table.items() if key.endswith(".toolTip")]
                self.assertEqual(len(tips), len(set(tips)))

    def test_the_default_folders_are_absolute_paths(self):
        for table in self.tables.values():
            for key in localize.FOLDER_KEYS:
                self.assertRegex(table[key], r"^/.*[^/]$")


class Localizer(unittest.TestCase):
    """The program that the build runs."""

    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.output = Path(self.folder.name)

    def run_localize(self, system, *tables):
        return subprocess.run(
            [sys.executable, PREFERENCE / "localize.py", system, self.output, INTERFACE_FILE, *tables],
            capture_output=True, text=True, check=False)

    def table(self, language):
        return RESOURCES / f"{language}.lproj" / "Localizable.strings"

    def changed_table(self, before, after):
        """A table of a made-up language: the English one with one piece of text replaced."""
        text = self.table("en").read_text(encoding="utf-8")
        self.assertIn(before, text)
        path = self.output / "xx.lproj" / "Localizable.strings"
        path.parent.mkdir()
        path.write_text(text.replace(before, after), encoding="utf-8")
        return path

    def test_a_missing_key_is_told(self):
        result = self.run_localize("gnustep", self.changed_table('"look.title" = "Look";', ""))
        self.assertEqual(result.returncode, 1)
        self.assertIn("look.title is missing", result.stderr)

    def test_a_key_that_nothing_asks_for_is_told(self):
        result = self.run_localize("gnustep", self.changed_table('"look.title"', '"a.title" = "A";\n"look.title"'))
        self.assertEqual(result.returncode, 1)
        self.assertIn("nothing asks for a.title", result.stderr)

    def test_a_key_that_stands_twice_is_told(self):
        result = self.run_localize("gnustep", self.changed_table('"gamma.title"', '"look.title"'))
        self.assertEqual(result.returncode, 1)
        self.assertIn("look.title stands twice", result.stderr)

    def test_an_unreadable_line_is_told(self):
        result = self.run_localize("gnustep", self.changed_table('"Look";', '"Look"'))
        self.assertEqual(result.returncode, 1)
        self.assertIn("can't be read from here on", result.stderr)

    def test_every_system_gets_an_interface_file_in_each_language(self):
        for system in ("gnustep", "macos"):
            self.assertEqual(self.run_localize(system, *map(self.table, LANGUAGES)).returncode, 0)
            for language in LANGUAGES:
                with self.subTest(f"{system} {language}"):
                    table = localize.read_table(self.table(language))
                    interface = ElementTree.parse(self.output / f"{language}.lproj" / "VantrelPref.xib")
                    found = {key: element.get(attribute) for element, attribute, key in localize.texts(interface)}
                    self.assertEqual(found, {key: text for key, text in table.items() if key in found})
                    self.assertEqual(len(found) + len(localize.FOLDER_KEYS), len(table))

    def test_gnustep_is_told_what_it_takes_for_granted_in_another_way(self):
        self.run_localize("gnustep", self.table("en"))
        interface = ElementTree.parse(self.output / "en.lproj" / "VantrelPref.xib")
        # A pop-up whose menu has no title opens in a window of any size.
        self.assertEqual({menu.get("title") for menu in interface.iter("menu")}, {""})
        # A label without the attribute can be typed into.
        editable = [cell.get("editable") for cell in interface.iter("textFieldCell")]
        self.assertEqual((editable.count("YES"), editable.count("NO")), (2, 10))
        for box in interface.iter("box"):
            self.assertEqual(box.find("size[@key='contentViewMargins']").get("width"), "0.0")
        self.assertEqual(list(interface.iter("accessibilityConnection")), [])

    def test_macos_gets_the_interface_file_as_xcode_has_it_but_for_the_texts(self):
        self.run_localize("macos", self.table("en"))
        given = ElementTree.parse(self.output / "en.lproj" / "VantrelPref.xib")
        self.assertEqual(ElementTree.tostring(given.getroot()),
                         ElementTree.tostring(ElementTree.parse(INTERFACE_FILE).getroot()))

    def test_every_system_gets_the_default_folders_with_a_byte_order_mark(self):
        for system in ("gnustep", "macos"):
            with self.subTest(system):
                self.run_localize(system, self.table("ja"))
                strings = self.output / "ja.lproj" / "Localizable.strings"
                self.assertTrue(strings.read_bytes().startswith(b"\xef\xbb\xbf"))
                self.assertEqual(re.findall(r'^"(\w+)"', strings.read_text(encoding="utf-8-sig"), re.MULTILINE),
                                 list(localize.FOLDER_KEYS))


if __name__ == "__main__":
    unittest.main()
