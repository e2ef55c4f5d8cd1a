"""Each room includes what the table in HACKING.md lets it include, and nothing else."""

import re
import unittest
from pathlib import Path

TREE = Path(__file__).resolve().parents[1]
INCLUDE = re.compile(r"^\s*#\s*(?:include|import)\s*([<\"])([^>\"]+)", re.MULTILINE)
OBJECTIVE_C = re.compile(r"^\s*#\s*import", re.MULTILINE)
STANDARD_HEADER = re.compile(r"[a-z_]+")


def laws():
    """From each row's first cell to what its files may include and what from outside."""
    rows = re.findall(r"^\| `(.+?)` \| (.+?) \| (.+?) \|$", (TREE / "HACKING.md").read_text(), re.MULTILINE)
    return {room: (re.findall(r"`(.+?)`", included), outside) for room, included, outside in rows}


def sources():
    """Every source of ours, from its path to its text."""
    paths = (path for ending in ("h", "cpp", "mm") for path in TREE.rglob("*." + ending))
    found = {str(path.relative_to(TREE)): path for path in paths}
    return {name: path.read_text() for name, path in found.items() if not name.startswith("build/")}


def is_in(path, place):
    """Whether a file is below a folder `a/b/`, or among the headers `a/b/*.h` of a folder."""
    if place.endswith("/*.h"):
        return path.endswith(".h") and Path(path).parent == Path(place).parent
    return path.startswith(place)


class Rooms(unittest.TestCase):
    def setUp(self):
        self.laws = laws()
        self.sources = sources()

    def law_of(self, path):
        """The longest row that fits, or None."""
        return max((room for room in self.laws if path.startswith(room)), key=len, default=None)

    def is_plain_cpp(self, path):
        """Whether a file has to do with the C++ standard library."""
        objective_c = path.endswith(".mm") or OBJECTIVE_C.search(self.sources[path])
        return not objective_c and self.laws.get(self.law_of(path), ([], ""))[1] == "C++"

    def faults(self):
        for path, text in sorted(self.sources.items()):
            room = self.law_of(path)
            if not room:
                yield f"{path}: HACKING.md has no row for it"
                continue
            for quote, included in INCLUDE.findall(text):
                ours = included in self.sources
                if ours and not any(is_in(included, place) for place in self.laws[room][0]):
                    yield f"{path}: {room} may not include {included}"
                elif ours and not included.endswith(".h"):
                    yield f"{path}: {included} is no header"
                elif quote == '"' and not ours:
                    yield f"{path}: {included} is no file of ours by its path from the root"
                elif self.is_plain_cpp(path) and not (
                        self.is_plain_cpp(included) if ours else STANDARD_HEADER.fullmatch(included)):
                    yield f"{path}: {included} is more than the C++ standard library"

    def test_each_room_includes_what_it_may(self):
        faults = list(self.faults())
        if faults:
            self.fail("\n" + "\n".join(faults))

    def test_each_row_of_the_table_is_about_files(self):
        for room in self.laws:
            self.assertTrue(any(self.law_of(path) == room for path in self.sources), room)


if __name__ == "__main__":
    unittest.main()
