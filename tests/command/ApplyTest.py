import json
import os
import plistlib
import unittest

from home import COMPLETE, HomeTest, cores


class Apply(HomeTest):
    def profile(self, content):
        """The path of a file with that content; a dictionary becomes an XML list."""
        path = self.home / "profile"
        path.write_bytes(plistlib.dumps(content) if isinstance(content, dict) else content)
        return str(path)

    def expect_refused(self, content, *lines):
        self.write_domain(COMPLETE)
        path = self.profile(content)
        self.expect_misuse(["apply", path], *lines)
        self.expect_misuse(["apply", path, "--check"], *lines)
        self.expect_misuse(["apply", path, "--json"], *lines)


class Profiles(Apply):
    def test_every_format_is_read(self):
        entries = {"FormatRGB8": False, "MaxEncodeThreads": 0, "LUTsPath": "/ü"}
        for content in (plistlib.dumps(entries), plistlib.dumps(entries, fmt=plistlib.FMT_BINARY),
                        json.dumps(entries).encode(), b"\xef\xbb\xbf \n" + json.dumps(entries).encode(),
                        plistlib.dumps(entries).decode().replace("UTF-8", "UTF-16").encode("utf-16")):
            with self.subTest(content[:20]):
                self.wipe()
                self.expect(["apply", self.profile(content)],
                            "FormatRGB8: missing -> off\nMaxEncodeThreads: missing -> 1\nLUTsPath: missing -> /ü\n"
                            "3 changed, 0 unchanged\n")
                self.assertEqual(self.domain(), entries)

    def test_a_dash_is_standard_input(self):
        self.expect(["apply", "-"], "look: missing -> off\n1 changed, 0 unchanged\n", said='{"look": false}')
        self.assertEqual(self.domain(), {"look": False, "ColorProcessingPath": 0})

    def test_changes_are_told_in_the_order_of_the_pane_and_the_rest_is_counted(self):
        self.write_domain(COMPLETE)
        self.expect(["apply", self.profile({"ShowStereoStatusMenu": True, "look": False, "FormatRGB8": True,
                                            "FormatRGB16": True})],
                    "FormatRGB8: off -> on\nlook: on -> off\n2 changed, 2 unchanged\n")

    def test_a_second_time_changes_nothing(self):
        path = self.profile({**COMPLETE, "CLSF": 1, "CPUM": 1})
        self.run_command("apply", path)
        before = self.stores()
        inode = os.stat(self.domain_file).st_ino
        self.expect(["apply", path], f"0 changed, {len(COMPLETE) + 2} unchanged\n")
        self.assertEqual(self.stores(), before)
        self.assertEqual(os.stat(self.domain_file).st_ino, inode)

    def test_names_are_known_in_any_case(self):
        self.expect(["apply", "-"], "FormatRGB8: missing -> off\n1 changed, 0 unchanged\n",
                    said='{"formatrgb8": false}')

    def test_numbers_may_be_written_with_a_point(self):
        self.expect(["apply", "-"], "QTGammaCorrection: missing -> 1\n1 changed, 0 unchanged\n",
                    said='{"QTGammaCorrection": 1.0}')
        self.assertEqual(self.domain(), {"QTGammaCorrection": 1})

    def test_the_chroma_filter_may_be_a_boolean(self):
        self.expect(["apply", "-"], "CLSF: missing -> on\n1 changed, 0 unchanged\n", said='{"CLSF": true}')
        self.assertEqual(self.record(), {"CLSF": 1})

    def test_an_empty_profile_changes_nothing(self):
        self.expect(["apply", "-"], "0 changed, 0 unchanged\n", said="{}")
        self.assertEqual((self.domain(), self.record()), ({}, {}))


class Stages(Apply):
    def test_stages_and_methods_are_made_as_clicks_would_make_them(self):
        self.write_domain({"ColorProcessingPath": 0x10})
        self.run_command("apply", self.profile({"look": True, "gamma": False, "RenderDebayer": 3}))
        self.assertEqual(self.domain(), {"look": True, "gamma": False, "RenderDebayer": 3,
                                         "ColorProcessingPath": 0x300019})

    def test_a_path_is_written_last_as_it_is(self):
        self.write_domain({"look": False, "ColorProcessingPath": 0x70})
        self.expect(["apply", self.profile({"look": True, "ColorProcessingPath": 0x1000008})],
                    f"look: off -> on\nColorProcessingPath: 112 -> {0x1000008}\n2 changed, 0 unchanged\n")
        self.assertEqual(self.domain(), {"look": True, "ColorProcessingPath": 0x1000008})

    def test_a_path_that_is_stored_already_survives_the_clicks_on_its_stages(self):
        self.write_domain({"look": False, "ColorProcessingPath": 0x8})
        self.expect(["apply", self.profile({"look": True, "ColorProcessingPath": 0x8})],
                    "look: off -> on\n1 changed, 1 unchanged\n")
        self.assertEqual(self.domain(), {"look": True, "ColorProcessingPath": 0x8})

    def test_a_path_alone_leaves_the_stages(self):
        self.write_domain({"look": True, "ColorProcessingPath": 9})
        self.expect(["apply", self.profile({"ColorProcessingPath": -1})],
                    "ColorProcessingPath: 9 -> -1\n1 changed, 0 unchanged\n")
        self.assertEqual(self.domain(), {"look": True, "ColorProcessingPath": -1})

    def test_a_path_that_disagrees_is_refused(self):
        self.expect_refused({"look": True, "gamma": False, "ColorProcessingPath": 0x20},
                            "ColorProcessingPath: 32 disagrees with look, which is on",
                            "ColorProcessingPath: 32 disagrees with gamma, which is off")
        self.expect_refused({"RenderDebayer": 2, "ColorProcessingPath": 0x300000},
                            f"ColorProcessingPath: {0x300000} disagrees with RenderDebayer, which is 2")

    def test_a_stage_without_its_bit_is_a_change(self):
        self.write_domain({"look": True, "ColorProcessingPath": 0})
        self.expect(["apply", self.profile({"look": True})],
                    "look: on, in ColorProcessingPath off -> on\n1 changed, 0 unchanged\n")


class Check(Apply):
    def test_it_says_the_same_and_writes_nothing(self):
        self.write_domain(COMPLETE)
        path = self.profile({"FormatRGB8": True, "look": True, "CPUM": 1})
        before = self.stores()
        answer = self.run_command("apply", path, "--check")
        self.assertEqual(self.stores(), before)
        self.assertEqual((answer.status, answer.err), (2, ""))
        self.expect(["apply", path], answer.out)

    def test_a_store_that_cant_be_read_is_told(self):
        self.domain_file.parent.mkdir(parents=True, exist_ok=True)
        self.domain_file.write_text("damaged", encoding="utf-8")
        path = self.profile({"FormatRGB8": True})
        change = "FormatRGB8: missing -> on\n1 changed, 0 unchanged\n"
        self.expect(["apply", path, "--check"], change, status=2, err=self.counts_as_missing(self.domain_file))
        answer = self.run_command("apply", path)
        self.assertEqual((answer.status, answer.out), (0, change))

    def test_without_a_difference_the_status_is_0(self):
        self.write_domain(COMPLETE)
        self.expect(["apply", self.profile(COMPLETE), "--check"], f"0 changed, {len(COMPLETE)} unchanged\n")


class AsJSON(Apply):
    def test_it_has_each_change_as_it_is_stored(self):
        self.write_domain({"FormatRGB8": True, "gamma": "-bool", "MaxEncodeThreads": 98})
        path = self.profile({"FormatRGB8": True, "FormatRGB16": False, "gamma": True, "MaxEncodeThreads": 0, "CLSF": 1})
        expected = {"changed": [{"key": "FormatRGB16", "before": None, "after": False},
                                {"key": "gamma", "before": "-bool", "after": True},
                                {"key": "CLSF", "before": None, "after": 1},
                                {"key": "MaxEncodeThreads", "before": 98, "after": 0}],
                    "unchanged": 1}
        answer = self.run_command("apply", path, "--json", "--check")
        self.assertEqual((answer.status, json.loads(answer.out)), (2, {**expected, "check": True}))
        answer = self.run_command("apply", path, "--json")
        self.assertEqual((answer.status, json.loads(answer.out)), (0, {**expected, "check": False}))
        answer = self.run_command("apply", path, "--json")
        self.assertEqual(json.loads(answer.out), {"changed": [], "unchanged": 5, "check": False})


class BadProfiles(Apply):
    def test_an_unknown_key_offers_the_nearest(self):
        self.expect_refused({"FormatRGB8": True, "FormatRGB64": True},
                            "no setting FormatRGB64; did you mean FormatRGB8?")

    def test_a_value_of_the_wrong_type_is_refused(self):
        last = cores() - 1
        for key, value, told, expected in (
                ("look", 1, "1", "true or false"), ("look", "yes", '"yes"', "true or false"),
                ("QTGammaCorrection", True, "true", "an index from 0 to 1"),
                ("RenderDebayer", "Bilinear", '"Bilinear"', "an index from 0 to 7"),
                ("RenderDebayer", 1.5, "a number with a fraction, or too large", "an index from 0 to 7"),
                ("MaxEncodeThreads", "8", '"8"', f"an index from 0 to {last}, one less than threads"),
                ("LUTsPath", 3, "3", "a text"), ("LUTsPath", ["/a"], "a list, a date or data", "a text"),
                ("CLSF", "on", '"on"', "0 or 1"), ("CPUM", "all", '"all"', f"a number from 0, which is all, to {last + 1}"),
                ("ColorProcessingPath", "9", '"9"', "a whole number")):
            with self.subTest(key, value=value):
                self.expect_refused({"FormatRGB16": False, key: value}, f"{key}: {told} is not {expected}")

    def test_a_value_that_the_control_cant_show_is_refused(self):
        last = cores() - 1
        for key, value, expected in (
                ("QTGammaCorrection", 2, "an index from 0 to 1"), ("QTGammaCorrection", -1, "an index from 0 to 1"),
                ("8bitDebayer", 8, "an index from 0 to 7"),
                ("MaxEncodeThreads", last + 1, f"an index from 0 to {last}, one less than threads"),
                ("CLSF", 2, "0 or 1"), ("CPUM", last + 2, f"a number from 0, which is all, to {last + 1}"),
                ("CPUM", -1, f"a number from 0, which is all, to {last + 1}")):
            with self.subTest(key, value=value):
                self.expect_refused({"FormatRGB16": False, key: value}, f"{key}: {value} is not {expected}")

    def test_all_of_it_is_told_at_once(self):
        self.expect_refused(b'{"look": 3, "gama": true, "CPUM": null}', "CPUM: a list, a date or data is not "
                            f"a number from 0, which is all, to {cores()}", "no setting gama; did you mean gamma?",
                            "look: 3 is not true or false")

    def test_a_name_that_stands_twice_is_refused(self):
        path = str(self.home / "profile")
        self.expect_refused(b'{"look": true, "look": false}', f"{path}: names look twice")
        self.expect_refused(b'{"look": true, "LOOK": false}', "look: is named twice")

    def test_what_is_no_profile_is_refused(self):
        path = str(self.home / "profile")
        neither = f"{path}: is neither a property list with a dictionary nor JSON with an object"
        for content in (b"", b"look", b"[]", plistlib.dumps(COMPLETE)[:200], b"bplist00", b"\0" * 100,
                        b"<plist><array/></plist>"):
            with self.subTest(content[:20]):
                self.expect_refused(content, neither)
        self.expect_refused(b'{"look": true', f"{path}: is no JSON from byte 14 on")
        self.expect_refused(b'{"look": true} x', f"{path}: is no JSON from byte 16 on")
        self.expect_refused(b"{" * 100000, f"{path}: is no JSON from byte 2 on")
        self.expect_refused(b'{"LUTsPath": "\xff"}', f"{path}: is no JSON from byte 15 on")

    def test_what_cant_be_read_is_a_failure(self):
        self.write_domain(COMPLETE)
        before = self.stores()
        missing = str(self.home / "missing")
        self.expect(["apply", missing], status=1, err=f"vantrelctl: {missing}: can't be read\n")
        self.expect(["apply", str(self.home)], status=1, err=f"vantrelctl: {self.home}: can't be read\n")
        self.assertEqual(self.stores(), before)

    def test_a_profile_of_more_than_16_MiB_is_not_read(self):
        path = self.home / "long"
        path.write_bytes(b'{"look": true}' + b" " * (16 * 1024 * 1024))
        self.expect(["apply", str(path)], status=1, err=f"vantrelctl: {path}: is longer than 16 MiB\n")


if __name__ == "__main__":
    unittest.main()
