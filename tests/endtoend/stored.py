"""Tells what a property list holds, with the types to be seen: true, 1, 1.0, "1".

    stored.py FILE          its keys, one a line, sorted
    stored.py FILE KEY      the value under a key, or "absent"
    stored.py --all FILE    every key with its value

A file that doesn't exist holds nothing.
"""

import json
import plistlib
import sys
from pathlib import Path


def read(path):
    path = Path(path)
    return plistlib.loads(path.read_bytes()) if path.exists() else {}


def main(arguments):
    if arguments[0] == "--all":
        for key, value in sorted(read(arguments[1]).items()):
            print(key, json.dumps(value, ensure_ascii=False))
    elif len(arguments) == 1:
        print(*sorted(read(arguments[0])), sep="\n")
    else:
        values = read(arguments[0])
        key = arguments[1]
        print(json.dumps(values[key], ensure_ascii=False) if key in values else "absent")


if __name__ == "__main__":
    main(sys.argv[1:])
