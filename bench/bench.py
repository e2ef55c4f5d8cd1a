#!/usr/bin/env python3
"""What the store's work and the pane's opening cost, as ratios to peers that do the same.

Every number is measured beside those that it is compared with, in rounds, each in an order drawn by lot: whatever else
the machine does meets all of them alike. Google Benchmark measures one function after the other in one process. Here
most of the work is that of several processes, some of which have to be new each time.
"""

import argparse
import os
import random
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

OURS = "Vantrel"
FLOOR = "floor"  # what the system itself needs; no peer
INODES_OF_A_BLOCK = 16  # of ext4's, as it is made today


class Place:
    """A folder with a store of each peer in it, and what they find in their environment to keep to it."""

    def __init__(self, programs, parent, foreign=0):
        self.programs = programs
        self.folder = tempfile.mkdtemp(prefix="bench-", dir=parent)
        for name in ("config", "run", "schema"):
            os.mkdir(os.path.join(self.folder, name), 0o700)
        self.bus = None
        self.environment = dict(
            os.environ,
            GNUSTEP_CONFIG_FILE=self.write("GNUstep.conf", self.gnustep()),
            XDG_CONFIG_HOME=os.path.join(self.folder, "config"),
            XDG_RUNTIME_DIR=os.path.join(self.folder, "run"),
            GSETTINGS_BACKEND="dconf",
            GSETTINGS_SCHEMA_DIR=os.path.join(self.folder, "schema"),
        )
        if "dconf" in programs:
            self.write("schema/bench.gschema.xml", schema())
            subprocess.run(["glib-compile-schemas", self.environment["GSETTINGS_SCHEMA_DIR"]], check=True)
            self.bus = subprocess.Popen(
                ["dbus-daemon", "--session", "--nofork", "--print-address"],
                env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.bus.stdout.readline().strip()
        for name in programs:
            self.ask_new(name, f"fill {foreign}")
        self.held = self.used()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.bus:
            self.bus.terminate()
            self.bus.wait()
        for file in self.held:
            file.close()
        shutil.rmtree(self.folder)

    def used(self):
        """Makes it like a disk that has been used for long, and tells what has to stay open for that. In a new folder
        the inodes of the folder and of some stores' files share a block, and these stores would have one less to flush.
        """
        for number in range(2 * INODES_OF_A_BLOCK):
            self.write(f"used-{number}", "")
        return [open(os.path.join(folder, name), "rb")
                for folder, _, names in os.walk(self.folder) for name in names
                if os.path.isfile(os.path.join(folder, name))]

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path, "w", encoding="utf-8") as file:
            file.write(text)
        return path

    def gnustep(self):
        with open("/etc/GNUstep/GNUstep.conf", encoding="utf-8") as file:
            return file.read() + (
                f"\nGNUSTEP_USER_CONFIG_FILE={self.folder}/none\n"
                f"GNUSTEP_USER_DEFAULTS_DIR={self.folder}/NSUserDefaults\n"
                f"GNUSTEP_USER_DIR_LIBRARY={self.folder}/Library\n")

    def start(self, name, *verbs):
        return subprocess.Popen([self.programs[name], self.folder, *verbs], env=self.environment, text=True, bufsize=1,
                                stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def ask_new(self, name, verb):
        """What a new process tells, and the seconds from its start to its end."""
        answer, into = os.pipe()
        program = self.programs[name]
        start = time.monotonic()
        process = os.posix_spawn(program, [program, self.folder, verb], self.environment,
                                 file_actions=[(os.POSIX_SPAWN_DUP2, into, 1)])
        _, status = os.waitpid(process, 0)
        whole = time.monotonic() - start
        os.close(into)
        with open(answer, encoding="utf-8") as told:
            if status != 0:
                sys.exit(f"{name} failed: {verb}")
            # One line: a service that the process has started may keep the channel open.
            return told.readline().split(), whole

    def sessions(self):
        return {name: Session(self, name) for name in self.programs}


class Session:
    """A process of a peer's that goes on living."""

    def __init__(self, place, name):
        self.name = name
        self.process = place.start(name)

    def tell(self, verb):
        self.process.stdin.write(verb + "\n")

    def answer(self):
        answer = self.process.stdout.readline()
        if not answer:
            sys.exit(f"{self.name} failed")
        return answer.split()

    def ask(self, verb):
        """The seconds, and what a flag is."""
        self.tell(verb)
        nanoseconds, flag = self.answer()
        return int(nanoseconds) / 1e9, flag

    def end(self):
        self.process.stdin.close()
        self.process.wait()


def schema():
    types = ["b"] * 17 + ["x"] * 7 + ["s"] * 2
    defaults = {"b": "false", "x": "0", "s": "''"}
    keys = "".join(f'<key name="setting-{index:02}" type="{of}"><default>{defaults[of]}</default></key>'
                   for index, of in enumerate(types))
    return f'<schemalist><schema id="com.vantrel.bench" path="/com/vantrel/bench/">{keys}</schema></schemalist>'


def in_rounds(names, rounds, work, pause=0.0):
    """The list of results of `work(name)` for each name. The first round brings everything into memory and isn't
    counted."""
    results = {name: [] for name in names}
    order = list(names)
    for number in range(rounds + 1):
        random.shuffle(order)
        for name in order:
            time.sleep(pause)
            result = work(name)
            if number > 0:
                results[name].append(result)
    return results


# The work. Each of these tells the seconds of each round under each peer's name; nothing where a peer read an old value.

def clicks(place, rounds):
    sessions = place.sessions()

    def click(name):
        # What another has left to the disk without a flush is written now, or ours would take it along.
        os.sync()
        return sessions[name].ask("click 0")[0]

    # The clicks of a user lie further apart than a file's times need to tell of every change.
    times = in_rounds(sessions, rounds, click, pause=0.025)
    end(sessions)
    return times


def first_reads(place, rounds):
    """In the process, and with its start and its end."""
    both = in_rounds(place.programs, rounds, lambda name: place.ask_new(name, "read"))
    return ({name: [int(told[0]) / 1e9 for told, _ in all] for name, all in both.items()},
            {name: [whole for _, whole in all] for name, all in both.items()})


def reads_again(place, rounds, later, after_a_write=True):
    readers, writers = place.sessions(), place.sessions()
    stale = set()

    def read(name):
        written = writers[name].ask("click 0")[1] if after_a_write else None
        time.sleep(later)
        seconds, flag = readers[name].ask("read")
        if after_a_write and flag != written:
            stale.add(name)
        return seconds

    for reader in readers.values():
        reader.ask("read")
    times = in_rounds(readers, rounds, read)
    end(readers)
    end(writers)
    if OURS in stale:
        sys.exit("We have read an old value.")
    return {name: [] if name in stale else times[name] for name in times}


def longest_waits(place, rounds, count):
    """The longest of the clicks of three processes at a time."""

    def click(name):
        three = [Session(place, name) for _ in range(3)]
        for index, session in enumerate(three):
            session.tell(f"clicks {index} {count}")
        waits = [int(wait) / 1e9 for session in three for wait in session.answer()]
        end({session: session for session in three})
        return max(waits)

    return in_rounds(place.programs, rounds, click)


def end(sessions):
    for session in sessions.values():
        session.end()


# The tables.

def ratios(ours, theirs):
    return [one / other for one, other in zip(ours, theirs)]


def spread(values):
    if not values:
        return "reads the old value"
    values = sorted(values)
    at = [values[round(share * (len(values) - 1))] for share in (0.1, 0.9)]
    return f"{statistics.median(values):5.2f} ({at[0]:.2f} to {at[1]:.2f})"


def print_table(title, columns, rows):
    widths = [max(len(row[index]) for row in [columns, *rows]) for index in range(len(columns))]
    print(f"\n{title}\n")
    for row in [columns, *rows]:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())
    sys.stdout.flush()


def row(work, times):
    """Ours to each of the others. A star marks the fastest of the peers."""
    others = [name for name in times if name != OURS]
    peers = [name for name in others if name != FLOOR and times[name]]
    fastest = min(peers, key=lambda name: statistics.median(times[name]), default=None)
    return [work] + [spread(ratios(times[OURS], times[name])) + ("*" if name == fastest else "") for name in others]


def compare_stores(programs, rounds, foreign):
    few, fewer = max(1, rounds // 5), max(1, rounds // 20)
    rows = []
    with Place(programs, os.getcwd()) as disk:
        click = clicks(disk, rounds)
        rows.append(row("click", click))
        read, start = first_reads(disk, rounds)
        rows.append(row("first read", read))
        rows.append(row("first read, with the process", start))
        rows.append(row("read again", reads_again(disk, rounds, 0, after_a_write=False)))
        rows.append(row("read after another's click, at once", reads_again(disk, rounds, 0)))
        rows.append(row("read after another's click, 20 ms later", reads_again(disk, rounds, 0.02)))
        waits = longest_waits(disk, fewer, count=max(2, rounds // 4))
    with Place(programs, "/dev/shm") as memory:
        rows.insert(1, row("click, in memory", clicks(memory, rounds)))
    for count in foreign:
        with Place(programs, os.getcwd(), count) as disk:
            rows.append(row(f"first read, {count} others", first_reads(disk, few)[0]))
            rows.append(row(f"click, {count} others", clicks(disk, few)))
    others = [name for name in programs if name != OURS]
    print_table(f"26 settings on the disk: ours to theirs ({rounds} rounds, {few} with other programs' settings: median,"
                " first to last decile; * the fastest peer)", ["", *others], rows)

    floor = statistics.median(click[FLOOR])
    print_table(f"Three processes clicking at a time: the longest wait, in clicks of one process on the floor ({fewer} "
                "rounds)", ["", "median round", "longest", "in ms"],
                [[name, *(f"{wait / floor:.1f}" for wait in (statistics.median(waits[name]), max(waits[name]))),
                  f"{max(waits[name]) * 1e3:.1f}"] for name in programs])


def compare_openings(host, bundles, rounds):
    def open_pane(bundle):
        told = subprocess.run([host, "--open", bundle], check=True, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, timeout=60)
        # A pane may have something to say on the same channel.
        words = next(line for line in told.stdout.splitlines() if line.startswith("opened ")).split()
        return [float(word) for word in words[1:]]

    costs = in_rounds(bundles, rounds, open_pane)
    rows = [[name_of(bundle)] for bundle in bundles]
    for measure in range(3):
        median = [statistics.median(costs[other][number][measure] for other in bundles[1:]) for number in range(rounds)]
        for cells, bundle in zip(rows, bundles):
            cells.append(spread(ratios([cost[measure] for cost in costs[bundle]], median)))
    print_table(f"Opening a pane, to the median of the {len(bundles) - 1} other panes ({rounds} rounds)",
                ["", "time", "processor", "private memory"], rows)


def compare_bundles(bundles):
    """What of a bundle a package brings: stripped."""

    def measure(bundle):
        with tempfile.TemporaryDirectory() as folder:
            binary = os.path.join(folder, name_of(bundle))
            subprocess.run(["strip", "--strip-unneeded", "-o", binary, os.path.join(bundle, name_of(bundle))], check=True)
            listed = subprocess.run(["readelf", "--relocs", "--wide", binary], check=True, text=True,
                                    stdout=subprocess.PIPE).stdout
            # Those that are packed together are counted by readelf.
            packed = sum(int(number) for number in re.findall(r"^ *(\d+) offsets$", listed, re.MULTILINE))
            return [os.path.getsize(binary) / 1000, listed.count(" R_") + packed, packed]

    sizes = {bundle: measure(bundle) for bundle in bundles}
    median = [statistics.median(sizes[bundle][index] for bundle in bundles[1:]) for index in range(2)]
    rows = [[name_of(bundle)] + [f"{size / middle:5.2f} ({size:.0f})" for size, middle in zip(sizes[bundle], median)] +
            [str(sizes[bundle][2])] for bundle in bundles]
    print_table(f"Bundles: to the median of the {len(bundles) - 1} others, and as they are",
                ["", "stripped, kB", "relocations", "of them packed"], rows)


def name_of(bundle):
    return os.path.splitext(os.path.basename(bundle))[0]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--rounds", type=int, default=100)
    parser.add_argument("--foreign", type=int, nargs="+", default=[10_000, 100_000])
    parser.add_argument("--programs", nargs="+", required=True, help="name=program, the peers and ourselves")
    parser.add_argument("--pane-host", required=True)
    parser.add_argument("--panes", nargs="+", required=True, help="bundles, ours first")
    arguments = parser.parse_args()
    programs = dict(program.split("=", 1) for program in arguments.programs)
    compare_stores(programs, arguments.rounds, arguments.foreign)
    compare_openings(arguments.pane_host, arguments.panes, max(1, arguments.rounds // 5))
    compare_bundles(arguments.panes)


main()
