"""How long `vantrelctl get` takes beside `defaults read` of the same key: a ratio, from turns of both.

It runs with VANTRELCTL, the command, in the environment.
"""

import os
import statistics
import subprocess
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "tests" / "command"))
from home import COMPLETE, DOMAIN, HomeTest  # noqa: E402

TURNS = 200


def duration(words, environment):
    begin = time.perf_counter()
    subprocess.run(words, env=environment, stdout=subprocess.DEVNULL, check=True)
    return time.perf_counter() - begin


def main():
    home = HomeTest()
    home.setUp()
    try:
        home.write_domain(COMPLETE)
        pairs = [[duration(words, home.environment) for words in ([os.environ["VANTRELCTL"], "get", "look"],
                                                                   ["defaults", "read", DOMAIN, "look"])]
                 for _ in range(TURNS)]
    finally:
        home.doCleanups()
    ours, theirs = (statistics.median(column) for column in zip(*pairs))
    print(f"vantrelctl get, as a multiple of defaults read: {ours / theirs:.2f}")


if __name__ == "__main__":
    main()
