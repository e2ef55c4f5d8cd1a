import os
import unittest

from home import COMPLETE, FLAGS, METHODS, STAGES, HomeTest, cores

ON = ("on", "true", "yes", "1", "ON", "True")
OFF = ("off", "false", "no", "0", "OFF", "False")
METHOD_TITLES = ["Codec default", "Nearest neighbour (fastest)", "Bilinear", "Gradient-corrected linear",
                 "PPG (pixel grouping)", "VNG (variable gradients)", "AHD (adaptive homogeneity)", "LMMSE (finest)"]


class Set(HomeTest):
    def test_each_flag_takes_every_word_for_on_and_off(self):
        self.write_domain({"FormatRGB8": True})
        for on, off in zip(ON, OFF):
            self.expect(["set", "FormatRGB8", off], "FormatRGB8: on -> off\n")
            self.assertIs(self.domain()["FormatRGB8"], False)
            self.expect(["set", "FormatRGB8", on], "FormatRGB8: off -> on\n")
            self.assertIs(self.domain()["FormatRGB8"], True)

    def test_every_flag_is_stored(self):
        for key in FLAGS:
            self.expect(["set", key, "off"], f"{key}: missing -> off\n")
        self.assertEqual({key: self.domain()[key] for key in FLAGS}, dict.fromkeys(FLAGS, False))

    def test_a_stage_takes_its_bit_along_and_bit_0_when_it_goes_on(self):
        for key, mask in STAGES.items():
            self.write_domain({**COMPLETE, key: False, "ColorProcessingPath": 0x300000})
            self.expect(["set", key, "on"], f"{key}: off -> on\n")
            self.assertEqual(self.domain()["ColorProcessingPath"], 0x300001 | mask)
            self.expect(["set", key, "off"], f"{key}: on -> off\n")
            self.assertEqual(self.domain()["ColorProcessingPath"], 0x300001)

    def test_a_stage_is_unchanged_only_when_its_bit_is_as_wanted_too(self):
        self.write_domain({"look": True, "ColorProcessingPath": 0})
        self.expect(["set", "look", "on"], "look: on, in ColorProcessingPath off -> on\n")
        self.assertEqual(self.domain(), {"look": True, "ColorProcessingPath": 9})
        self.expect(["set", "look", "on"], "look: on (unchanged)\n")
        self.write_domain({"look": False, "ColorProcessingPath": 9})
        self.expect(["set", "look", "off"], "look: off, in ColorProcessingPath on -> off\n")
        self.assertEqual(self.domain()["ColorProcessingPath"], 1)

    def test_a_stage_is_off_in_a_missing_path_and_nothing_in_a_mistyped_one(self):
        self.write_domain({"look": False})
        self.expect(["set", "look", "off"], "look: off (unchanged)\n")
        self.assertEqual(self.domain(), {"look": False})
        self.write_domain({"look": False, "ColorProcessingPath": "9"})
        self.expect(["set", "look", "off"], "look: off, in ColorProcessingPath nothing -> off\n")
        self.assertEqual(self.domain(), {"look": False, "ColorProcessingPath": 0})

    def test_a_method_is_an_index_or_a_title_and_takes_its_field_along(self):
        for key, shift in METHODS.items():
            self.write_domain(COMPLETE)
            for index, title in enumerate(METHOD_TITLES):
                self.run_command("set", key, "0")
                self.assertEqual(self.run_command("set", key, title.lower()).status, 0)
                self.assertEqual(self.domain()[key], index)
                self.assertEqual(self.domain()["ColorProcessingPath"], 0x0F | index << shift)
                self.expect(["set", key, str(index)], f"{key}: {index} (unchanged)\n")

    def test_a_method_is_unchanged_only_when_its_field_is_as_wanted_too(self):
        self.write_domain({"RenderDebayer": 2, "ColorProcessingPath": 0x30002F})
        self.expect(["set", "RenderDebayer", "2"], "RenderDebayer: 2, in ColorProcessingPath 3 -> 2\n")
        self.assertEqual(self.domain()["ColorProcessingPath"], 0x20002F)

    def test_a_gamma_row_is_an_index_or_a_title(self):
        for key in ("QTGammaCorrection", "FCPGammaCorrection"):
            self.write_domain({key: 0})
            self.expect(["set", key, "Corrected for display"], f"{key}: 0 -> 1\n")
            self.assertEqual(self.domain(), {key: 1})
            self.expect(["set", key, "0"], f"{key}: 1 -> 0\n")
            self.assertEqual(self.domain(), {key: 0})

    def test_a_limit_is_a_number_of_threads(self):
        self.expect(["set", "MaxEncodeThreads", str(cores()), "CPUM", str(cores())],
                    f"MaxEncodeThreads: missing -> {cores()}\nCPUM: missing -> {cores()}\n")
        self.assertEqual(self.domain(), {"MaxEncodeThreads": cores() - 1})
        self.assertEqual(self.record(), {"CPUM": cores()})
        self.expect(["set", "cpum", "ALL"], f"CPUM: {cores()} -> all\n")
        self.assertEqual(self.record(), {"CPUM": 0})

    def test_the_chroma_filter_is_0_or_1_in_the_record_and_the_rest_of_it_stays(self):
        self.write_record({"CLSF": 0, "THEM": "theirs"})
        self.expect(["set", "CLSF", "on"], "CLSF: off -> on\n")
        self.assertEqual(self.record(), {"CLSF": 1, "THEM": "theirs"})
        self.expect(["set", "CLSF", "yes"], "CLSF: on (unchanged)\n")

    def test_a_folder_is_any_text(self):
        for text in ("/Volumes/a b", "[a,b]", "", "日本", "<&>", "{}", "on"):
            self.assertEqual(self.run_command("set", "LUTsPath", text).status, 0)
            self.assertEqual(self.domain()["LUTsPath"], text)

    def test_a_value_may_be_any_word(self):
        for word in ("set", "get", "++", "[a,b]", "{}", "-1", "on", "a\\"):
            self.expect(["set", "LUTsPath", word, "OverridePath", word],
                        f"LUTsPath: {self.shown('LUTsPath')} -> {word}\nOverridePath: {self.shown('OverridePath')} -> {word}\n")
            self.assertEqual(self.domain(), {"LUTsPath": word, "OverridePath": word})

    def shown(self, name):
        return self.domain().get(name, "missing")

    def test_words_behind_two_dashes_are_no_options(self):
        self.expect(["set", "--", "LUTsPath", "--json"], "LUTsPath: missing -> --json\n")
        self.assertEqual(self.domain(), {"LUTsPath": "--json"})
        self.expect(["set", "LUTsPath", "--", "--"], "LUTsPath: --json -> --\n")

    def test_several_are_stored_together_and_told_in_their_order(self):
        self.write_domain({"FormatRGB8": True})
        self.expect(["set", "look", "off", "FormatRGB8", "off", "CPUM", "1", "FormatRGB16", "on"],
                    "look: missing -> off\nFormatRGB8: on -> off\nCPUM: missing -> 1\nFormatRGB16: missing -> on\n")

    def test_an_equal_value_is_not_written(self):
        self.write_domain(COMPLETE)
        self.write_record({"CLSF": 1})
        before = {path: os.stat(path).st_ino for path in (self.domain_file, self.record_file)}
        self.expect(["set", "FormatRGB8", "off", "CLSF", "on", "MaxEncodeThreads", "1", "LUTsPath", "/luts"],
                    "FormatRGB8: off (unchanged)\nCLSF: on (unchanged)\nMaxEncodeThreads: 1 (unchanged)\n"
                    "LUTsPath: /luts (unchanged)\n")
        self.assertEqual({path: os.stat(path).st_ino for path in before}, before)

    def test_a_value_that_is_only_shown_alike_is_written(self):
        self.write_domain({"QTGammaCorrection": 5, "look": 1, "MaxEncodeThreads": 98})
        self.expect(["set", "QTGammaCorrection", "0", "look", "on", "MaxEncodeThreads", str(cores())],
                    f"QTGammaCorrection: 5 -> 0\nlook: mistyped -> on\nMaxEncodeThreads: 99 -> {cores()}\n")
        self.assertEqual(self.domain(), {"QTGammaCorrection": 0, "look": True, "ColorProcessingPath": 9,
                                         "MaxEncodeThreads": cores() - 1})

    def test_no_other_key_is_repaired_or_written(self):
        self.write_domain({"look": "-bool", "foreign": [1, 2]})
        self.expect(["set", "FormatRGB8", "off"], "FormatRGB8: missing -> off\n")
        self.assertEqual(self.domain(), {"look": "-bool", "foreign": [1, 2], "FormatRGB8": False})

    def test_a_folder_of_several_lines_is_told_on_one(self):
        self.expect(["set", "LUTsPath", "a\nb"], "LUTsPath: missing -> a\\nb\n")
        self.expect(["set", "LUTsPath", ""], "LUTsPath: a\\nb -> \"\"\n")

    def test_the_stereo_status_is_stored_without_a_word_of_its_notification(self):
        self.expect(["set", "ShowStereoStatusMenu", "off"], "ShowStereoStatusMenu: missing -> off\n")
        self.assertEqual(self.domain(), {"ShowStereoStatusMenu": False})

    def test_where_nobody_listens_no_daemon_is_started_for_notifications(self):
        self.run_command("set", "ShowStereoStatusMenu", "off")
        self.assertEqual([path for path in self.sockets.rglob("*") if not path.is_dir()], [])


class WrongSet(HomeTest):
    def test_a_value_that_the_control_cant_show_is_refused(self):
        self.write_domain(COMPLETE)
        titles = ", ".join(METHOD_TITLES)
        for key, value, expected in (
                ("look", "maybe", "on or off"), ("look", "", "on or off"), ("CLSF", "2", "on or off"),
                ("RenderDebayer", "8", f"an index from 0 to 7, nor one of: {titles}"),
                ("RenderDebayer", "-1", f"an index from 0 to 7, nor one of: {titles}"),
                ("8bitDebayer", "Bicubic", f"an index from 0 to 7, nor one of: {titles}"),
                ("QTGammaCorrection", "2", "an index from 0 to 1, nor one of: As recorded, Corrected for display"),
                ("QTGammaCorrection", "1.0", "an index from 0 to 1, nor one of: As recorded, Corrected for display"),
                ("MaxEncodeThreads", "0", f"a number of threads from 1 to {cores()}"),
                ("MaxEncodeThreads", "all", f"a number of threads from 1 to {cores()}"),
                ("MaxEncodeThreads", str(cores() + 1), f"a number of threads from 1 to {cores()}"),
                ("MaxEncodeThreads", "9" * 40, f"a number of threads from 1 to {cores()}"),
                ("CPUM", "0", f"all, or a number of threads from 1 to {cores()}"),
                ("CPUM", str(cores() + 1), f"all, or a number of threads from 1 to {cores()}")):
            with self.subTest(key, value=value):
                shown = value or '""'
                self.expect_misuse(["set", key, value], f"{key}: {shown} is not {expected}")

    def test_a_text_that_is_no_utf8_is_refused(self):
        self.expect_misuse(["set", "LUTsPath", b"a\x80"], "word 3: it is not in UTF-8")

    def test_the_path_of_colour_processing_is_for_apply_alone(self):
        self.expect_misuse(["set", "ColorProcessingPath", "9"],
                           "ColorProcessingPath: only apply can set it, from a profile")

    def test_all_is_checked_before_anything_is_written(self):
        self.expect_misuse(["set", "FormatRGB8", "off", "FormatRGB9", "on", "look", "maybe", "CLSF", "on"],
                           "no setting FormatRGB9; did you mean FormatRGB8?", "look: maybe is not on or off")

    def test_a_name_without_a_value_is_refused(self):
        self.expect_misuse(["set", "look", "on", "gamma"],
                           "gamma: a value is missing; set takes NAME VALUE [NAME VALUE…]")
        self.expect_misuse(["set"], "set: something is missing; it is used so: "
                                    "vantrelctl set NAME VALUE [NAME VALUE…]")

    def test_a_name_that_stands_twice_is_refused(self):
        self.expect_misuse(["set", "look", "on", "LOOK", "off"], "look: is named twice")


class FailedSet(HomeTest):
    def test_where_the_store_cant_be_written_nothing_is_and_the_status_is_1(self):
        self.defaults.write_text("not a folder", encoding="utf-8")
        before = self.stores()
        answer = self.run_command("set", "FormatRGB8", "off", "CLSF", "on")
        self.assertEqual((answer.status, answer.out), (1, ""), answer)
        self.assertIn("vantrelctl: FormatRGB8: off could not be stored\n", answer.err)
        self.assertTrue(all(line.startswith("vantrelctl: ") for line in answer.err.splitlines()), answer)
        self.assertEqual(self.stores(), before)

    def test_where_the_record_cant_be_read_nothing_is_written_at_all(self):
        self.record_file.parent.mkdir(parents=True)
        self.record_file.write_text("damaged", encoding="utf-8")
        before = self.stores()
        self.expect(["set", "FormatRGB8", "off", "CLSF", "on"], status=1,
                    err="vantrelctl: CLSF: the override metadata can't be opened\n")
        self.assertEqual(self.stores(), before)

    def test_where_standard_output_is_full_the_status_is_1(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            answer = self.run_command("list", stdout=full)
        self.assertEqual((answer.status, answer.err), (1, "vantrelctl: standard output: it can't be written\n"))


if __name__ == "__main__":
    unittest.main()
