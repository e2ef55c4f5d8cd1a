"""Tells whether a picture of the pane shows the same controls in the same places as a reference picture.

    compare.py PICTURE REFERENCE

Frames, check boxes and fields, which are drawn with straight lines, may be off by two points; text, which differs from
font to font, only has to stand where text stood. Prints every place that differs, in points from the top left corner,
and ends with status 1 if there is one.
"""

import subprocess
import sys

LINE = 13  # a run of points this long is no letter's
LINE_SHIFT = 2
LINE_BLOCK = 16
LINE_POINTS_MISSED = 12  # in one block; fewer may be the gap in a frame for its title
TEXT_BLOCK = (12, 5)
TEXT_SHIFT = (16, 2)
TEXT_POINTS = 10  # in one block; fewer may be the end of a word


class Picture:
    """The points of a picture that differ from its background, which is its most frequent shade of grey."""

    def __init__(self, path):
        size = subprocess.run(["identify", "-format", "%w %h", path], capture_output=True, text=True, check=True)
        self.width, self.height = map(int, size.stdout.split())
        grey = subprocess.run(["convert", path, "-depth", "8", "gray:-"], capture_output=True, check=True).stdout
        background = max(range(256), key=grey.count)
        self.ink = {(place % self.width, place // self.width)
                    for place, shade in enumerate(grey) if abs(shade - background) > 48}
        self.lines = self.runs(1, 0) | self.runs(0, 1)

    def runs(self, across, down):
        """The points that belong to a straight line."""
        found = set()
        for x, y in self.ink:
            if (x - across, y - down) in self.ink:
                continue
            run = []
            while (x, y) in self.ink:
                run.append((x, y))
                x, y = x + across, y + down
            if len(run) >= LINE:
                found.update(run)
        return found


def blocks(points, width, height):
    """How many of the points lie in each block of that size."""
    counts = {}
    for x, y in points:
        block = x // width, y // height
        counts[block] = counts.get(block, 0) + 1
    return counts


def missing_lines(seen, wanted):
    """The blocks in which lines that are wanted are not seen, not even a little aside."""
    near = range(-LINE_SHIFT, LINE_SHIFT + 1)
    missed = [(x, y) for x, y in wanted.lines
              if not any((x + right, y + down) in seen.lines for right in near for down in near)]
    return [(x * LINE_BLOCK, y * LINE_BLOCK) for (x, y), count in blocks(missed, LINE_BLOCK, LINE_BLOCK).items()
            if count > LINE_POINTS_MISSED]


def missing_text(seen, wanted):
    """The blocks in which something is wanted and nothing is seen, not even beside it."""
    width, height = TEXT_BLOCK
    across, down = TEXT_SHIFT
    missed = []
    for (column, row), count in blocks(wanted.ink, width, height).items():
        x, y = column * width, row * height
        if count >= TEXT_POINTS and not any(
                (right, below) in seen.ink
                for below in range(y - down, y + height + down) for right in range(x - across, x + width + across)):
            missed.append((x, y))
    return missed


def main(picture, reference):
    seen, wanted = Picture(picture), Picture(reference)
    if (seen.width, seen.height) != (wanted.width, wanted.height):
        sys.exit(f"{picture} is {seen.width} x {seen.height}, the reference {wanted.width} x {wanted.height}")
    faults = {f"{x}, {y}: something is missing" for x, y in missing_lines(seen, wanted) + missing_text(seen, wanted)}
    faults |= {f"{x}, {y}: nothing should be here" for x, y in missing_lines(wanted, seen) + missing_text(wanted, seen)}
    if faults:
        sys.exit("\n".join(sorted(faults)))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
