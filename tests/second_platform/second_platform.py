"""A desktop system of the handheld's family on which the program runs as well."""

import os
import shutil
import subprocess
import sys

MODULE_DIRECTORY = "Program Files/Fennelbright"
REGISTRY_HEADER = "Windows Registry Editor Version 5.00\n\n"
# As wide as the handheld's, in twips.
SCROLL_BAR = '[HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics]\n"ScrollWidth"="-195"\n'


class SecondPlatform:
    """A fresh prefix with a drive X: for the devices, in a temporary directory that is thrown away."""

    def __init__(self, executable, directory, display=None):
        self.drive = os.path.join(directory, "drive")
        os.makedirs(os.path.join(self.drive, MODULE_DIRECTORY))
        self.executable = shutil.copy(executable, os.path.join(self.drive, MODULE_DIRECTORY, "Fennelbright.exe"))
        self.environment = {"PATH": os.environ["PATH"], "HOME": directory, "WINEDEBUG": "-all", "WINEARCH": "win64",
                            "WINEPREFIX": os.path.join(directory, "prefix"), "LC_ALL": "C.UTF-8",
                            "WINEDLLOVERRIDES": "mscoree,mshtml,winemenubuilder.exe="}
        if display:
            self.environment["DISPLAY"] = display
        self.run("wineboot", "--init")
        os.symlink(self.drive, os.path.join(directory, "prefix/dosdevices/x:"))

    def run(self, *words, **environment):
        process = subprocess.run(["wine", *words], env={**self.environment, **environment}, timeout=300, check=False,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if process.returncode != 0:
            sys.exit("wine %s: exit code %d\n%s" % (" ".join(words), process.returncode, process.stderr.decode()))
        return process.stdout.decode()

    def register(self, keys):
        """Puts keys and values, as a registry file has them, into the registry."""
        with open(os.path.join(self.drive, "in.reg"), "w", encoding="utf-16", newline="\r\n") as file:
            file.write(REGISTRY_HEADER + keys)
        self.run("regedit", "/S", "X:\\in.reg")

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        subprocess.run(["wineserver", "-k"], env=self.environment, check=False)


class Display:
    """A display without anything on it, `name` in an environment."""

    def __enter__(self):
        number, write = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-noreset", "-displayfd", str(write), "-screen", "0", "240x320x24"],
                                       pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with open(number, encoding="ascii") as file:
            self.name = ":" + file.readline().strip()
        return self

    def tool(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env={**os.environ, "DISPLAY": self.name}, check=True,
                       stdout=subprocess.DEVNULL, timeout=60)

    def __exit__(self, *unused):
        self.server.terminate()
        self.server.wait()
