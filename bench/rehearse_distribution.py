#!/usr/bin/env python3
"""Rehearses and does a silent run on a tree of files that nobody made for it, and compares the two.

The tree is a copy of /usr/share, or of what --source names, on a tmpfs; the registry has 20,000 keys. Exits with 1
when the reports differ or the rehearsal has left a trace, with 2 when there are fewer than 50,000 files.
"""

import argparse
import os
import struct
import subprocess
import sys
import tempfile
import time
from pathlib import Path

REPOSITORY = Path(__file__).resolve().parent.parent
FEWEST_FILES = 50_000
KEYS = 20_000
LIVE_EVERY = 4  # of the keys, one names a directory that is there
CLEAN_BOTH, CLEAR_CACHE, MOVE_FAVORITES, MOVE_FONTS, CLEAN_KEYS = 0x3, 0x100, 0x10000, 0x20000, 0x8000


def registry(folders):
    cache, favorites, fonts = folders[2:5]
    lines = ["Windows Registry Editor Version 5.00", "",
             "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders]",
             f'"Cache"="\\\\{cache}"', "", "[HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders]",
             f'"Favorites"="\\\\{favorites}"', f'"Fonts"="\\\\{fonts}"']
    for index in range(KEYS):
        directory = cache if index % LIVE_EVERY == 0 else f"Gone{index}"
        lines += ["", f"[HKEY_LOCAL_MACHINE\\Software\\Apps\\Application {index}]",
                  f'"InstallDir"="\\\\{directory}"']
    return b"\xff\xfe" + "\r\n".join(lines + [""]).encode("utf-16-le")


def settings(folders):
    data = struct.pack("<I", CLEAN_BOTH | CLEAR_CACHE | MOVE_FAVORITES | MOVE_FONTS | CLEAN_KEYS)
    for text in (f"\\{folders[0]}\\", f"\\{folders[1]}\\", "\\New\\", "\\NEW\\"):
        data += struct.pack("<I", len(text)) + text.encode("utf-16-le")
    return data


def make_device(device, source):
    """Returns the five largest folders of the tree, by their number of files."""
    files = f"{device}/files"
    subprocess.run(["cp", "-a", source, files], check=True)
    counts = {entry.name: sum(len(names) for _, _, names in os.walk(entry.path))
              for entry in os.scandir(files) if entry.is_dir(follow_symlinks=False)}
    folders = sorted(counts, key=counts.get, reverse=True)[:5]
    program = Path(files, "Program Files/Fennelbright")
    program.mkdir(parents=True)
    Path(files, "New").mkdir()
    (program / "settings.dat").write_bytes(settings(folders))
    Path(device, "registry.reg").write_bytes(registry(folders))
    return folders, sum(counts.values())


def traces(device):
    return subprocess.run(["find", device, "-printf", "%P %i %s %m %n %U %G %A@ %T@ %C@\\n"], check=True,
                          capture_output=True).stdout.splitlines()


def run(program, device, *options):
    start = time.monotonic()
    done = subprocess.run([program, "--device", device, "--no-display", "--report", *options, "silent"],
                          check=True, capture_output=True)
    return done.stdout.splitlines(), done.stderr, time.monotonic() - start


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", default=str(REPOSITORY / "build/release/fennelbright"))
    parser.add_argument("--source", default="/usr/share")
    parser.add_argument("--tmpfs", default="/dev/shm")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory(dir=arguments.tmpfs) as device:
        folders, files = make_device(device, arguments.source)
        if files < FEWEST_FILES:
            print(f"{arguments.source} has only {files:,} files", file=sys.stderr)
            return 2
        traces(device)  # now the reading of directories leaves no trace
        before = traces(device)
        foreseen, warned, rehearsal = run(arguments.program, device, "--rehearse")
        untouched = traces(device) == before
        done, warnings, taken = run(arguments.program, device)
    agree = sorted(foreseen[1:]) == sorted(done) and warned == warnings
    print(f"{files:,} files, {KEYS:,} keys, folders {', '.join(folders)}; {len(done):,} lines")
    print(done[-1].decode())
    print(f"rehearsal {rehearsal:.2f} s, run {taken:.2f} s; device {'untouched' if untouched else 'CHANGED'};"
          f" reports {'agree' if agree else 'DIFFER'}")
    return 0 if agree and untouched else 1


if __name__ == "__main__":
    sys.exit(main())
