"""A user's home of a test's own, and the command in it.

A test file runs with VANTRELCTL, the command, in the environment.
"""

import contextlib
import json
import os
import plistlib
import shutil
import signal
import subprocess
import tempfile
import unittest
from pathlib import Path

DOMAIN = "com.vantrel.codec"

# Every key as a pane leaves it that found nothing on a machine with eight cores or more, and then a click on a format
# and one on a stage.
COMPLETE = {
    "FormatRGB8": False, "FormatRGB16": True, "FormatRGB32": True, "FormatYUV8": True, "FormatYUV16": True,
    "FormatYUV32": True, "FormatYUV8A": True, "FCPForceLetterBox": True, "fcpRTEnableSwap": False,
    "PProCS5HasMovieSetup": True, "QTGammaCorrection": 0, "FCPGammaCorrection": 1, "whiteBalance": True,
    "colorMatrix": True, "look": True, "gamma": False, "ColorProcessingPath": 0x0F, "MaxEncodeThreads": 0,
    "LUTsPath": "/luts", "OverridePath": "/overrides", "ShowStereoStatusMenu": True,
}

FLAGS = [key for key, value in COMPLETE.items() if isinstance(value, bool) and key != "fcpRTEnableSwap"]
STAGES = {"colorMatrix": 0x2, "whiteBalance": 0x4, "look": 0x8, "gamma": 0x20}
METHODS = {"8bitDebayer": 16, "RenderDebayer": 20}


def cores():
    """The number of threads that the menus offer."""
    lines = subprocess.run(["lscpu", "--online", "--parse=Core,Socket"], capture_output=True, text=True, check=True)
    found = {line for line in lines.stdout.splitlines() if not line.startswith("#")}
    return min(max(len(found), 1), 32)


class Answer:
    """What a process said: its exit status, its standard output and its standard error."""

    def __init__(self, process):
        self.status, self.out, self.err = process.returncode, process.stdout, process.stderr

    def __repr__(self):
        return f"status {self.status}\n{self.out}--- standard error\n{self.err}"


class HomeTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.home = Path(tempfile.mkdtemp(prefix="vantrel."))
        self.addCleanup(shutil.rmtree, self.home)
        self.addCleanup(self.end_processes)
        self.defaults = self.home / "Defaults"
        self.domain_file = self.defaults / f"{DOMAIN}.plist"
        self.record_file = self.home / "Library/ApplicationSupport/Vantrel/OverrideMetadata.plist"
        self.sockets = self.home / "sockets"
        self.sockets.mkdir(mode=0o700)
        # GNUstep doesn't look at $HOME: only its configuration file leads it away from the account's own folders. The
        # folder for its sockets gives the notifications a daemon of the test's own, and marks it.
        configuration = self.home / "GNUstep.conf"
        configuration.write_text(Path("/etc/GNUstep/GNUstep.conf").read_text(encoding="utf-8")
                                 + f"\nGNUSTEP_USER_CONFIG_FILE={self.home}/none"
                                   f"\nGNUSTEP_USER_DEFAULTS_DIR={self.defaults}"
                                   f"\nGNUSTEP_USER_DIR_LIBRARY={self.home}/Library\n", encoding="utf-8")
        # A leak sanitizer tells of the runtime's leaks, which aren't ours, only when it is asked. What it tells of ours
        # has addresses only: to look up names, the runtime's as well, would take each process as long again.
        self.environment = {"PATH": os.environ["PATH"], "LC_ALL": "C.UTF-8", "TEMP": str(self.sockets),
                            "GNUSTEP_CONFIG_FILE": str(configuration), "LSAN_OPTIONS": "print_suppressions=0",
                            "ASAN_OPTIONS": "symbolize=0"}

    def processes(self):
        """The names of the processes that were started in this home, daemons included, from their numbers."""
        mark = f"TEMP={self.sockets}".encode()
        found = {}
        for folder in Path("/proc").glob("[0-9]*"):
            try:
                if mark in (folder / "environ").read_bytes().split(b"\0"):
                    found[int(folder.name)] = (folder / "comm").read_text(encoding="utf-8").strip()
            except (FileNotFoundError, PermissionError, ProcessLookupError):
                pass
        return found

    def end_processes(self):
        for process in self.processes():
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)

    # Processes

    def start(self, *words, **options):
        return subprocess.Popen([os.environ["VANTRELCTL"], *words], env=self.environment, text=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)

    def run_command(self, *words, said="", environment=None, stdout=subprocess.PIPE):
        return Answer(subprocess.run([os.environ["VANTRELCTL"], *words], input=said, stdout=stdout,
                                     stderr=subprocess.PIPE, env={**self.environment, **(environment or {})}, text=True,
                                     check=False, timeout=60))

    def defaults_tool(self, *words):
        return Answer(subprocess.run(["defaults", *words], env=self.environment, capture_output=True, text=True,
                                     check=False, timeout=60))

    def expect(self, words, out="", status=0, err="", **options):
        """Runs the command and expects just that answer."""
        answer = self.run_command(*words, **options)
        self.assertEqual((answer.status, answer.out, answer.err), (status, out, err), answer)

    def expect_misuse(self, words, *lines, **options):
        """Runs the command and expects that it refuses to, with these lines, and leaves the stores as they were."""
        before = self.stores()
        err = "".join(f"vantrelctl: {line}\n" for line in lines)
        self.expect(words, status=64, err=err, **options)
        self.assertEqual(self.stores(), before)

    def counts_as_missing(self, file):
        """What standard error is told of a file that hides settings."""
        return f"vantrelctl: {file}: can't be read, so its settings count as missing\n"

    def without_library(self):
        """An environment in which the library of the override metadata can't be loaded."""
        folder = self.home / "libraries"
        folder.mkdir(exist_ok=True)
        (folder / "libKVRXMetadataDictionary.so.1").touch()
        return {"LD_LIBRARY_PATH": str(folder)}

    # Stores

    def write_domain(self, entries):
        self.defaults.mkdir(exist_ok=True)
        self.domain_file.write_bytes(plistlib.dumps(entries))
        self.domain_file.chmod(0o600)

    def write_record(self, entries):
        self.record_file.parent.mkdir(parents=True, exist_ok=True)
        self.record_file.write_bytes(plistlib.dumps(entries))
        self.record_file.chmod(0o600)

    def domain(self):
        return plistlib.loads(self.domain_file.read_bytes()) if self.domain_file.exists() else {}

    def record(self):
        return plistlib.loads(self.record_file.read_bytes()) if self.record_file.exists() else {}

    def stores(self):
        """Every file below the home, with its content."""
        return {path: path.read_bytes() for path in self.home.rglob("*") if path.is_file()}

    def wipe(self):
        for path in (self.domain_file, self.record_file):
            path.unlink(missing_ok=True)

    def listed(self):
        return {setting["key"]: setting for setting in json.loads(self.run_command("list", "--json").out)}
