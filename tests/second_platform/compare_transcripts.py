"""Compares the transcripts of both platforms. Where they differ, a row of a table in docs/platform.md
says why; a row for which nothing differs is a fault as well, but where it names a version of Wine.

usage: python3 -m tests.second_platform.compare_transcripts TRANSCRIPT TRANSCRIPT_EXE
"""

import fnmatch
import os
import re
import shutil
import subprocess
import sys
import tempfile

from second_platform.wine_prefix import SCROLL_BAR, Display, SecondPlatform

HERE = os.path.dirname(__file__)
FILES = {"file.txt": "abc", "sub/in.txt": "in", "empty/": "", "ro.txt": "abc", "\u00e9.txt": "abc", "\u03c3": "abc",
         "\U00010428": "abc", "a.lnk": '9#"\\x y" /a', "b.lnk": "9#\\x?i,0\r\n", "noext": "", "T.tmp": "1",
         "x.y.z": "12", "hid/in.txt": "", **dict.fromkeys(["../W/" + letter for letter in "abcdefgh"], "")}
ROW = re.compile(r"\| `(.*)` \| handheld \| (.+) \|")


def make_device(device):
    shutil.copy(os.path.join(HERE, "transcript.reg"), os.path.join(device, "registry.reg"))
    directory = os.path.join(device, "files/T")
    for name, content in FILES.items():
        path = os.path.join(directory, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if not name.endswith("/"):
            with open(path, "w", encoding="utf-8", newline="") as file:
                file.write(content)
    os.chmod(os.path.join(directory, "ro.txt"), 0o444)
    try:
        os.setxattr(os.path.join(directory, "hid"), "user.DOSATTRIB", b"0x2")
    except OSError:
        pass  # it is not hidden then, on both


def transcripts(program, executable, directory):
    make_device(directory)
    with Display() as display, SecondPlatform(executable, directory, display.name) as platform:
        platform.copy([directory], SCROLL_BAR)
        second = platform.run(platform.executable).splitlines()[1:]
    with Display() as display:
        first = subprocess.run([program, "--device", directory], env=display.environment, timeout=120, check=True,
                               stdout=subprocess.PIPE).stdout.decode().splitlines()
    return first, second


def explained_differences():
    with open(os.path.join(HERE, "../../docs/platform.md"), encoding="utf-8") as file:
        return {match[1]: match[2] for match in map(ROW.fullmatch, file.read().splitlines()) if match}


def compare(first, second):
    """The faults, as lines."""
    rows = explained_differences()
    used = set()
    faults = []
    if len(first) != len(second):
        faults.append("%d lines, on the second platform %d" % (len(first), len(second)))
    for left, right in zip(first, second):
        if left != right:
            call = left.partition(" = ")[0]
            matching = [row for row in rows if fnmatch.fnmatchcase(call, row)]
            used.update(matching[:1])
            if not matching:
                faults.append("%s\n    on the second platform: %s" % (left, right.partition(" = ")[2]))
    return faults + ["nothing differs any more: " + row for row, reason in rows.items()
                     if row not in used and not re.search("Wine (8|10)", reason)]


def main():
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as directory:
        first, second = transcripts(*map(os.path.abspath, sys.argv[1:3]), directory)
    faults = compare(first, second)
    print("\n".join(faults))
    differing = sum(left != right for left, right in zip(first, second))
    print("%d lines compared, %d differ, %d faults" % (len(first), differing, len(faults)))
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
