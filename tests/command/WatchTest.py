import json
import os
import re
import select
import shutil
import signal
import time
import unittest
from pathlib import Path

from home import COMPLETE, DOMAIN, HomeTest

TIME = re.compile(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z$")
PATIENCE = 20  # seconds, after which a line won't come any more


class Watch(HomeTest):
    def watch(self, *words, **options):
        """Starts to watch, and returns once that is so."""
        self.watching = self.start("watch", *words, **options)
        self.addCleanup(self.end_watching)
        self.said = b""
        # It asks for notifications, then for events of files, and looks for the first time; from then on it waits.
        self.wait_until_it_waits()

    def wait_until_it_waits(self, **what_for):
        end = time.monotonic() + PATIENCE
        while not self.is_waiting(**what_for):
            self.assertLess(time.monotonic(), end, "it doesn't come to wait")
            self.assertIsNone(self.watching.poll(), "it has ended")
            time.sleep(0.01)

    def is_waiting(self, for_files=True):
        folder = Path(f"/proc/{self.watching.pid}")
        try:
            watches = any(os.readlink(link) == "anon_inode:inotify" for link in (folder / "fd").iterdir())
            return watches == for_files and "poll" in (folder / "wchan").read_text(encoding="utf-8")
        except FileNotFoundError:  # it opens and closes files meanwhile
            return False

    def end_watching(self):
        self.watching.kill()
        self.watching.communicate()

    def line(self):
        """The next line, without its end."""
        end = time.monotonic() + PATIENCE
        while b"\n" not in self.said:
            ready, _, _ = select.select([self.watching.stdout], [], [], max(0, end - time.monotonic()))
            self.assertTrue(ready, f"nothing came but {self.said}")
            more = os.read(self.watching.stdout.fileno(), 65536)
            self.assertTrue(more, "it has ended")
            self.said += more
        line, self.said = self.said.split(b"\n", 1)
        return line.decode()

    def lines(self, count):
        """The next lines, without their times."""
        found = []
        for _ in range(count):
            time_of_line, text = self.line().split(" ", 1)
            self.assertRegex(time_of_line, TIME)
            found.append(text)
        return found


class Settings(Watch):
    def test_each_change_of_another_process_is_told(self):
        self.write_domain(COMPLETE)
        self.watch()
        self.run_command("set", "FormatRGB8", "on")
        self.assertEqual(self.lines(1), ["FormatRGB8: off -> on"])
        self.run_command("set", "look", "off", "LUTsPath", "a\nb")
        # What is seen at one look is told in the order of the pane, and each may be seen alone.
        self.assertCountEqual(self.lines(3),
                              ["look: on -> off", "ColorProcessingPath: 15 -> 7", "LUTsPath: /luts -> a\\nb"])

    def test_the_override_metadata_is_watched_too(self):
        self.watch()
        self.run_command("set", "CLSF", "on", "CPUM", "1")
        self.assertCountEqual(self.lines(2), ["CLSF: missing -> on", "CPUM: missing -> 1"])

    def test_what_defaults_writes_is_told(self):
        self.write_domain(COMPLETE)
        self.watch()
        self.defaults_tool("write", DOMAIN, "FormatRGB8", "<*BY>")
        self.assertEqual(self.lines(1), ["FormatRGB8: off -> on"])
        self.defaults_tool("write", DOMAIN, "FormatRGB8", "-bool", "NO")
        self.assertEqual(self.lines(1), ["FormatRGB8: on -> mistyped"])
        self.defaults_tool("delete", DOMAIN, "FormatRGB8")
        self.assertEqual(self.lines(1), ["FormatRGB8: mistyped -> missing"])

    def test_a_store_that_is_made_while_it_is_watched_is_found(self):
        self.watch()
        self.assertFalse(self.defaults.exists())
        self.run_command("set", "FormatRGB8", "off")
        self.assertEqual(self.lines(1), ["FormatRGB8: missing -> off"])
        shutil.rmtree(self.defaults)
        self.assertEqual(self.lines(1), ["FormatRGB8: off -> missing"])
        self.run_command("set", "FormatRGB8", "on")
        self.assertEqual(self.lines(1), ["FormatRGB8: missing -> on"])

    def test_an_edit_in_place_is_told(self):
        self.write_domain(COMPLETE)
        self.watch()
        self.domain_file.write_bytes(self.domain_file.read_bytes().replace(b"/luts", b"/LUTs"))
        while self.lines(1) != ["LUTsPath: /luts -> /LUTs"]:  # the half-written file may be seen before
            pass

    def test_an_unchanged_value_and_a_foreign_key_are_not_told(self):
        self.write_domain(COMPLETE)
        self.watch()
        self.defaults_tool("write", DOMAIN, "foreign", "1")
        self.run_command("set", "FormatRGB8", "off", "FormatRGB16", "off")
        self.assertEqual(self.lines(1), ["FormatRGB16: on -> off"])

    def test_json_has_a_line_each(self):
        self.write_domain(COMPLETE)
        self.watch("--json")
        self.run_command("set", "MaxEncodeThreads", "1", "FormatDualStream3D", "on")
        change = json.loads(self.line())
        self.assertRegex(change.pop("time"), TIME)
        self.assertEqual(change, {"key": "FormatDualStream3D", "before": None, "after": True})


class Notifications(Watch):
    def test_the_stereo_notification_is_told(self):
        self.write_domain(COMPLETE)
        self.watch()
        self.run_command("set", "ShowStereoStatusMenu", "off")
        self.assertEqual(sorted(self.lines(2)), ["ShowStereoStatusMenu: on -> off", "StereoStatusMenuViewChanged"])

    def test_in_json_too(self):
        self.write_domain(COMPLETE)
        self.watch("--json")
        self.run_command("set", "ShowStereoStatusMenu", "off")
        told = [json.loads(self.line()) for _ in range(2)]
        self.assertEqual([line["notification"] for line in told if "notification" in line],
                         ["StereoStatusMenuViewChanged"])

    def test_one_that_comes_with_the_first_change_is_heard(self):
        self.watch()
        self.end_watching()
        [daemon] = [process for process, name in self.processes().items() if name == "gdnc"]
        os.kill(daemon, signal.SIGSTOP)
        self.watching = self.start("watch")
        # As long as the daemon doesn't answer, no file is watched.
        for _ in range(50):
            time.sleep(0.01)
            self.wait_until_it_waits(for_files=False)
        os.kill(daemon, signal.SIGCONT)
        self.wait_until_it_waits()

    def test_nothing_is_posted_where_nothing_changes(self):
        self.write_domain(COMPLETE)
        self.watch()
        self.run_command("set", "ShowStereoStatusMenu", "on", "FormatRGB8", "on")
        self.assertEqual(self.lines(1), ["FormatRGB8: off -> on"])
        self.run_command("set", "FormatRGB8", "off")
        self.assertEqual(self.lines(1), ["FormatRGB8: on -> off"])


class Ends(Watch):
    def test_it_ends_when_nobody_reads_any_more(self):
        self.watch()
        self.watching.stdout.close()
        self.run_command("set", "FormatRGB8", "off")
        self.watching.stdout = None
        self.watching.wait(timeout=PATIENCE)

    def test_an_interruption_ends_it(self):
        self.watch()
        self.watching.send_signal(2)
        self.assertNotEqual(self.watching.wait(timeout=PATIENCE), 0)


if __name__ == "__main__":
    unittest.main()
