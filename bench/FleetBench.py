"""What a profile costs for many users' homes: `vantrelctl apply`, home after home, the first time and when nothing
changes, and what a home's share is made of. Times are told beside that of a process that does nothing.

It runs with VANTRELCTL, the command, in the environment.
"""

import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "command"))
from home import COMPLETE, HomeTest  # noqa: E402

NUMBERS = (1, 10, 100, 1000)
TURNS = 100
COMMAND = os.environ["VANTRELCTL"]


class Homes:
    """As many users' homes, without settings."""

    def __init__(self, folder, number):
        homes = []
        for index in range(number):
            home = HomeTest()
            tempfile.tempdir = str(folder)
            home.setUp()
            tempfile.tempdir = None
            homes.append(home)
        self.environments = [home.environment for home in homes]

    def seconds(self, *words):
        begin = time.perf_counter()
        for environment in self.environments:
            subprocess.run(words, env=environment, stdout=subprocess.DEVNULL, check=False)
        return time.perf_counter() - begin


def shares(folder, profile):
    """What each step of one home's run adds: the median of turns that take each in its turn."""
    home = Homes(folder, 1)
    changed = folder / "changed.plist"
    changed.write_bytes(profile.read_bytes().replace(b"<key>FormatRGB8</key>\n\t<false/>",
                                                     b"<key>FormatRGB8</key>\n\t<true/>"))
    home.seconds(COMMAND, "apply", changed)
    steps = {"a process that does nothing": ["true"],
             "the command and its libraries are loaded (--version)": [COMMAND, "--version"],
             "one setting is read (get)": [COMMAND, "get", "look"],
             "the profile is read and compared, nothing changes (apply)": [COMMAND, "apply", changed],
             "one setting is written and on the disk (apply)": [COMMAND, "apply", profile]}
    times = {name: [] for name in steps}
    for _ in range(TURNS):
        for name, words in steps.items():
            times[name].append(home.seconds(*words))
        home.seconds(COMMAND, "apply", changed)
    return {name: statistics.median(all_times) for name, all_times in times.items()}


def main():
    folder = Path(tempfile.mkdtemp(prefix="vantrel-fleet."))
    try:
        profile = folder / "profile.plist"
        export = Homes(folder, 1)
        export.seconds(COMMAND, "reset")
        export.seconds(COMMAND, "set", "FormatRGB8", "off", "fcpRTEnableSwap", "off")
        with profile.open("wb") as file:
            subprocess.run([COMMAND, "export"], env=export.environments[0], stdout=file, check=True)
        idle = export.seconds("true")
        for number in NUMBERS:
            homes = Homes(folder, number)
            idle = min(idle, homes.seconds("true") / number)
            first, again = homes.seconds(COMMAND, "apply", profile), homes.seconds(COMMAND, "apply", profile)
            print(f"{number:5} homes: the first time {first:7.2f} s ({first / number / idle:4.1f} idle processes a home), "
                  f"when nothing changes {again:7.2f} s ({again / number / idle:4.1f})")
        for name, seconds in shares(folder, profile).items():
            print(f"{seconds * 1000:6.1f} ms  {seconds / idle:4.1f}  {name}")
    finally:
        shutil.rmtree(folder)


if __name__ == "__main__":
    main()
