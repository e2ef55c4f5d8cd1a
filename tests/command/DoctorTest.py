import fcntl
import json
import os
import shutil
import subprocess
import time
import unittest

from home import COMPLETE, HomeTest, cores


class Doctor(HomeTest):
    def setUp(self):
        super().setUp()
        self.write_domain(COMPLETE)
        self.write_record({"CLSF": 1, "CPUM": 1})

    def findings(self):
        """What is found as JSON; the lines must say the same, and nothing may be changed."""
        before = self.stores()
        answer = self.run_command("doctor", "--json")
        found = json.loads(answer.out)
        self.assertEqual((answer.status, answer.err), (2 if found else 0, ""), answer)
        lines = self.run_command("doctor")
        self.assertEqual((lines.status, lines.err, len(lines.out.splitlines())), (answer.status, "", len(found)))
        for finding, line in zip(found, lines.out.splitlines()):
            self.assertEqual(set(finding), {"key", "problem", "meaning", "mend"})
            self.assertTrue(line.endswith(f"; {finding['mend']}"), line)
            self.assertTrue(line.startswith(finding["key"] or "/"), line)
        self.assertEqual(self.stores(), before)
        return found

    def expect_finding(self, key, problem, mend):
        """Expects one finding, whose command then mends it."""
        [finding] = self.findings()
        self.assertEqual((finding["key"], finding["problem"], finding["mend"]), (key, problem, mend), finding)
        self.follow(mend)
        self.assertEqual(self.findings(), [])

    def follow(self, mend):
        """Runs the command that mends something."""
        folder = os.path.dirname(os.environ["VANTRELCTL"])
        subprocess.run(["bash", "-c", mend], check=True, stdout=subprocess.DEVNULL,
                       env={**self.environment, "PATH": f"{folder}:{self.environment['PATH']}"})

    def test_it_finds_nothing_where_nothing_is_wrong(self):
        self.expect(["doctor"])
        self.expect(["doctor", "--json"], "[]\n")

    def test_it_finds_nothing_where_nothing_is_stored(self):
        self.wipe()
        self.expect(["doctor"])

    def test_a_mistyped_key(self):
        for key, value, mend in (("look", "-bool", "vantrelctl set look on"),
                                 ("FormatRGB8", 1, "vantrelctl set FormatRGB8 on"),
                                 ("QTGammaCorrection", 0.5, "vantrelctl set QTGammaCorrection 0"),
                                 ("LUTsPath", 3, "vantrelctl set LUTsPath '/Library/Application Support/Vantrel/LUTs'"),
                                 ("fcpRTEnableSwap", "yes", "vantrelctl set fcpRTEnableSwap off"),
                                 ("MaxEncodeThreads", ["8"],
                                  f"vantrelctl set MaxEncodeThreads {min(8, cores())}")):
            with self.subTest(key):
                self.write_domain({**COMPLETE, key: value})
                self.expect_finding(key, "mistyped", mend)

    def test_a_mistyped_path_of_colour_processing(self):
        self.write_domain({**COMPLETE, "ColorProcessingPath": "15", "RenderDebayer": 2})
        self.expect_finding("ColorProcessingPath", "mistyped",
                            "vantrelctl set whiteBalance on colorMatrix on look on gamma off 8bitDebayer 0 RenderDebayer 2")
        self.assertEqual(self.domain()["ColorProcessingPath"], 0x20000F)

    def test_a_stage_whose_bit_disagrees(self):
        self.write_domain({**COMPLETE, "ColorProcessingPath": 0x07})
        self.expect_finding("look", "disagreeing", "vantrelctl set look on")
        self.write_domain({**COMPLETE, "ColorProcessingPath": 0x2F})
        self.expect_finding("gamma", "disagreeing", "vantrelctl set gamma off")

    def test_a_method_whose_field_disagrees(self):
        self.write_domain({**COMPLETE, "RenderDebayer": 2, "ColorProcessingPath": 0x30000F})
        self.expect_finding("RenderDebayer", "disagreeing", "vantrelctl set RenderDebayer 2")

    def test_a_missing_path_or_stage_is_right(self):
        domain = dict(COMPLETE)
        del domain["ColorProcessingPath"]
        self.write_domain(domain)
        self.assertEqual(self.findings(), [])
        self.write_domain({"ColorProcessingPath": 0x2E})
        self.assertEqual(self.findings(), [])

    def test_an_index_outside_its_menu(self):
        for key, value, mend in (("QTGammaCorrection", 2, "vantrelctl set QTGammaCorrection 0"),
                                 ("8bitDebayer", -1, "vantrelctl set 8bitDebayer 0"),
                                 ("RenderDebayer", 8, "vantrelctl set RenderDebayer 0"),
                                 ("MaxEncodeThreads", -1, f"vantrelctl set MaxEncodeThreads {min(8, cores())}")):
            with self.subTest(key):
                self.write_domain({**COMPLETE, key: value})
                self.expect_finding(key, "outside", mend)

    def test_an_encoder_limit_that_the_machine_doesnt_have(self):
        self.write_domain({**COMPLETE, "MaxEncodeThreads": cores()})
        self.expect_finding("MaxEncodeThreads", "outside", f"vantrelctl set MaxEncodeThreads {cores()}")

    def test_a_mistyped_override(self):
        for value, shown in (("1", "1"), ("some", "all"), ([], "all")):
            self.write_record({"CPUM": value})
            self.expect_finding("CPUM", "mistyped", f"vantrelctl set CPUM {shown}")
            self.assertEqual(self.record(), {"CPUM": 0 if shown == "all" else 1})

    def test_an_override_outside_its_menu(self):
        self.write_record({"CPUM": cores() + 1})
        self.expect_finding("CPUM", "outside", "vantrelctl set CPUM all")
        self.write_record({"CLSF": 5})
        self.expect_finding("CLSF", "outside", "vantrelctl set CLSF off")

    def test_an_enabler_that_is_on_without_final_cut_pro(self):
        self.write_domain({**COMPLETE, "fcpRTEnableSwap": True})
        self.expect_finding("fcpRTEnableSwap", "disagreeing", "vantrelctl set fcpRTEnableSwap off")

    def test_a_damaged_store(self):
        self.domain_file.write_text("damaged", encoding="utf-8")
        self.expect_finding(None, "damaged", f"mv {self.domain_file} {self.domain_file}.damaged")
        self.write_domain(COMPLETE)
        self.record_file.write_text("<plist><array/></plist>", encoding="utf-8")
        found = self.findings()
        self.assertEqual([(finding["key"], finding["problem"]) for finding in found], [(None, "damaged")])

    def test_what_was_damaged_before_is_not_lost(self):
        for name in ("damaged", "damaged-2", "damaged-3"):
            self.write_domain({})
            self.domain_file.write_text(name, encoding="utf-8")
            self.expect_finding(None, "damaged", f"mv {self.domain_file} {self.domain_file}.{name}")
            self.assertEqual(self.domain_file.with_name(f"{self.domain_file.name}.{name}").read_text("utf-8"), name)

    def test_a_store_that_is_no_file(self):
        self.domain_file.unlink()
        os.mkfifo(self.domain_file, 0o600)
        self.expect_finding(None, "damaged", f"mv {self.domain_file} {self.domain_file}.damaged")

    def test_a_record_that_is_too_long(self):
        with self.record_file.open("a", encoding="utf-8") as record:
            record.write(" " * 512 * 1024)
        self.expect_finding(None, "damaged", f"mv {self.record_file} {self.record_file}.damaged")

    def test_a_record_that_is_a_link(self):
        elsewhere = self.record_file.with_name("elsewhere")
        self.record_file.rename(elsewhere)
        self.record_file.symlink_to(elsewhere)
        self.expect_finding(None, "unreadable", f"mv {self.record_file} {self.record_file}.damaged")

    def test_a_record_that_is_empty_is_right(self):
        self.record_file.write_bytes(b"")
        self.assertEqual(self.findings(), [])

    def test_a_file_in_the_place_of_a_folder(self):
        shutil.rmtree(self.record_file.parent)
        self.record_file.parent.touch()
        self.expect_finding(None, "damaged", f"mv {self.record_file.parent} {self.record_file.parent}.damaged")

    def test_a_damaged_domain_of_all_programs(self):
        file = self.defaults / "NSGlobalDomain.plist"
        file.write_text("damaged", encoding="utf-8")
        self.expect_finding(None, "damaged", f"mv {file} {file}.damaged")

    def test_a_store_that_others_may_read(self):
        self.domain_file.chmod(0o640)
        self.expect_finding(None, "exposed", f"chmod go= {self.domain_file}")
        self.record_file.chmod(0o602)
        self.expect_finding(None, "exposed", f"chmod go= {self.record_file}")

    def test_a_file_that_was_set_aside(self):
        self.domain_file.write_text("damaged", encoding="utf-8")
        self.run_command("set", "FormatRGB8", "on")
        [aside] = self.defaults.glob("*.unreadable-*")
        self.expect_finding(None, "aside", f"rm {aside}")
        self.assertEqual(self.domain(), {"FormatRGB8": True})

    def test_a_file_that_a_dead_process_left(self):
        for folder in (self.defaults, self.record_file.parent):
            left = folder / ".Vantrel-unfinished-a1B2c3"
            left.touch(0o600)
            self.expect_finding(None, "unfinished", f"rm {left}")

    def test_a_file_that_a_living_process_writes_is_no_finding(self):
        with open(self.defaults / ".Vantrel-unfinished-a1B2c3", "w", encoding="utf-8") as file:
            fcntl.flock(file, fcntl.LOCK_EX)
            self.assertEqual(self.findings(), [])

    def test_a_lock_older_than_20_seconds(self):
        lock = self.defaults / ".lck" / ".GNUstepDefaults.lck"
        lock.mkdir(parents=True)
        self.assertEqual(self.findings(), [])
        old = time.time() - 21
        os.utime(lock, (old, old))
        self.expect_finding(None, "abandoned", f"rmdir {lock}")


if __name__ == "__main__":
    unittest.main()
