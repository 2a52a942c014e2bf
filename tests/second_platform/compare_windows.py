#!/usr/bin/env python3
"""Taps the same on the windows of both platforms, and compares what the boxes say, where the windows are in
the end, the settings after each run and what is left of the sample device.

usage: compare_windows.py LOGGED_PROGRAM FENNELBRIGHT_EXE
"""

import concurrent.futures
import os
import shutil
import subprocess
import sys
import tempfile
import time

from compare_runs import differences, tree
from second_platform import REGISTRY_HEADER, SCROLL_BAR, Display, SecondPlatform

PICTURES = os.environ.get("PICTURES")  # where pictures of the displays go, if anywhere
SETTINGS = "Program Files/Fennelbright/settings.dat"


def page(number):
    """To a page, from 2 on: a tap on the second tab, and the key for the next one."""
    return [("tap", 125, 283)] + [("next tab",)] * (number - 2)


# The steps of each run: where and what, in pixels of the handheld's screen. Each ends with a tap on OK.
RUNS = [
    [("tap", 12, 117), *page(2), ("tap", 12, 41)],
    [*page(3), ("tap", 12, 41)],
    [*page(4), ("tap", 12, 79)],
    [*page(5), ("tap", 12, 41)],
    [*page(6), ("tap", 12, 123)],
    # The first page to its end, in single steps, on to another and back; then again, by the thumb.
    [("tap", 229, 262)] * 4 + [("drag", 229, 262), ("tap", 12, 147), *page(2), ("tap", 40, 283), ("tap", 12, 135)],
    [("drag", 229, 262), ("tap", 229, 37), ("tap", 12, 147), ("drag", 229, 30)],
    [("tap", 100, 304), ("key", "Up", "Return"),  # Apply, Defer Restart
     ("box", "Cleaning Finished"), ("box", "Restart Required")],
]


def carry_out(display, steps, picture):
    """All steps; each is over before the next."""
    next_tab = "Right" if picture.startswith("second") else "ctrl+Tab"
    display.tool("search", "--sync", "--onlyvisible", "--name", "Marlowtide|device$")
    time.sleep(1.5)
    for number, (kind, *places) in enumerate([*steps, ("tap", 220, 13)]):
        if PICTURES:
            subprocess.run(["import", "-window", "root", "%s/%s-%02d.png" % (PICTURES, picture, number)],
                           env={**os.environ, "DISPLAY": display.name}, check=False)
        if kind == "tap":
            display.tool("mousemove", *places, "click", 1)
        elif kind == "drag":  # the thumb at the beginning or the end, to the other
            x, y = places
            display.tool("mousemove", x, 300 - y + 8, "mousedown", 1, "mousemove", x, 150, "mousemove", x, y, "mouseup", 1)
        elif kind == "next tab":
            display.tool("key", next_tab)
        elif kind == "key":
            display.tool("key", *places)
        else:
            display.tool("search", "--sync", "--onlyvisible", "--name", places[0])
            time.sleep(0.5)
            display.tool("key", "Return")
        time.sleep(0.3)


def settings_in(files):
    with open(os.path.join(files, SETTINGS), "rb") as file:
        return file.read().hex()


def run_all(display, words, environment, files, name):
    """What each run has written, and the settings after it."""
    lines = []
    for number, steps in enumerate(RUNS):
        process = subprocess.Popen(words, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                   stderr=subprocess.DEVNULL)
        try:
            carry_out(display, steps, "%s-%d" % (name, number))
            output = process.communicate(timeout=60)[0].decode()
        finally:
            process.kill()
        lines += [line for line in output.splitlines() if not line.startswith("device")] + [settings_in(files)]
    return dict(enumerate(lines)), tree(files)


def run_first(program, device):
    with Display() as display:
        environment = {key: value for key, value in os.environ.items() if key not in ("WAYLAND_DISPLAY", "XAUTHORITY")}
        return run_all(display, [program, "--device", device, "--scale", "1"],
                       {**environment, "DISPLAY": display.name}, os.path.join(device, "files"), "first")


def run_second(executable, directory, device):
    with Display() as display, SecondPlatform(executable, directory, display.name) as platform:
        files = os.path.join(platform.drive, "0")
        shutil.copytree(os.path.join(device, "files"), files)
        with open(os.path.join(device, "registry.reg"), encoding="utf-8") as file:
            keys = file.read().partition("[")
        platform.register(SCROLL_BAR + (keys[1] + keys[2]).replace("[HKEY_", "[HKEY_CURRENT_USER\\Devices\\0\\HKEY_"))
        return run_all(display, ["wine", platform.executable], {**platform.environment, "FENNELBRIGHT_PLACES": "1"},
                       files, "second")


def compare(program, executable, directory):
    device = os.path.join(directory, "device")
    subprocess.run([program, "--new-device", device], check=True, stdout=subprocess.DEVNULL)
    before = tree(os.path.join(device, "files"))
    copy = shutil.copytree(device, os.path.join(directory, "copy"))
    with concurrent.futures.ThreadPoolExecutor() as both:
        results = both.submit(run_first, program, device), both.submit(run_second, executable, directory, copy)
    (first, first_tree), (second, second_tree) = (result.result() for result in results)
    print("%d runs with windows, %d lines, %d of %d entries changed" %
          (len(RUNS), len(first), len(differences("", before, first_tree)), len(before)))
    return differences("line", first, second) + differences("entry", first_tree, second_tree)


def main():
    directory = tempfile.mkdtemp()
    try:
        faults = compare(*map(os.path.abspath, sys.argv[1:3]), directory)
    finally:
        shutil.rmtree(directory, ignore_errors=True)
    print("\n".join(faults + ["%d differences in the windows" % len(faults)]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
