#!/usr/bin/env python3
"""Runs the program silently on random devices on both platforms, and compares what is left.

usage: compare_runs.py PROGRAM FENNELBRIGHT_EXE SEED COUNT
"""

import collections
import os
import shutil
import stat
import subprocess
import sys
import tempfile

from random_devices import RandomDevice
from registry_files import parse_registry
from second_platform import REGISTRY_HEADER, SecondPlatform


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


def differences(what, first, second):
    return ["%s %s: %r, on the second platform %r" % (what, key, first.get(key), second.get(key))
            for key in sorted(first.keys() | second.keys(), key=repr) if first.get(key) != second.get(key)]


def without_roots(values):
    """The roots are always there, on the first platform without a line."""
    return {(key, name): data for (key, name), data in values.items() if "\\" in key.rstrip("\\")}


def state(device):
    return {"box": {}, "entry": tree(os.path.join(device, "files")),
            "value": without_roots(parse_registry(os.path.join(device, "registry.reg")))}


def run_first(program, device):
    """The boxes of the run."""
    process = subprocess.run([program, "--device", device, "--no-display", "silent"], check=False,
                             stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=60)
    return [line for line in process.stderr.decode().splitlines() if line.startswith("[")]


def make_devices(seeds, directory, platform):
    registry = ""
    for number, seed in enumerate(seeds):
        device = RandomDevice(seed)
        first = os.path.join(directory, "devices", str(number))
        os.makedirs(os.path.join(first, "files"))
        device.make(os.path.join(first, "files"))
        with open(os.path.join(first, "registry.reg"), "w", encoding="utf-16", newline="\r\n") as file:
            file.write(REGISTRY_HEADER + device.registry)
        shutil.copytree(os.path.join(first, "files"), os.path.join(platform.drive, str(number)))
        registry += device.registry.replace("[HKEY_", "[HKEY_CURRENT_USER\\Devices\\%d\\HKEY_" % number)
    platform.register(registry)


def run_second(platform, count):
    """The boxes of each run and all registries."""
    output = platform.run(platform.executable, "silent", FENNELBRIGHT_DEVICES=str(count))
    boxes = [part.splitlines()[1:] for part in output.split("device ")[1:]]
    platform.run("regedit", "/E", "X:\\out.reg", "HKEY_CURRENT_USER\\Devices")
    keys = parse_registry(os.path.join(platform.drive, "out.reg"))
    return boxes, keys


def compare(program, executable, seeds, directory):
    """The number of devices with differences, and how much was compared."""
    with SecondPlatform(executable, directory) as platform:
        make_devices(seeds, directory, platform)
        boxes, keys = run_second(platform, len(seeds))
    faults = 0
    compared = collections.Counter()
    for number, seed in enumerate(seeds):
        device = os.path.join(directory, "devices", str(number))
        before = state(device)
        shown = run_first(program, device)
        after = state(device)
        prefix = "HKEY_CURRENT_USER\\Devices\\%d\\" % number
        second = {"box": dict(enumerate(boxes[number])), "entry": tree(os.path.join(platform.drive, str(number))),
                  "value": without_roots({(key[len(prefix):], name): data for (key, name), data in keys.items()
                                          if key.startswith(prefix)})}
        after["box"] = dict(enumerate(shown))
        found = [line for what in after for line in differences(what, after[what], second[what])]
        for what, left in after.items():
            compared[what] += len(left)
            compared["changed " + what] += len(set(left.items()) ^ set(before[what].items()))
        faults += bool(found)
        for line in found:
            print("device of seed %d: %s" % (seed, line))
    return faults, compared


def main():
    program, executable = (os.path.abspath(path) for path in sys.argv[1:3])
    first, count = int(sys.argv[3]), int(sys.argv[4])
    directory = tempfile.mkdtemp()
    try:
        faults, compared = compare(program, executable, range(first, first + count), directory)
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    print("compared: " + ", ".join("%d %s" % (count, what) for what, count in sorted(compared.items())))
    print("%d devices from seed %d, %d with differences" % (count, first, faults))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
