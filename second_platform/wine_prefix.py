"""A desktop system of the handheld's family on which the program runs as well."""

import collections
import os
import shutil
import signal
import subprocess
import sys

from second_platform.registry_files import read_registry

MODULE_DIRECTORY = "Program Files/Fennelbright"
REGISTRY_HEADER = "Windows Registry Editor Version 5.00\n\n"
# As wide as the handheld's, in twips.
SCROLL_BAR = '[HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics]\n"ScrollWidth"="-195"\n'

# Whoever ends a comparison ends the servers that it has started as well.
signal.signal(signal.SIGTERM, lambda *unused: sys.exit("terminated"))


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
        try:
            self.run("wineboot", "--init")
        except BaseException:
            self.__exit__()
            raise
        os.symlink(self.drive, os.path.join(directory, "prefix/dosdevices/x:"))

    def run(self, *words, **environment):
        process = subprocess.run(["wine", *words], env={**self.environment, **environment}, timeout=300, check=False,
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if process.returncode != 0:
            sys.exit("wine %s: exit code %d\n%s" % (" ".join(words), process.returncode, process.stderr.decode()))
        return process.stdout.decode()

    def register(self, keys, form=REGISTRY_HEADER.strip()):
        """Puts keys and values, as a registry file of this form has them, into the registry."""
        encoding = "cp1252" if form == "REGEDIT4" else "utf-16"
        with open(os.path.join(self.drive, "in.reg"), "w", encoding=encoding, newline="\r\n") as file:
            file.write(form + "\n\n" + keys)
        self.run("regedit", "/S", "X:\\in.reg")

    def copy(self, devices, more_keys=""):
        """Device directories to the drive, as 0, 1 and so on."""
        registries = collections.defaultdict(str, {REGISTRY_HEADER.strip(): more_keys})
        for number, device in enumerate(devices):
            shutil.copytree(os.path.join(device, "files"), os.path.join(self.drive, str(number)))
            form, keys = read_registry(os.path.join(device, "registry.reg"))
            prefix = "[HKEY_CURRENT_USER\\Devices\\%d\\HKEY_" % number
            registries[form] += keys.replace("[HKEY_", prefix)
        for form, keys in registries.items():
            self.register(keys, form)

    def __enter__(self):
        return self

    def __exit__(self, *unused):
        subprocess.run(["wineserver", "-k"], env=self.environment, check=False)


class Display:
    """A display without anything on it: its name, and an environment with it."""

    def __enter__(self):
        number, write = os.pipe()
        self.server = subprocess.Popen(["Xvfb", "-noreset", "-displayfd", str(write), "-screen", "0", "240x320x24"],
                                       pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with open(number, encoding="ascii") as file:
            self.name = ":" + file.readline().strip()
        self.environment = {key: value for key, value in os.environ.items()
                            if key not in ("WAYLAND_DISPLAY", "XAUTHORITY")} | {"DISPLAY": self.name}
        return self

    def tool(self, *words):
        subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=True,
                       stdout=subprocess.DEVNULL, timeout=60)

    def __exit__(self, *unused):
        self.server.terminate()
        self.server.wait()
