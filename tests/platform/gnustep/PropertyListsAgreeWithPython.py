"""Random property lists in the binary format, as Python writes it, are read, and the XML that comes of it holds the same
values to Python's own reader.

Called with the program that reads lists."""

import datetime
import math
import pathlib
import plistlib
import random
import re
import subprocess
import sys
import tempfile

TEXTS = ["", "a", "C:\\Users", "\\U0041", "\\\\U0041", "<&>\"'", "a\rb\r\nc\n\t", "\x00\x01\x1f", "é漢😀", "\ufffe\uffff",
         "]]>", " ", "x" * 300, "漢" * 300]


def text(random):
    return random.choice(TEXTS) if random.random() < 0.5 else "".join(
        chr(random.choice([random.randrange(0, 128), random.randrange(0x80, 0xD800), random.randrange(0xE000, 0x110000)]))
        for _ in range(random.randrange(20)))


def date(random):
    return datetime.datetime(random.randrange(1, 10000), random.randrange(1, 13), random.randrange(1, 29),
                             random.randrange(24), random.randrange(60), random.randrange(60))


def real(random):
    return random.choice([0.0, 0.1, 1e23, 5e-324, 1.7976931348623157e308, math.inf, -math.inf, math.nan, 2.0,
                          random.random(), random.uniform(-1e18, 1e18)])


def integer(random):
    bits = random.choice([1, 7, 8, 15, 16, 31, 32, 63])
    return random.choice([random.randrange(2**bits), -random.randrange(2**bits) - 1, 2**63, 2**64 - 1])


def value(random, depth):
    scalars = [text, integer, real, date,
               lambda random: random.random() < 0.5,
               lambda random: random.randbytes(random.randrange(40)),
               lambda random: plistlib.UID(random.randrange(2**random.choice([8, 16, 32])))]
    containers = [lambda random: [value(random, depth + 1) for _ in range(random.randrange(20))],
                  lambda random: dictionary(random, depth + 1)]
    return random.choice(scalars + (containers if depth < 4 else []))(random)


def dictionary(random, depth):
    return {text(random): value(random, depth) for _ in range(random.randrange(20))}


def comparable(value, has_escapes):
    """`value` in a form that tells types and signs apart. With escapes, those are read that stand for what XML can't
    hold."""
    if isinstance(value, str) and has_escapes:
        value = re.sub(r"\\U([0-9A-F]{4})", lambda escape: chr(int(escape[1], 16)), value)
    if isinstance(value, list):
        return [comparable(item, has_escapes) for item in value]
    if isinstance(value, dict):
        return {comparable(key, has_escapes): comparable(item, has_escapes) for key, item in value.items()}
    if isinstance(value, plistlib.UID):
        return {("str", "'CF$UID'"): ("int", repr(value.data))}
    return type(value).__name__, repr(value)


def main(reader):
    seeded = random.Random(46)
    lists = [dictionary(seeded, 0) for _ in range(400)]
    with tempfile.TemporaryDirectory() as folder:
        for number, content in enumerate(lists):
            pathlib.Path(folder, str(number)).write_bytes(plistlib.dumps(content, fmt=plistlib.FMT_BINARY))
        subprocess.run([reader, folder], check=True)
        for number, content in enumerate(lists):
            read = plistlib.loads(pathlib.Path(folder, f"{number}.xml").read_bytes())
            assert comparable(read, True) == comparable(content, False), f"list {number}"


if __name__ == "__main__":
    main(sys.argv[1])
