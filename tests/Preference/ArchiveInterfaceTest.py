"""The program that makes archives of interface files for the build.

    VANTREL_ARCHIVER=archive_interface VANTREL_INTERFACE_FILE=VantrelPref.xib ArchiveInterfaceTest.py
"""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

ARCHIVER = os.environ["VANTREL_ARCHIVER"]
INTERFACE_FILE = os.environ["VANTREL_INTERFACE_FILE"]
SYSTEM_CONFIGURATION = Path("/etc/GNUstep/GNUstep.conf").read_text(encoding="utf-8")
OTHER_TASTE = '{ NSFont = "DejaVuSerif"; NSFontSize = 20; NSBoldFont = "DejaVuSerif"; GSTheme = Other; ' \
              'NSInterfaceStyleDefault = NSWindows95InterfaceStyle; NSLanguages = (Japanese); }'


class Archiver(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.archive = self.folder / "VantrelPref.gorm"

    def run_archiver(self, interface_file, archive, taste=None, display=None):
        """Runs it as a user with a taste of their own, on no display unless one is named."""
        home = Path(tempfile.mkdtemp(dir=self.folder))
        configuration = home / "GNUstep.conf"
        configuration.write_text(f"{SYSTEM_CONFIGURATION}\nGNUSTEP_USER_CONFIG_FILE={home}/none\n"
                                 f"GNUSTEP_USER_DEFAULTS_DIR={home}/Defaults\n"
                                 f"GNUSTEP_USER_DIR_LIBRARY={home}/Library\n", encoding="utf-8")
        if taste:
            (home / "Defaults").mkdir()
            (home / "Defaults" / "NSGlobalDomain.plist").write_text(taste, encoding="utf-8")
        environment = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
        environment["GNUSTEP_CONFIG_FILE"] = str(configuration)
        if display:
            environment["DISPLAY"] = display
        return subprocess.run([ARCHIVER, archive, interface_file], env=environment, capture_output=True, text=True,
                              check=False)

    def test_it_needs_no_display_and_has_nothing_to_say(self):
        result = self.run_archiver(INTERFACE_FILE, self.archive)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, "", ""))
        self.assertTrue(self.archive.read_bytes().startswith(b"GNUstep archive"))

    def test_it_asks_nothing_of_a_display_that_is_named(self):
        self.assertEqual(self.run_archiver(INTERFACE_FILE, self.archive, display=":nowhere").returncode, 0)

    def test_the_archive_is_the_same_every_time_whatever_the_builder_likes(self):
        other = self.folder / "Other.gorm"
        self.assertEqual(self.run_archiver(INTERFACE_FILE, self.archive).returncode, 0)
        self.assertEqual(self.run_archiver(INTERFACE_FILE, other, taste=OTHER_TASTE).returncode, 0)
        self.assertEqual(other.read_bytes(), self.archive.read_bytes())

    def test_what_is_no_interface_file_is_told(self):
        for name, contents in (("text.xib", "no XML"), ("other.xib", "<plist/>")):
            with self.subTest(name):
                path = self.folder / name
                path.write_text(contents, encoding="utf-8")
                result = self.run_archiver(path, self.archive)
                self.assertEqual(result.returncode, 1)
                self.assertIn(f"{path} is no interface file", result.stderr)
                self.assertFalse(self.archive.exists())

    def test_a_file_that_is_missing_is_told(self):
        result = self.run_archiver(self.folder / "missing.xib", self.archive)
        self.assertEqual(result.returncode, 1)
        self.assertIn("missing.xib is no interface file", result.stderr)

    def test_an_archive_that_cannot_be_written_is_told(self):
        result = self.run_archiver(INTERFACE_FILE, self.folder / "missing" / "VantrelPref.gorm")
        self.assertEqual(result.returncode, 1)
        self.assertIn("VantrelPref.gorm can't be written", result.stderr)


if __name__ == "__main__":
    unittest.main()
