"""Random devices that two platforms can hold: files, a registry and settings that lead all over them.

What the two settle differently is left out; docs/platform.md names it.
"""

import os
import random
import struct

DIRECTORIES = ["Temp", "Windows/Temp", "My Documents/Temp", "My Documents", "Cache", "History", "Favorites",
               "Fonts", "New", "Cache/New", "Windows/StartUp", "Windows/Start Menu/Programs",
               "Storage Card/Old", "Storage Card/New", "Program Files/Reader"]
NAMES = ["a", "B", "c.tmp", "d e.log", "\u00e9", "Reader.exe", ".dots.", "x y.z w", "CON", "nul.txt", "%s", "l" * 200,
         "\U0001f33f", "[1];=+,.bak", "Temp", "a page.txt", "\u0130i", "\u00df", "a.", "b ", "longna~1.tmp"]
SUBDIRECTORIES = ["sub", "DEEP", "Cache", "aux", "n" * 120]
ODD_PATHS = ["", "Temp", "\\None\\x", "\\Temp\\..", "\\Temp\\.", "\\", "\\\\", "\\Te*", "\\Temp\\*.*", "\\a\\b\\c\\", "/Temp/",
             "\\Temp/", "X:\\Temp\\", "\\\\Temp\\\\", "\\" + "p" * 1100 + "\\", "\\Temp\\a", "\\Temp\\a\\", " \\Temp\\", "\\Temp:x\\",
             "\\Cache\\\\New\\\\", "\\windows", "\\.", "\\..\\0\\", "\\?", "\\Temp\x00\\x\\"]
TEXT_OPTIONS = [0x1, 0x2, 0x1000000, 0x400, 0x4000, 0x10000, 0x20000, 0x40000]
POSITION_OPTIONS = [0x800, 0x1000, 0x2000, 0x100000]
SYSTEM_FOLDERS = "HKEY_LOCAL_MACHINE\\Explorer\\Shell Folders"
USER_FOLDERS = "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders"
LIMITS = "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Internet Settings\\5.0\\Cache\\"
SHORTCUTS = ['{}#"{}"', '{}#{}', '1#"{1}"', '{}#"{}" silent"', '{}#{} -home', ';a note\r\n\r\n{}#{}', '{}#"{}\r\n',
             '{}#{}\r\n', '{}#"{}"?icon.dll,-1', '{}#{}\x00', '{} {}', '#{1}', '{}#  {}  ', '{}#"{}.exe" \\Temp\\x',
             '{}#:MSPIMG{}', '{}#{}*', '{}#"{}\\"', '{}#\\None "{}"', '{}#{}.']


def literal(text):
    """The registry file's form of a text."""
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


def binary(kind, data):
    return ("hex(%x):" % kind if kind != 3 else "hex:") + ",".join("%02x" % byte for byte in data)


class RandomDevice:
    """The same for the same seed. `make` makes it in a directory; `registry` and `settings` are its
    registry as a text, and its settings as bytes, None for none."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.registry = self.make_registry()
        self.settings = self.make_settings()

    def chance(self, percent):
        return self.random.randrange(100) < percent

    def path(self):
        """Mostly a directory in one of the spellings that lead to it, sometimes none."""
        if self.chance(15):
            return self.random.choice(ODD_PATHS)
        path = "\\" + self.random.choice(DIRECTORIES).replace("/", "\\")
        if self.chance(30):
            path += "\\" + self.random.choice(SUBDIRECTORIES + NAMES)
        if self.chance(15):
            path = self.random.choice([path.lower, path.upper, lambda: path.replace("\\", "\\\\")])()
        return path + "\\" if self.chance(40) else path

    def value(self):
        """A value's data, mostly a path."""
        path = self.path().replace("\x00", "")
        data = path.encode("utf-16-le")
        return self.random.choice([literal(path)] * 10 + [
            "dword:00000007", binary(2, data + b"\0\0"), binary(1, data + b"\0\0x\0"),
            binary(7, data + b"\0\0\0\0"), binary(3, data), binary(1, data), binary(3, b"\\\0T"), binary(3, b""),
            binary(0, data + b"\0\0")])

    def number(self):
        return self.random.choice(["dword:%08x" % self.random.choice([0, 1, 2, 6, 0xFFFFFFFF])] * 6 +
                                  [binary(3, b"\1"), binary(3, b"\1\0\0\0\0"), literal("1"), binary(4, b"\6\0\0\0")])

    def make_registry(self):
        keys = {"HKEY_CURRENT_USER\\Software\\AvantGo": [("DatabaseLocation", self.value)],
                USER_FOLDERS: [("Cache", self.value), ("History", self.value)],
                SYSTEM_FOLDERS: [(name, self.value) for name in ("Favorites", "Fonts", "My Documents")],
                LIMITS + "Content": [("CacheLimit", self.number)],
                LIMITS + "Cookies": [("cachelimit", self.number)],
                LIMITS + "History": [("CacheLimit", self.number)],
                "HKEY_LOCAL_MACHINE\\System\\GDI\\GLYPHCACHE": [("limit", self.number)],
                "HKEY_LOCAL_MACHINE\\System\\GWE": [("Animate", self.number)],
                "HKEY_LOCAL_MACHINE\\System\\GWE\\Menu": [("AniType", self.number)],
                "HKEY_LOCAL_MACHINE\\Software\\Apps": [("", self.value)]}
        for name in sorted(self.random.sample(["Agenda", "B.1", "Calc [2]", "D", "E e", "Reader"], self.random.randrange(7))):
            app = "HKEY_LOCAL_MACHINE\\Software\\Apps\\" + name
            keys[app] = [("InstallDir", self.value), ("Other", self.number)]
            if self.chance(30):
                keys[app + "\\Sub\\Sub"] = [("x", self.value)]
        text = ""
        for key, values in keys.items():
            if self.chance(94):
                root, _, path = key.partition("\\")
                # Of the keys of Apps some are deleted, and a file then shows the spelling of the next.
                lower = self.chance(5) and "Apps" not in key
                text += "[" + root + "\\" + (path.lower() if lower else path) + "]\n"
                text += "".join((literal(name) if name else "@") + "=" + data() + "\n"
                                for name, data in values if self.chance(90))
        return text

    def make_settings(self):
        if self.chance(2):
            return None
        mask = self.random.getrandbits(32) if self.chance(5) else self.random.getrandbits(25)
        if self.chance(50):
            mask |= 0x74000
        content = struct.pack("<I", mask)
        for option in TEXT_OPTIONS:
            if mask & option:
                text = self.path().encode("utf-16-le")
                content += struct.pack("<I", len(text) // 2) + text
        for option in POSITION_OPTIONS:
            if mask & option:
                content += struct.pack("<i", self.random.randrange(-1, 4))
        if self.chance(5):
            content = content[:self.random.randrange(len(content))]
        return content + b"more" if self.chance(5) else content

    def make(self, root):
        for directory in DIRECTORIES:
            if self.chance(70):
                self.fill(os.path.join(root, directory), 0)
        for directory in ("Windows/StartUp", "Windows/Start Menu", "Windows/Start Menu/Programs"):
            if self.chance(80):
                os.makedirs(os.path.join(root, directory), exist_ok=True)
                for index in range(self.random.randrange(8)):
                    self.write(os.path.join(root, directory, "link %d.lnk" % index), self.shortcut())
        own = os.path.join(root, "Windows/StartUp/Fennelbright.lnk")
        if self.chance(20) and os.path.isdir(os.path.dirname(own)):
            self.random.choice([lambda: self.write(own, b"1#x"), lambda: os.mkdir(own)])()
        if self.settings is not None:
            os.makedirs(os.path.join(root, "Program Files/Fennelbright"))
            self.write(os.path.join(root, "Program Files/Fennelbright/settings.dat"), self.settings, 0)

    def fill(self, directory, depth):
        os.makedirs(directory, exist_ok=True)
        for name in self.random.sample(NAMES, self.random.randrange(7)):
            if self.chance(25) and depth < 3:
                self.fill(os.path.join(directory, self.random.choice(SUBDIRECTORIES)), depth + 1)
            elif not any(name.lower() == other.lower() for other in os.listdir(directory)):
                self.write(os.path.join(directory, name), b"x" * self.random.choice([0, 1, 5000]))
        if depth == 0 and self.chance(5):
            self.fill(os.path.join(directory, *["deep" * 30] * 9), 3)
        if self.chance(4):
            os.chmod(directory, 0o555)

    def write(self, path, content, read_only=15):
        with open(path, "wb") as file:
            file.write(content)
        if self.chance(read_only):
            os.chmod(path, 0o444)

    def shortcut(self):
        path = self.random.choice([self.path(), "\\Program Files\\Reader\\Reader.exe", "\\Temp\\a", "\\Temp\\d e.log",
                                   "\\Windows\\gone.exe"])
        text = self.random.choice(SHORTCUTS).format(len(path), path)
        if self.chance(2):
            text += " " * 5000
        return self.random.choice([text.encode("utf-8"), text.encode("utf-8"), text.encode("cp1252", "replace"),
                                   b"\xff\xfe" + text.encode("utf-16-le"), b"\xef\xbb\xbf" + text.encode("utf-8")])
