"""Runs the program silently on random devices on both platforms, and compares what is left.

usage: python3 -m tests.second_platform.compare_runs PROGRAM FENNELBRIGHT_EXE MAKE_RANDOM_DEVICES SEED COUNT
"""

import collections
import os
import stat
import subprocess
import sys
import tempfile

from second_platform.registry_files import parse_registry
from second_platform.wine_prefix import SecondPlatform


def tree(root):
    """Each entry by its path: of a file its content and whether it can be written, None for a directory."""
    entries = {}
    for directory, directories, files in os.walk(root):
        for name in directories + files:
            path = os.path.join(directory, name)
            entry = None
            if name in files:
                with open(path, "rb") as file:
                    entry = (file.read(), bool(os.stat(path).st_mode & stat.S_IWUSR))
            entries[os.path.relpath(path, root)] = entry
    return entries


def differences(first, second):
    """Lines about what is not the same in two states."""
    return ["%s %s: %r, on the second platform %r" % (what, key, first[what].get(key), second[what].get(key))
            for what in first for key in sorted(first[what].keys() | second[what].keys(), key=repr)
            if first[what].get(key) != second[what].get(key)]


def state(files, values, boxes, prefix=""):
    """All that is compared. The roots of the registry are always there, on the first platform without a line."""
    return {"box": dict(enumerate(boxes)), "entry": tree(files),
            "value": {(key[len(prefix):], name): data for (key, name), data in values.items()
                      if key.startswith(prefix) and "\\" in key[len(prefix):].rstrip("\\")}}


def first_state(device, boxes=()):
    return state(os.path.join(device, "files"), parse_registry(os.path.join(device, "registry.reg")), boxes)


def run_first(program, device):
    """What is there before, and what is left."""
    before = first_state(device)
    process = subprocess.run([program, "--device", device, "--no-display", "silent"], check=True,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=60)
    return before, first_state(device, [line for line in process.stderr.decode().splitlines() if line.startswith("[")])


def second_states(platform, boxes):
    """What is left of the devices that these boxes came from."""
    platform.run("regedit", "/E", "X:\\out.reg", "HKEY_CURRENT_USER\\Devices")
    values = parse_registry(os.path.join(platform.drive, "out.reg"))
    return [state(os.path.join(platform.drive, str(number)), values, shown,
                  "HKEY_CURRENT_USER\\Devices\\%d\\" % number) for number, shown in enumerate(boxes)]


def run_second(executable, directory, devices):
    with SecondPlatform(executable, directory) as platform:
        platform.copy(devices)
        output = platform.run(platform.executable, "silent", FENNELBRIGHT_DEVICES=str(len(devices)))
        return second_states(platform, [part.splitlines()[1:] for part in output.split("device ")[1:]])


def main():
    program, executable, maker = map(os.path.abspath, sys.argv[1:4])
    seed, count = map(int, sys.argv[4:6])
    faults = 0
    compared = collections.Counter()
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as directory:
        subprocess.run([maker, directory, str(seed), str(count)], check=True)
        devices = [os.path.join(directory, str(number)) for number in range(count)]
        second = run_second(executable, directory, devices)
        for number, device in enumerate(devices):
            before, first = run_first(program, device)
            found = differences(first, second[number])
            for what, left in first.items():
                compared[what] += len(left)
                compared["changed " + what] += len(set(left.items()) ^ set(before[what].items()))
            faults += bool(found)
            print("".join("device of seed %d: %s\n" % (seed + number, line) for line in found), end="")
    print("compared: " + ", ".join("%d %s" % (count, what) for what, count in sorted(compared.items())))
    print("%d devices from seed %d, %d with differences" % (count, seed, faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
