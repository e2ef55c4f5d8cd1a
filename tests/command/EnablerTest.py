"""Runs in a file tree of its own, in which /Applications and /Library are empty: see in_private_machine.cpp."""

import json
import plistlib
import shutil
import unittest
from pathlib import Path

from home import COMPLETE, HomeTest

APPLICATION = Path("/Applications/Final Cut Pro.app/Contents")
ENABLERS = APPLICATION / "Resources/Non-Localized Settings/FXScripts/Enablers"
ACTIVE = ENABLERS / "RT Software Enabler.txt"
BACKUP = ENABLERS / "RT Software EnablerA.txt"
PLUGINS = Path("/Library/Application Support/Vantrel/PLugins")
OURS = PLUGINS / "RT Software Enabler703.txt"

# What each file holds in each state of the folder.
FOLDERS = {"off": ("own", None), "on": ("ours", "own"), "broken": (None, "own"), "unknown": (None, None)}


class EnablerTest(HomeTest):
    def setUp(self):
        super().setUp()
        self.addCleanup(self.empty)
        ENABLERS.mkdir(parents=True)
        PLUGINS.mkdir(parents=True)
        OURS.write_text("ours", encoding="utf-8")
        self.install("7.0.3")
        self.enter("off")

    def empty(self):
        for folder in ("/Applications", "/Library"):
            for inside in Path(folder).iterdir():
                shutil.rmtree(inside)

    def install(self, version):
        (APPLICATION / "version.plist").write_bytes(plistlib.dumps({"CFBundleVersion": version}))

    def enter(self, state):
        for path, content in zip((ACTIVE, BACKUP), FOLDERS[state]):
            path.unlink(missing_ok=True)
            if content:
                path.write_text(content, encoding="utf-8")

    def folder(self):
        contents = tuple(path.read_text(encoding="utf-8") if path.exists() else None for path in (ACTIVE, BACKUP))
        return next((state for state, expected in FOLDERS.items() if contents == expected), contents)


class Status(EnablerTest):
    def test_each_state_is_a_word(self):
        for state in FOLDERS:
            self.enter(state)
            self.expect(["enabler", "status"], f"{state}\n")
            self.assertEqual(self.folder(), state)

    def test_ours_alone_or_two_of_its_own_are_unknown(self):
        ACTIVE.write_text("ours", encoding="utf-8")
        self.expect(["enabler", "status"], "unknown\n")
        ACTIVE.write_text("own", encoding="utf-8")
        BACKUP.write_text("own", encoding="utf-8")
        self.expect(["enabler", "status"], "unknown\n")

    def test_without_final_cut_pro_or_an_enabler_for_it_it_is_absent(self):
        self.install("7.0.2")
        self.expect(["enabler", "status"], "absent\n")
        (APPLICATION / "version.plist").unlink()
        self.expect(["enabler", "status"], "absent\n")


class Switch(EnablerTest):
    def test_on_swaps_the_files_and_stores_the_key(self):
        self.expect(["enabler", "on"], "on\n", err=f"vantrelctl: Install enabler {OURS}\n")
        self.assertEqual((self.folder(), self.domain()), ("on", {"fcpRTEnableSwap": True}))

    def test_off_swaps_them_back(self):
        self.enter("on")
        self.expect(["enabler", "off"], "off\n", err="vantrelctl: Turn off enabler\n")
        self.assertEqual((self.folder(), self.domain()), ("off", {"fcpRTEnableSwap": False}))

    def test_what_would_be_an_alert_is_told_on_standard_error(self):
        self.install("7.0.2")
        for word in ("on", "off"):
            self.expect(["enabler", word], status=1,
                        err="vantrelctl: Could not find supported version of FCP: Found version 7.0.2\n"
                            f"vantrelctl: fcpRTEnableSwap: could not be switched {word}\n")
        self.assertEqual((self.folder(), self.domain()), ("off", {}))

    def test_what_would_be_a_log_line_is_told_on_standard_error(self):
        self.expect(["enabler", "off"], status=1,
                    err="vantrelctl: Turn off enabler\nvantrelctl: Saved RT Enabler file missing\n"
                        "vantrelctl: fcpRTEnableSwap: could not be switched off\n")
        self.enter("on")
        answer = self.run_command("enabler", "on")
        self.assertEqual((answer.status, answer.out), (1, ""))
        self.assertTrue(answer.err.startswith("vantrelctl: Failed "), answer)
        self.assertEqual((self.folder(), self.domain()), ("on", {}))


class Mend(EnablerTest):
    def test_a_broken_folder_is_off_again_and_the_key_stays(self):
        self.write_domain({"fcpRTEnableSwap": True})
        self.enter("broken")
        self.expect(["enabler", "mend"], "off\n")
        self.assertEqual((self.folder(), self.domain()), ("off", {"fcpRTEnableSwap": True}))

    def test_any_other_folder_stays(self):
        for state in ("off", "on", "unknown"):
            self.enter(state)
            self.expect(["enabler", "mend"], f"{state}\n")
            self.assertEqual(self.folder(), state)
        self.install("7.0.2")
        self.enter("broken")
        self.expect(["enabler", "mend"], "absent\n")
        self.assertEqual(self.folder(), "broken")


class InSetAndApply(EnablerTest):
    def test_the_files_are_swapped_where_the_folder_isnt_as_wanted(self):
        self.expect(["set", "fcpRTEnableSwap", "on"], "fcpRTEnableSwap: missing -> on\n",
                    err=f"vantrelctl: Install enabler {OURS}\n")
        self.assertEqual((self.folder(), self.domain()), ("on", {"fcpRTEnableSwap": True}))
        self.expect(["apply", "-"], "fcpRTEnableSwap: on -> off\n1 changed, 0 unchanged\n",
                    err="vantrelctl: Turn off enabler\n", said='{"fcpRTEnableSwap": false}')
        self.assertEqual((self.folder(), self.domain()), ("off", {"fcpRTEnableSwap": False}))

    def test_where_it_is_the_key_alone_is_stored(self):
        self.enter("on")
        self.expect(["set", "fcpRTEnableSwap", "on"], "fcpRTEnableSwap: missing -> on\n")
        self.assertEqual((self.folder(), self.domain()), ("on", {"fcpRTEnableSwap": True}))
        self.enter("off")
        self.expect(["set", "fcpRTEnableSwap", "off"], "fcpRTEnableSwap: on -> off\n")
        self.assertEqual((self.folder(), self.domain()), ("off", {"fcpRTEnableSwap": False}))

    def test_without_final_cut_pro_off_is_stored_and_on_is_not(self):
        (APPLICATION / "version.plist").unlink()
        self.expect(["set", "fcpRTEnableSwap", "off"], "fcpRTEnableSwap: missing -> off\n")
        self.expect(["set", "fcpRTEnableSwap", "on"], status=1,
                    err="vantrelctl: Could not find any FCP installation\n"
                        "vantrelctl: fcpRTEnableSwap: could not be switched on\n")
        self.assertEqual(self.domain(), {"fcpRTEnableSwap": False})

    def test_it_is_unchanged_only_when_the_folder_is_as_wanted_too(self):
        self.write_domain({"fcpRTEnableSwap": True})
        self.expect(["set", "fcpRTEnableSwap", "on"], "fcpRTEnableSwap: on, its folder off -> on\n",
                    err=f"vantrelctl: Install enabler {OURS}\n")
        self.expect(["set", "fcpRTEnableSwap", "on"], "fcpRTEnableSwap: on (unchanged)\n")

    def test_it_comes_after_all_else_and_what_was_done_until_then_is_told(self):
        self.enter("broken")
        answer = self.run_command("set", "fcpRTEnableSwap", "on", "look", "off", "CLSF", "on")
        self.assertEqual((answer.status, answer.out), (1, "look: missing -> off\nCLSF: missing -> on\n"))
        self.assertEqual((self.domain(), self.record()), ({"look": False, "ColorProcessingPath": 0}, {"CLSF": 1}))

    def test_what_apply_made_until_then_is_told_too(self):
        self.enter("broken")
        profile = '{"fcpRTEnableSwap": true, "look": false, "gamma": true}'
        self.write_domain({"gamma": True, "ColorProcessingPath": 0x20})
        answer = self.run_command("apply", "-", "--json", said=profile)
        self.assertEqual((answer.status, json.loads(answer.out)),
                         (1, {"changed": [{"key": "look", "before": None, "after": False}], "unchanged": 1,
                              "check": False}))
        answer = self.run_command("apply", "-", said=profile)
        self.assertEqual((answer.status, answer.out), (1, "0 changed, 2 unchanged\n"))

    def test_a_check_touches_no_file(self):
        before = self.stores()
        answer = self.run_command("apply", "-", "--check", said='{"fcpRTEnableSwap": true}')
        self.assertEqual((answer.status, answer.out, answer.err),
                         (2, "fcpRTEnableSwap: missing -> on\n1 changed, 0 unchanged\n", ""))
        self.assertEqual((self.stores(), self.folder()), (before, "off"))

    def test_reset_leaves_it_unless_it_is_named(self):
        self.enter("on")
        self.write_domain({"fcpRTEnableSwap": True})
        self.run_command("reset")
        self.assertEqual((self.folder(), self.domain()["fcpRTEnableSwap"]), ("on", True))
        self.run_command("reset", "fcpRTEnableSwap")
        self.assertEqual((self.folder(), self.domain()["fcpRTEnableSwap"]), ("off", False))


class InDoctor(EnablerTest):
    def expect_finding(self, problem, *mend):
        answer = self.run_command("doctor")
        self.assertEqual((answer.status, len(answer.out.splitlines())), (2, 1), answer)
        self.assertTrue(answer.out.startswith("fcpRTEnableSwap: "), answer)
        self.assertTrue(answer.out.endswith(f"; {' '.join(['vantrelctl', *mend])}\n"), answer)
        self.assertEqual(self.run_command(*mend).status, 0)
        self.expect(["doctor"])

    def test_a_folder_that_disagrees_with_its_key(self):
        self.write_domain({**COMPLETE, "fcpRTEnableSwap": True})
        self.expect_finding("disagreeing", "set", "fcpRTEnableSwap", "on")
        self.write_domain({**COMPLETE, "fcpRTEnableSwap": False})
        self.expect_finding("disagreeing", "set", "fcpRTEnableSwap", "off")

    def test_a_broken_folder(self):
        self.enter("broken")
        self.expect_finding("broken", "enabler", "mend")

    def test_a_folder_that_only_an_installation_mends(self):
        self.write_domain(COMPLETE)
        self.enter("unknown")
        answer = self.run_command("doctor")
        self.assertEqual((answer.status, answer.out),
                         (2, "fcpRTEnableSwap: it is off, and Final Cut Pro's folder is unknown; "
                             "install Final Cut Pro again\n"))

    def test_a_copy_that_a_dead_process_left(self):
        left = ENABLERS / ".Vantrel-unfinished-a1B2c3"
        left.touch(0o600)
        answer = self.run_command("doctor")
        self.assertEqual((answer.status, answer.out.split("; ")[-1]), (2, f"rm '{left}'\n"), answer)


if __name__ == "__main__":
    unittest.main()
