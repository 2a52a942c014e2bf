"""Taps the same on the windows of both platforms, and compares what the boxes say, where the windows are in
the end, the settings after each run and what is left of the sample device.

usage: python3 -m tests.second_platform.compare_windows LOGGED_PROGRAM FENNELBRIGHT_EXE
"""

import concurrent.futures
import os
import shutil
import subprocess
import sys
import tempfile
import time

from second_platform.wine_prefix import SCROLL_BAR, Display, SecondPlatform
from tests.second_platform.compare_runs import differences, first_state, second_states

PICTURES = os.environ.get("PICTURES")  # where pictures of the displays go, if anywhere


def tap(x, y):
    return "mousemove", x, y, "click", 1


def thumb(begin, end):
    """Drags the thumb from one end of the scroll bar to the other."""
    return "mousemove", 229, begin, "mousedown", 1, "mousemove", 229, 150, "mousemove", 229, end, "mouseup", 1


def box(title):
    return [("search", "--sync", "--onlyvisible", "--name", title), ("sleep", 0.3), ("key", "Return")]


def page(number):
    """To a page, from 2 on: a tap on the second tab, and the key for the next one."""
    return [tap(125, 283)] + [("key", "NEXT")] * (number - 2)


# The steps of each run, as words of xdotool, in pixels of the handheld's screen. Each ends with a tap on OK.
RUNS = [
    [tap(12, 117), *page(2), tap(12, 41)],
    [*page(3), tap(12, 41)],
    [*page(4), tap(12, 79)],
    [*page(5), tap(12, 41)],
    [*page(6), tap(12, 123)],
    # The first page to its end, in single steps, on to another and back; then again, by the thumb.
    [tap(229, 262)] * 4 + [thumb(62, 262), tap(12, 147), *page(2), tap(40, 283), tap(12, 135)],
    [thumb(46, 262), tap(229, 37), tap(12, 147), thumb(248, 30)],
    # Apply, Defer Restart
    [tap(100, 304), ("key", "Up", "Return"), *box("Cleaning Finished"), *box("Restart Required")],
]


def carry_out(display, steps, next_tab, picture):
    """All steps; each is over before the next."""
    display.tool("search", "--sync", "--onlyvisible", "--name", "Marlowtide|device ")
    time.sleep(1.5)
    for number, words in enumerate([*steps, tap(220, 13)]):
        if PICTURES:
            subprocess.run(["import", "-window", "root", "%s/%s-%02d.png" % (PICTURES, picture, number)],
                           env=display.environment, check=False)
        display.tool(*(next_tab if word == "NEXT" else word for word in words))
        time.sleep(0.3)


def run_all(display, words, environment, files, next_tab):
    """What each run has written, and the settings after it."""
    lines = []
    for number, steps in enumerate(RUNS):
        with subprocess.Popen(words, env={**display.environment, **environment}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL) as process:
            try:
                carry_out(display, steps, next_tab, "%s-%d" % (next_tab, number))
                output = process.communicate(timeout=60)[0].decode()
            finally:
                process.kill()
        if process.returncode != 0:
            sys.exit("%s: exit code %d" % (" ".join(words), process.returncode))
        with open(os.path.join(files, "Program Files/Fennelbright/settings.dat"), "rb") as file:
            lines += [line for line in output.splitlines() if not line.startswith("device")] + [file.read().hex()]
    return lines


def run_first(program, device):
    with Display() as display:
        return first_state(device, run_all(display, [program, "--device", device, "--scale", "1"], {},
                                           os.path.join(device, "files"), "ctrl+Tab"))


def run_second(executable, directory, device):
    with Display() as display, SecondPlatform(executable, directory, display.name) as platform:
        platform.copy([device], SCROLL_BAR)
        environment = {**platform.environment, "FENNELBRIGHT_PLACES": "1"}
        return second_states(platform, [run_all(display, ["wine", platform.executable], environment,
                                                os.path.join(platform.drive, "0"), "Right")])[0]


def compare(program, executable, directory):
    device = os.path.join(directory, "device")
    subprocess.run([program, "--new-device", device], check=True, stdout=subprocess.DEVNULL)
    before = first_state(device)
    copy = shutil.copytree(device, os.path.join(directory, "copy"))
    with concurrent.futures.ThreadPoolExecutor() as both:
        results = both.submit(run_first, program, device), both.submit(run_second, executable, directory, copy)
    first, second = (result.result() for result in results)
    print("%d runs with windows, %d lines; changed entries, keys and values: %d" %
          (len(RUNS), len(first["box"]), len(differences({**before, "box": {}}, {**first, "box": {}}))))
    return differences(first, second)


def main():
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as directory:
        faults = compare(*map(os.path.abspath, sys.argv[1:3]), directory)
    print("\n".join(faults + ["%d differences in the windows" % len(faults)]))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
