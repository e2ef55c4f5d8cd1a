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
FOLDER_BUTTONS = ("_LUTsOK", "_LUTsUndo", "_overrideOK", "_overrideUndo")


class Interface(unittest.TestCase):
    def setUp(self):
        self.root = ElementTree.parse(INTERFACE_FILE).getroot()
        self.objects = {element.get("id"): element for element in self.root.iter() if element.get("id")}
        self.outlets = {outlet.get("property"): outlet.get("destination")
                        for outlet in self.objects["-2"].iter("outlet")}

    def controls(self):
        """Everything that the user can change."""
        fields = [self.objects[field] for field in FIELDS]
        return [element for element in self.root.iter() if element.tag in CONTROLS] + fields

    def connected(self, control, kind, name):
        """What the control's connections of that kind hold under that name."""
        return [connection.get(name) for connection in control.findall(f"connections/{kind}")]

    def test_no_two_objects_have_the_same_id(self):
        ids = [element.get("id") for element in self.root.iter() if element.get("id")]
        self.assertEqual(len(ids), len(set(ids)))

    def test_every_control_of_the_class_is_an_outlet_of_its_own_name(self):
        header = (PREFERENCE / "PrincipalClass.h").read_text(encoding="utf-8")
        declared = re.findall(r"IBOutlet \w+ \*(\w+);", header)
        self.assertEqual(len(declared), 30)
        for name in declared:
            with self.subTest(name):
                self.assertEqual(self.outlets.get(name), name)
                self.assertIn(name, self.objects)

    def test_the_window_and_the_ends_of_the_keyboard_order_are_outlets(self):
        self.assertEqual(self.objects[self.outlets["_window"]].tag, "window")
        for name in ("_firstKeyView", "_initialKeyView", "_lastKeyView"):
            self.assertIn(self.outlets[name], self.objects)

    def test_every_control_sends_its_action_to_the_pane(self):
        for name, selector in ACTIONS.items():
            with self.subTest(name):
                self.assertEqual(self.connected(self.objects[name], "action", "selector"), [selector])
                self.assertEqual(self.connected(self.objects[name], "action", "target"), ["-2"])

    def test_no_control_is_without_an_action_of_its_own(self):
        actions = [action.get("selector") for action in self.root.iter("action")]
        self.assertCountEqual(actions, ACTIONS.values())

    def test_the_pane_is_the_delegate_of_both_fields(self):
        for name in FIELDS:
            with self.subTest(name):
                delegates = [outlet.get("destination") for outlet in self.objects[name].iter("outlet")
                             if outlet.get("property") == "delegate"]
                self.assertEqual(delegates, ["-2"])

    def test_only_the_folder_buttons_are_disabled(self):
        disabled = [element.get("id").split("-")[1] for element in self.root.iter() if element.get("enabled") == "NO"]
        self.assertCountEqual(disabled, FOLDER_BUTTONS)

    def test_every_control_has_a_tool_tip(self):
        for control in self.controls():
            with self.subTest(control.get("id")):
                self.assertTrue(control.get("toolTip"))

    def test_every_font_has_a_size(self):
        for font in self.root.iter("font"):
            self.assertGreaterEqual(float(font.get("size", 0)), 10)

    def test_every_menu_has_a_title(self):
        # GNUstep opens a pop-up whose menu has none with a window of any size.
        for menu in self.root.iter("menu"):
            self.assertIsNotNone(menu.get("title"))

    def test_tab_goes_through_all_controls_from_the_top_left_to_the_bottom_right(self):
        first = self.outlets["_initialKeyView"]
        order, name = [], first
        while name not in order:
            order.append(name)
            following = [outlet.get("destination") for outlet in self.objects[name].findall("connections/outlet")
                         if outlet.get("property") == "nextKeyView"]
            self.assertEqual(len(following), 1, name)
            name = following[0]
        self.assertEqual(name, first)
        self.assertEqual(order[-1], self.outlets["_lastKeyView"])
        self.assertCountEqual(order, [control.get("id") for control in self.controls()])
        self.assertEqual(order, sorted(order, key=self.reading_place))

    def reading_place(self, name):
        """Where the eye meets a control: its group, its row in there, its place in the row."""
        groups = [box.get("id") for box in self.root.iter("box")]
        group = next(number for number, box in enumerate(groups)
                     if any(element.get("id") == name for element in self.objects[box].iter()))
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
                        self.assertRegex(text, r"^[^.。]+[.。]$")

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
