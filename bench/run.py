#!/usr/bin/env python3
"""Measures the program against its goals and prints the figures as Markdown.

Needs strace, valgrind, find, iconv and a tmpfs. Exits with 1 when a goal is missed, with 2 when it cannot measure.
"""

import argparse
import contextlib
import os
import platform
import re
import resource
import shutil
import statistics
import struct
import subprocess
import sys
import tempfile
import time
from dataclasses import dataclass
from pathlib import Path
from typing import Callable

REPOSITORY = Path(__file__).resolve().parent.parent
SIZES = (10_000, 100_000)
LEVELS = 400

DELETE_CALLS = 2.4  # an entry
MOVE_CALLS = 2.6  # an entry
SEARCH_CALLS = 1.1  # an entry
REHEARSAL_RATIO = 1.3  # of the calls of find
REHEARSAL_BYTES = 200  # an entry that would be changed, without its name
CALLS_DRIFT = 0.15  # between one size and ten times that size
FIND_RATIO = 1.2
REPORT_RATIO = 1.2
IDLE_CALLS = 115
SAMPLE_SYNCS = 16
IDLE_RATIO = 2.0
PEAK_KIB = 8 * 1024
PEAK_KIB_A_LEVEL = 12
LIVE_SHORTCUT_CALLS = 12
FIRST_PAGE_RATIO = 2.5
TAB_CHANGE_LIMIT = 1000 / 60  # milliseconds: one frame
TAB_CHANGES = 120
REGISTRY_READ_RATIO = 4.0
REGISTRY_WRITE_RATIO = 8.0
REGISTRY_MEMORY_RATIO = 5.0
WORST_TIME_RATIO = 40.0
WORST_MEMORY_RATIO = 40.0
TWICE_THE_TEXT = 2.2  # times the instructions
PEAK_DRIFT_KIB = 256  # pages that a run happens to touch or not

TEMPORARY = ("Temp", "Windows/Temp", "My Documents/Temp")
TYPED = ("\\Cache\\", "\\Partial\\")
CLEAN_TYPED = 0x3
CLEAN_ROOT_TEMP = 0x4
CLEAN_FIXED = 0x1C
CLEAN_REGISTRY = 0x8000
CLEAN_START_MENU = 0x80000
MOVE_FAVORITES = 0x10000

SHORTCUTS = 1000
TARGET_DIRECTORIES = 10
REGISTRY_KEYS = 20_000
DEAD_KEYS = 5_000
WORST_UNITS = 12 << 20  # 24 MiB in UTF-16
COUNTED_UNITS = 1 << 18
KEY_PAIRS = 1 << 20
# The values that the steps that always run leave as they are.
QUIET_REGISTRY = """Windows Registry Editor Version 5.00\r
\r
[HKEY_LOCAL_MACHINE\\System\\GWE]\r
"Animate"=dword:00000001\r
\r
[HKEY_LOCAL_MACHINE\\System\\GWE\\Menu]\r
"AniType"=dword:00000006\r
"""
FAVORITES_IN_A = """\r
[HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders]\r
"Favorites"="\\\\A"\r
"""


def refuse(reason):
    print(f"run.py: {reason}", file=sys.stderr)
    sys.exit(2)


@dataclass(frozen=True)
class Shape:
    """A tree: chains of directories, each directory holding the same number of files."""

    title: str
    files_a_directory: int  # 0: all of them in the tree's top directory
    levels: int

    def make(self, top, files):
        """Fills the directory `top` with empty files; returns the number of entries."""
        if self.files_a_directory == 0:
            make_files(top, files)
            return files
        chains = files // (self.files_a_directory * self.levels)
        for chain in range(chains):
            make_chain(top, f"{chain:x}", self.levels, self.files_a_directory)
        return files + chains * self.levels


def make_chain(top, name, levels, files):
    directory = top
    for _ in range(levels):
        directory = f"{directory}/{name}"
        os.mkdir(directory)
        make_files(directory, files)
        name = "d"


def make_files(directory, count):
    parent = os.open(directory, os.O_RDONLY | os.O_DIRECTORY)
    for index in range(count):
        os.close(os.open(f"f{index:x}", os.O_WRONLY | os.O_CREAT, 0o644, dir_fd=parent))
    os.close(parent)


USUAL = Shape("100 files a directory", 100, 1)
ONE_DIRECTORY = Shape("one directory", 0, 1)
DEEP = Shape(f"{LEVELS} levels, 25 files a directory", 25, LEVELS)
SHALLOW = Shape("1 level, 25 files a directory", 25, 1)
SHAPES = (USUAL, ONE_DIRECTORY, SHALLOW, DEEP)


@dataclass(frozen=True)
class Cost:
    wall: float  # milliseconds
    processor: float  # milliseconds
    peak: int  # KiB


class Workplace:
    """The programs, and the tmpfs directory in which devices are made."""

    def __init__(self, build, tmpfs):
        self.program = str(build / "fennelbright")
        self.walk_tree = str(build / "bench/walk_tree")
        self.registry_work = str(build / "bench/registry_work")
        self.first_page = str(build / "bench/first_page")
        self.empty_window = str(build / "bench/empty_window")
        self.measure = str(build / "bench/measure")
        self.empty = str(build / "bench/empty")
        self.directory = tmpfs
        for needed in (self.program, self.walk_tree, self.registry_work, self.first_page,
                       self.empty_window, self.measure, self.empty):
            if not os.access(needed, os.X_OK):
                refuse(f"{needed} is missing: build with FENNELBRIGHT_BENCHMARKS=ON")

    @contextlib.contextmanager
    def device(self):
        path = tempfile.mkdtemp(prefix="device-", dir=self.directory)
        try:
            yield Device(path)
        finally:
            subprocess.run(["rm", "-rf", path], check=True)

    def calls(self, command, name="total"):
        """The number of system calls of a command, or of those with one name."""
        with tempfile.NamedTemporaryFile("r") as summary:
            subprocess.run(
                ["strace", "-f", "-c", "-U", "calls,name", "-o", summary.name] + command,
                check=True, stdout=subprocess.DEVNULL)
            found = re.search(rf"^\s*(\d+)\s+{name}$", summary.read(), re.MULTILINE)
            return int(found[1]) if found else 0

    def instructions(self, command):
        """The number of instructions of a command outside the kernel."""
        done = subprocess.run(
            ["valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null"]
            + command, check=True, capture_output=True, text=True)
        return int(re.search(r"I +refs: +([\d,]+)", done.stderr)[1].replace(",", ""))

    def cost(self, command):
        """The figures of one run of a command."""
        done = subprocess.run([self.measure] + command, check=True, capture_output=True, text=True)
        wall, processor, peak = map(int, done.stdout.split())
        return Cost(wall / 1000, processor / 1000, peak)

    def silent_run(self, device, *options):
        return [self.program, "--device", device.path, *options, "silent"]


class Device:
    """A device directory with nothing to do."""

    def __init__(self, path):
        self.path = path
        self.files = f"{path}/files"
        for directory in TEMPORARY + ("Cache", "Partial", "A", "B", "Program Files/Fennelbright"):
            os.makedirs(f"{self.files}/{directory}")
        self.tick(CLEAN_ROOT_TEMP)
        self.write_registry(QUIET_REGISTRY)

    def write_registry(self, text):
        Path(self.path, "registry.reg").write_bytes(b"\xff\xfe" + text.encode("utf-16-le"))

    def tick(self, mask, texts=()):
        """Writes the settings: the options' bits and the texts of those that have one."""
        settings = struct.pack("<I", mask)
        for text in texts:
            settings += struct.pack("<I", len(text)) + text.encode("utf-16-le")
        path = Path(self.files, "Program Files/Fennelbright/settings.dat")
        path.write_bytes(settings)


@dataclass(frozen=True)
class Walk:
    """One of the ways to go through a whole tree."""

    title: str
    top: str  # where the tree stands, below the device's files
    keeps_directories: bool | None  # None: keeps the files as well
    command: Callable  # of a workplace and a device

    def check(self, device):
        """Ends the measurement if the walk has not processed the whole tree."""
        if self.keeps_directories is None:
            return
        for directory, subdirectories, files in os.walk(f"{device.files}/{self.top}"):
            if files or (subdirectories and not self.keeps_directories):
                refuse(f"{self.title} has left something in {directory}")


SILENT = Walk("silent run", "Temp", True, lambda place, device: place.silent_run(device))
REPORTED = Walk("silent run, JSON", "Temp", True,
                lambda place, device: place.silent_run(device, "--report=json"))
DELETE = Walk(
    "delete", "Temp", False,
    lambda place, device: [place.walk_tree, "delete", device.files, "\\Temp\\"])
MOVE = Walk(
    "move", "A", False,
    lambda place, device: [place.walk_tree, "move", device.files, "\\A", "\\B\\"])
REHEARSED_DELETE = Walk(
    "rehearsal, deleting", "Temp", None,
    lambda place, device: place.silent_run(device, "--rehearse", "--report"))
REHEARSED_MOVE = Walk(
    "rehearsal, moving", "A", None, lambda place, device: rehearse_move(place, device))
SEARCH = Walk(
    "search", "Temp", None,
    lambda place, device: [place.walk_tree, "search", device.files, "\\Temp"])
FIND_SIZES = Walk(
    "find, sizes", "Temp", None,
    lambda _, device: ["find", f"{device.files}/Temp", "-printf", "%s\\n"])
FIND_SIZES_OF_MOVE = Walk(
    "find, sizes", "A", None, lambda _, device: ["find", f"{device.files}/A", "-printf", "%s\\n"])
FIND_FILES = Walk(
    "find, files", "Temp", True,
    lambda _, device: ["find", f"{device.files}/Temp", "-type", "f", "-printf", "%s\\n",
                       "-delete"])
FIND_ALL = Walk(
    "find, all", "Temp", False,
    lambda _, device: ["find", f"{device.files}/Temp", "-mindepth", "1", "-printf", "%s\\n",
                       "-delete"])


def rehearse_move(place, device):
    device.write_registry(QUIET_REGISTRY + FAVORITES_IN_A)
    device.tick(MOVE_FAVORITES, ("\\B\\",))
    return place.silent_run(device, "--rehearse", "--report")


def walk_once(place, walk, shape, files, how):
    """Makes a tree, walks it and returns what `how` measured and the number of entries."""
    with place.device() as device:
        entries = shape.make(f"{device.files}/{walk.top}", files) if files else 0
        result = how(walk.command(place, device))
        walk.check(device)
        return result, entries


class Table:
    """The rows printed so far, and whether each met its goal."""

    def __init__(self):
        self.missed = 0

    def head(self, title, note):
        print(f"\n### {title}\n\n{note}\n")
        print("| What | Tree | Files | Figure | Beside it | Goal | Met |")
        print("|---|---|--:|--:|---|---|---|", flush=True)

    def row(self, what, tree, files, figure, beside="", goal="", met=None):
        self.missed += met is False
        verdict = {None: "", True: "yes", False: "**no**"}[met]
        files = f"{files:,}" if files else ""
        print(f"| {what} | {tree} | {files} | {figure} | {beside} | {goal} | {verdict} |",
              flush=True)


def count_calls(place, table):
    table.head("System calls", "Calls an entry, without those of the same run on an empty tree.")
    for walk, limit in ((SILENT, DELETE_CALLS), (DELETE, DELETE_CALLS), (MOVE, MOVE_CALLS)):
        start, _ = walk_once(place, walk, USUAL, 0, place.calls)
        for shape in SHAPES:
            count_shape(place, table, walk, shape, start, limit if shape is USUAL else None)


def count_shape(place, table, walk, shape, start, limit):
    first = None
    for files in SIZES:
        calls, entries = walk_once(place, walk, shape, files, place.calls)
        figure = (calls - start) / entries
        first = figure if first is None else first
        goals, met = [], True
        if limit is not None:
            goals.append(f"at most {limit}")
            met = figure <= limit
        if files != SIZES[0]:
            goals.append(f"within {CALLS_DRIFT} of {SIZES[0]:,}")
            met = met and abs(figure - first) <= CALLS_DRIFT
        table.row(walk.title, shape.title, files, f"{figure:.3f}", f"{calls:,} calls",
                  ", ".join(goals), met if goals else None)


def count_search(place, table):
    table.head("System calls of a search", "Of the whole process, nothing matching; beside them"
               " those of `find DIR -printf '%s\\n'`.")
    start, _ = walk_once(place, SEARCH, USUAL, 0, place.calls)
    for shape in SHAPES:
        for files in SIZES:
            calls, entries = walk_once(place, SEARCH, shape, files, place.calls)
            reference, _ = walk_once(place, FIND_SIZES, shape, files, place.calls)
            figure = (calls - start) / entries
            met = calls <= reference and (shape is not USUAL or figure <= SEARCH_CALLS)
            goal = "no more than find" + (f", at most {SEARCH_CALLS} an entry"
                                          if shape is USUAL else "")
            table.row("search", shape.title, files, f"{figure:.3f}",
                      f"{calls:,} calls, find {reference:,}", goal, met)


def measure_rehearsals(place, table):
    table.head("Rehearsals", "Calls of the whole process against those of `find DIR -printf '%s\\n'`; peak memory"
               " in bytes for each entry more.")
    for walk, find in ((REHEARSED_DELETE, FIND_SIZES), (REHEARSED_MOVE, FIND_SIZES_OF_MOVE)):
        for shape in SHAPES:
            measure_rehearsal(place, table, walk, find, shape)


def measure_rehearsal(place, table, walk, find, shape):
    peaks, counts = [], []
    for files in SIZES:
        calls, entries = walk_once(place, walk, shape, files, place.calls)
        reference, _ = walk_once(place, find, shape, files, place.calls)
        ratio = calls / reference
        table.row(f"{walk.title}, calls", shape.title, files, f"{ratio:.2f}",
                  f"{calls:,} calls, find {reference:,}", f"at most {REHEARSAL_RATIO}",
                  ratio <= REHEARSAL_RATIO)
        cost, _ = walk_once(place, walk, shape, files, place.cost)
        peaks.append(cost.peak)
        counts.append(entries)
    growth = (peaks[1] - peaks[0]) * 1024 / (counts[1] - counts[0])
    table.row(f"{walk.title}, memory", shape.title, SIZES[1], f"{growth:.0f}",
              f"{peaks[0]:,} KiB, then {peaks[1]:,}", f"at most {REHEARSAL_BYTES}",
              growth <= REHEARSAL_BYTES)


def measure_memory(place, table):
    table.head("Peak memory", "KiB. What is beside a figure is the change from the smaller tree.")
    for walk in (SILENT, DELETE, MOVE):
        for shape in SHAPES:
            measure_peaks(place, table, walk, shape)


def measure_peaks(place, table, walk, shape):
    limit = PEAK_KIB + PEAK_KIB_A_LEVEL * shape.levels
    first = None
    for files in SIZES:
        cost, _ = walk_once(place, walk, shape, files, place.cost)
        peak = cost.peak
        first = peak if first is None else first
        goal, met = f"under {limit:,}", peak < limit
        if files != SIZES[0] and walk is not MOVE:
            goal += f", within {PEAK_DRIFT_KIB} of {SIZES[0]:,}"
            met = met and abs(peak - first) <= PEAK_DRIFT_KIB
        beside = "" if files == SIZES[0] else f"{peak - first:+,}"
        table.row(walk.title, shape.title, files, f"{peak:,}", beside, goal, met)


def measure_walks(place, table, runs):
    table.head("Wall time of a deletion and of a search",
               f"Milliseconds, median of {runs} alternating runs; beside it the reference.")
    for files in SIZES:
        for ours, reference, limit in ((SILENT, FIND_FILES, FIND_RATIO), (DELETE, FIND_ALL, None),
                                       (REPORTED, SILENT, REPORT_RATIO), (SEARCH, FIND_SIZES, 1.0)):
            times = {ours: [], reference: []}
            for _ in range(runs):
                for walk, taken in times.items():
                    cost, _ = walk_once(place, walk, USUAL, files, place.cost)
                    taken.append(cost.wall)
            compare(table, ours.title, USUAL.title, files, reference.title,
                    times[ours], times[reference], limit)


def compare(table, what, tree, files, reference, ours, theirs, limit):
    mine, other = statistics.median(ours), statistics.median(theirs)
    ratio = mine / other
    goal, met = (f"at most {limit} times", ratio <= limit) if limit else ("", None)
    table.row(what, tree, files, f"{mine:.2f}", f"{reference} {other:.2f}: {ratio:.2f} times",
              goal, met)


def measure_idle(place, table, runs):
    table.head("A silent run with nothing to do",
               "All five temporary directories are ticked and empty. Calls of the whole process;"
               f" milliseconds, median of {runs} alternating runs.")
    with place.device() as device:
        device.tick(CLEAN_TYPED | CLEAN_FIXED, TYPED)
        command = place.silent_run(device)
        calls = place.calls(command)
        table.row("system calls", "", 0, calls, f"empty program {place.calls([place.empty])}",
                  f"at most {IDLE_CALLS}", calls <= IDLE_CALLS)
        ours, theirs = [], []
        for _ in range(runs):
            ours.append(place.cost(command))
            theirs.append(place.cost([place.empty]))
    compare(table, "wall time", "", 0, "empty program", [cost.wall for cost in ours],
            [cost.wall for cost in theirs], IDLE_RATIO)
    compare(table, "processor time", "", 0, "empty program", [cost.processor for cost in ours],
            [cost.processor for cost in theirs], IDLE_RATIO)


def count_syncs(place, table):
    table.head("A whole run on the sample device", "Calls of fsync of the silent run.")
    with tempfile.TemporaryDirectory(dir=place.directory) as parent:
        device = f"{parent}/sample"
        subprocess.run([place.program, "--new-device", device], check=True)
        syncs = place.calls([place.program, "--device", device, "silent"], "fsync")
    table.row("fsync", "", 0, syncs, "", f"at most {SAMPLE_SYNCS}", syncs <= SAMPLE_SYNCS)


def make_shortcuts(device, count, lives):
    """Start Menu shortcuts, spread over folders, to files in a few directories."""
    for directory in range(TARGET_DIRECTORIES):
        os.makedirs(f"{device.files}/Program Files/P{directory}", exist_ok=True)
    for index in range(count):
        folder = Path(device.files, "Windows/Start Menu", f"Folder {index % 20}")
        folder.mkdir(parents=True, exist_ok=True)
        target = f"Program Files/P{index % TARGET_DIRECTORIES}/{lives}{index}.exe"
        if lives:
            Path(device.files, target).touch()
        text = '"\\' + target.replace("/", "\\") + '"'
        (folder / f"{lives}{index}.lnk").write_text(f"{len(text)}#{text}")


def count_shortcuts(place, table):
    table.head("Shortcuts", f"{SHORTCUTS:,} shortcuts to files in {TARGET_DIRECTORIES} directories.")

    def count(live, dead, name="total"):
        with place.device() as device:
            make_shortcuts(device, live, "live")
            make_shortcuts(device, dead, "")
            device.tick(CLEAN_START_MENU)
            # A directory that has just changed is read again for each look-up.
            time.sleep(0.1)
            return place.calls(place.silent_run(device), name)

    start = count(20, 0)
    figure = (count(SHORTCUTS + 20, 0) - start) / SHORTCUTS
    table.row("calls, a live one", "", 0, f"{figure:.2f}", "", f"at most {LIVE_SHORTCUT_CALLS}",
              figure <= LIVE_SHORTCUT_CALLS)
    reads = count(0, SHORTCUTS, "getdents64") - count(SHORTCUTS, 0, "getdents64")
    table.row("readings of directories for dead ones", "", 0, reads, "getdents64",
              f"at most {2 * TARGET_DIRECTORIES}", reads <= 2 * TARGET_DIRECTORIES)


def registry_text(keys, dead_every=0):
    """Application keys, each with three values; some of them name a directory that is not there."""
    lines = [QUIET_REGISTRY]
    for index in range(keys):
        gone = dead_every and index % dead_every == 0
        directory = f"Gone{index}" if gone else "Fennelbright"
        lines.append(f"[HKEY_LOCAL_MACHINE\\Software\\Apps\\Application {index}]\r\n"
                     f'"InstallDir"="\\\\Program Files\\\\{directory}"\r\n'
                     f'"Number"=dword:{index:08x}\r\n'
                     f'"Data"=hex:00,01,02,03,04,05,06,07\r\n')
    return "\r\n".join(lines)


def measure_registry(place, table, runs):
    table.head("Registry", f"{REGISTRY_KEYS:,} keys of three values in UTF-16; milliseconds, median of"
               f" {runs} alternating runs.")
    with place.device() as device:
        device.write_registry(registry_text(REGISTRY_KEYS))
        for task, limit in (("read", REGISTRY_READ_RATIO), ("write", REGISTRY_WRITE_RATIO)):
            compare_reading(place, table, "usual keys", device, runs, limit, task)
        compare_memory(place, table, "usual keys", device, REGISTRY_MEMORY_RATIO)
    with place.device() as device:
        device.write_registry(registry_text(REGISTRY_KEYS, REGISTRY_KEYS // DEAD_KEYS))
        device.tick(CLEAN_REGISTRY)
        writes = place.calls(place.silent_run(device), "renameat")
        left = Path(device.path, "registry.reg").read_text("utf-16").count("InstallDir")
        table.row(f"writings for {DEAD_KEYS:,} dead keys", "", 0, writes,
                  f"{left:,} keys are left", "1",
                  writes == 1 and left == REGISTRY_KEYS - DEAD_KEYS)


@dataclass(frozen=True)
class WorstText:
    """Registry text of any length: lines between a beginning and an end."""

    title: str
    line: Callable  # of its number
    begin: str = ""
    end: str = ""

    def make(self, units):
        lines, length = [self.begin], 0
        while length < units:
            lines.append(self.line(len(lines) - 1))
            length += len(lines[-1])
        return "".join(lines) + self.end


def scattered_pair(index):
    """A path of two short names: all pairs in one random order, then in another one."""
    pair = index * (0x9E3779B1 if index < KEY_PAIRS else 0x85EBCA6B) % KEY_PAIRS
    return f"[{chr(0x4E00 + pair % 1024)}\\{chr(0x4E00 + pair // 1024)}]\n"


LETTERS = "\\a" * 498
WORST_TEXTS = (
    WorstText("500 levels that differ early", lambda i: f"[HKEY_USERS\\{i:x}{LETTERS}]\n"),
    WorstText("500 levels that differ late", lambda i: f"[HKEY_USERS{LETTERS}\\{i:x}]\n"),
    WorstText("500 levels, two in turn", lambda i: f"[HKEY_USERS\\{'xy'[i % 2]}{LETTERS}]\n"),
    WorstText("500 levels in either case",
              lambda i: f"[HKEY_USERS{LETTERS.upper() if i % 2 else LETTERS}]\n"),
    WorstText("keys of one parent", lambda i: f"[{i:x}]\n"),
    WorstText("many parents in turn", lambda i: f"[{i % 3000:x}\\{i // 3000:x}]\n"),
    WorstText("keys met in random order", scattered_pair),
    WorstText("a key deleted and made again", lambda i: "[-a]\n[a\\b]\n"),
    WorstText("500 levels deleted and made again", lambda i: f"[-a]\n[a{LETTERS}]\n"),
    WorstText("a root deleted", lambda i: "[-HKEY_USERS]\n"),
    WorstText("values of one key", lambda i: "@=-\n", "[a]\n"),
    WorstText("continuation lines", lambda i: "0,\\\n", '[a]\n"x"=hex:', "0"),
    WorstText("one huge value", lambda i: "0," * 512, '[a]\n"x"=hex:', "0"),
    WorstText("blank lines", lambda i: "\n" * 1024),
    WorstText("a path of backslashes", lambda i: "\\" * 1024, "[a", "]"),
)


def measure_worst_texts(place, table, runs):
    table.head("The worst texts of a registry",
               f"{WORST_UNITS >> 20} Mi characters; milliseconds in UTF-16, median of {runs} alternating"
               f" runs; memory at 8 bits; instructions for {2 * COUNTED_UNITS:,} characters beside"
               " half of them.")
    for worst in WORST_TEXTS:
        with place.device() as device:
            registry = Path(device.path, "registry.reg")
            text = worst.make(WORST_UNITS)
            device.write_registry(text)
            compare_reading(place, table, worst.title, device, runs, WORST_TIME_RATIO)
            registry.write_text(text, "utf-8")
            compare_memory(place, table, worst.title, device, WORST_MEMORY_RATIO)
            counts = []
            for units in (COUNTED_UNITS, 2 * COUNTED_UNITS):
                registry.write_text(worst.make(units), "utf-8")
                counts.append(place.instructions([place.registry_work, "parse", str(registry)]))
            ratio = counts[1] / counts[0]
            table.row(f"instructions, {worst.title}", "", 0, f"{ratio:.2f}", f"{counts[1]:,}",
                      f"at most {TWICE_THE_TEXT}", ratio <= TWICE_THE_TEXT)


def compare_reading(place, table, what, device, runs, limit, task="read"):
    convert = ["iconv", "-f", "utf-16", "-t", "utf-8", "-o", "/dev/null",
               f"{device.path}/registry.reg"]
    ours, theirs = [], []
    for _ in range(runs):
        ours.append(place.cost([place.registry_work, task, device.path]).wall)
        theirs.append(place.cost(convert).wall)
    compare(table, f"{task}, {what}", "", 0, "iconv", ours, theirs, limit)


def compare_memory(place, table, what, device, limit):
    peak = place.cost([place.registry_work, "read", device.path]).peak
    size = os.path.getsize(f"{device.path}/registry.reg") / 1024
    table.row(f"memory, {what}", "", 0, f"{peak:,} KiB",
              f"text {size:,.0f} KiB: {peak / size:.1f} times", f"at most {limit} times",
              peak <= limit * size)


def measure_windows(place, table, runs):
    table.head("Windows", f"Milliseconds, median of {runs} alternating runs, on a virtual"
               " display.")
    os.environ["QT_QPA_PLATFORM"] = "offscreen"
    with place.device() as device:
        ours, theirs = [], []
        for _ in range(runs):
            ours.append(place.cost([place.first_page, device.path]).wall)
            theirs.append(place.cost([place.empty_window]).wall)
        compare(table, "start to the first page", "", 0, "a program with one empty window",
                ours, theirs, FIRST_PAGE_RATIO)
        changed = subprocess.run([place.first_page, device.path, str(TAB_CHANGES)], check=True,
                                 capture_output=True, text=True)
        figure = int(changed.stdout) / 1000
        table.row("a tab change", "", 0, f"{figure:.2f}", f"mean of {TAB_CHANGES}",
                  f"less than {TAB_CHANGE_LIMIT:.1f}", figure < TAB_CHANGE_LIMIT)


def allow_deep_trees():
    _, most = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (most, most))


def read_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build", type=Path, default=REPOSITORY / "build/release",
                        help="build directory, with FENNELBRIGHT_BENCHMARKS=ON")
    parser.add_argument("--tmpfs", default="/dev/shm", help="where the trees are made")
    parser.add_argument("--runs", type=int, default=7, help="runs for each wall time of a walk")
    parser.add_argument("--idle-runs", type=int, default=500,
                        help="runs for the wall time of a run with nothing to do")
    return parser.parse_args()


def main():
    arguments = read_arguments()
    for tool in ("strace", "valgrind", "find", "iconv"):
        if shutil.which(tool) is None:
            refuse(f"{tool} is missing")
    place = Workplace(arguments.build, arguments.tmpfs)
    allow_deep_trees()
    table = Table()
    print(f"{os.cpu_count()} cores, {platform.system()} {platform.release()}")
    count_calls(place, table)
    count_search(place, table)
    measure_rehearsals(place, table)
    measure_memory(place, table)
    measure_idle(place, table, arguments.idle_runs)
    count_syncs(place, table)
    count_shortcuts(place, table)
    measure_registry(place, table, 3 * arguments.runs)
    measure_worst_texts(place, table, arguments.runs)
    measure_windows(place, table, 3 * arguments.runs)
    measure_walks(place, table, arguments.runs)
    print(f"\nGoals missed: {table.missed}.")
    return 1 if table.missed else 0


if __name__ == "__main__":
    sys.exit(main())
