import json
import unittest

from home import COMPLETE, DOMAIN, HomeTest

KEYS = ["FormatRGB8", "FormatRGB16", "FormatRGB32", "FormatDualStream3D", "FormatYUV8", "FormatYUV16", "FormatYUV32",
        "FormatYUV8A", "FCPForceLetterBox", "fcpRTEnableSwap", "PProCS5HasMovieSetup", "QTGammaCorrection",
        "FCPGammaCorrection", "whiteBalance", "colorMatrix", "look", "gamma", "8bitDebayer", "RenderDebayer",
        "ColorProcessingPath", "CLSF", "MaxEncodeThreads", "CPUM", "LUTsPath", "OverridePath", "ShowStereoStatusMenu"]
GROUPS = ["Pixel formats", "Host applications", "Colour processing", "Decoding and threads", "Folders", "Status"]


class List(HomeTest):
    def table(self):
        """The lines of the table, those of settings in columns."""
        answer = self.run_command("list")
        self.assertEqual((answer.status, answer.err), (0, ""))
        return answer.out.splitlines()

    def test_it_has_every_setting_in_the_order_of_the_pane_below_its_group(self):
        lines = self.table()
        self.assertEqual([line.split()[0] for line in lines if line.startswith("  ")], KEYS)
        self.assertEqual([line for line in lines if not line.startswith("  ")], GROUPS)

    def test_a_line_has_name_value_state_and_title(self):
        self.write_domain({"look": False, "gamma": "-bool", "QTGammaCorrection": 1})
        rows = {line.split()[0]: line.split(maxsplit=3) for line in self.table() if line.startswith("  ")}
        self.assertEqual(rows["look"], ["look", "off", "stored", "Look"])
        self.assertEqual(rows["gamma"], ["gamma", "on", "mistyped", "Gamma"])
        self.assertEqual(rows["whiteBalance"], ["whiteBalance", "on", "missing", "White balance"])
        self.assertEqual(rows["QTGammaCorrection"], ["QTGammaCorrection", "1", "stored", "Gamma in QuickTime"])

    def test_it_fits_80_columns_whatever_is_stored(self):
        long = "/Volumes/" + "a very long name/" * 20
        self.write_domain({"LUTsPath": long, "OverridePath": "日本" * 60, "ColorProcessingPath": -2**63,
                           "RenderDebayer": -2**63})
        wide = str.maketrans({"日": "日.", "本": "本."})
        for line in self.table():
            self.assertLessEqual(len(line.translate(wide)), 80, line)
        self.assertIn("…", self.run_command("list").out)

    def test_a_folder_of_several_lines_stays_on_one(self):
        self.run_command("set", "LUTsPath", "/a\n/b\x1b[31m")
        self.assertIn("/a\\n/b\\x1b[31m", self.run_command("list").out)

    def test_a_store_that_cant_be_read_is_told(self):
        self.write_domain({})
        whole = self.run_command("list")
        self.assertEqual((whole.status, whole.err), (0, ""))
        self.domain_file.write_text("damaged", encoding="utf-8")
        for words in (["list"], ["list", "--json"]):
            answer = self.run_command(*words)
            self.assertEqual((answer.status, answer.err), (0, self.counts_as_missing(self.domain_file)))
        self.expect(["list"], whole.out, err=self.counts_as_missing(self.domain_file))

    def test_there_is_no_colour_in_a_pipe(self):
        self.assertNotIn("\x1b", self.run_command("list").out)


class ListAsJSON(HomeTest):
    def test_it_has_every_setting_in_the_order_of_the_pane(self):
        answer = self.run_command("list", "--json")
        self.assertEqual((answer.status, answer.err), (0, ""))
        settings = json.loads(answer.out)
        self.assertEqual([setting["key"] for setting in settings], KEYS)
        for setting in settings:
            self.assertEqual(set(setting),
                             {"key", "title", "group", "value", "stored", "type", "default", "state"})

    def test_each_kind_of_value_has_its_own_type(self):
        self.write_domain({**COMPLETE, "RenderDebayer": 3, "ColorProcessingPath": 0x30000F})
        self.write_record({"CLSF": 1, "CPUM": 1})
        settings = self.listed()

        def told(key):
            return {name: settings[key][name] for name in ("value", "stored", "type", "state")}

        self.assertEqual(told("FormatRGB8"), {"value": False, "stored": False, "type": "flag", "state": "stored"})
        self.assertEqual(told("RenderDebayer"), {"value": 3, "stored": 3, "type": "integer", "state": "stored"})
        self.assertEqual(told("MaxEncodeThreads"), {"value": 1, "stored": 0, "type": "integer", "state": "stored"})
        self.assertEqual(told("ColorProcessingPath"),
                         {"value": 0x30000F, "stored": 0x30000F, "type": "integer", "state": "stored"})
        self.assertEqual(told("LUTsPath"), {"value": "/luts", "stored": "/luts", "type": "text", "state": "stored"})
        self.assertEqual(told("CLSF"), {"value": True, "stored": 1, "type": "number", "state": "stored"})
        self.assertEqual(told("CPUM"), {"value": 1, "stored": 1, "type": "number", "state": "stored"})

    def test_what_is_missing_has_null_and_the_default(self):
        settings = self.listed()
        for key, default in (("look", True), ("fcpRTEnableSwap", False), ("FormatDualStream3D", False),
                             ("QTGammaCorrection", 0), ("CLSF", False), ("CPUM", "all"), ("ColorProcessingPath", 0),
                             ("LUTsPath", "/Library/Application Support/Vantrel/LUTs")):
            with self.subTest(key):
                self.assertIsNone(settings[key]["stored"])
                self.assertEqual(settings[key]["state"], "missing")
                self.assertEqual((settings[key]["value"], settings[key]["default"]), (default, default))

    def test_what_is_mistyped_is_told_as_it_is_stored(self):
        self.write_domain({"look": "-bool", "gamma": 1, "LUTsPath": True})
        settings = self.listed()
        for key, stored, value in (("look", "-bool", True), ("gamma", 1, True)):
            self.assertEqual((settings[key]["stored"], settings[key]["value"], settings[key]["state"]),
                             (stored, value, "mistyped"))
        self.assertIs(settings["LUTsPath"]["stored"], True)

    def test_so_is_a_mistyped_override(self):
        self.write_record({"CLSF": "1", "CPUM": []})
        settings = self.listed()
        self.assertEqual((settings["CLSF"]["stored"], settings["CLSF"]["value"], settings["CLSF"]["state"]),
                         ("1", True, "mistyped"))
        self.assertEqual((settings["CPUM"]["value"], settings["CPUM"]["state"]), ("all", "mistyped"))

    def test_titles_and_groups_are_the_panes(self):
        settings = self.listed()
        self.assertEqual((settings["CPUM"]["title"], settings["CPUM"]["group"]),
                         ("Decoder threads", "Decoding and threads"))
        self.assertEqual([setting["group"] for setting in settings.values()][-1], "Status")

    def test_a_text_that_is_no_utf8_doesnt_spoil_it(self):
        self.write_domain({"LUTsPath": "/a"})
        self.domain_file.write_bytes(self.domain_file.read_bytes().replace(b"<string>/a", b"<string>/\\UD800"))
        self.assertIn("/", self.listed()["LUTsPath"]["value"])

    def test_the_domain_of_all_programs_stands_in_for_a_missing_key(self):
        self.write_domain({})
        (self.defaults / "NSGlobalDomain.plist").write_bytes(
            self.domain_file.read_bytes().replace(b"<dict/>", b"<dict><key>look</key><false/></dict>")
            .replace(b"<dict>\n</dict>", b"<dict><key>look</key><false/></dict>"))
        self.assertIs(self.listed()["look"]["value"], False, self.defaults_tool("read", DOMAIN))


if __name__ == "__main__":
    unittest.main()
