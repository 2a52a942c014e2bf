"""The device of the transcripts."""

import os

REGISTRY = r"""[HKEY_LOCAL_MACHINE\Software\K]
@="unnamed"
"text"="\\Temp\\a"
"empty"=""
"expand"=hex(2):25,00,61,00,25,00,00,00
"multi"=hex(7):61,00,00,00,62,00,00,00,00,00
"number"=dword:0000002a
"binary"=hex:01,02,03
"none"=hex(0):01,02
"typed"=hex(63):01,02,03,04,05
"quo\"te"="a\"b"
"back\\slash"="x"
"é"="\\é"
"odd"=hex(1):41,00,42
"nul"=hex(1):41,00,00,00,42,00,00,00
[HKEY_LOCAL_MACHINE\Software\K\Abc]
[HKEY_LOCAL_MACHINE\Software\K\Deep\Er\Est]
[HKEY_LOCAL_MACHINE\Software\K\Full]
"x"="y"
[HKEY_LOCAL_MACHINE\Software\K\Full\Sub]
"x"="y"
[HKEY_LOCAL_MACHINE\Software\K\Last é]
[HKEY_LOCAL_MACHINE\Software\K\Sub]
[HKEY_CURRENT_USER\Software\K\Sub]
"""

FILES = {"file.txt": "abc", "sub/in.txt": "in", "empty/": "", "ro.txt": "abc", "\u00e9.txt": "abc", "\u03c3": "abc",
         "\U00010428": "abc", "a.lnk": '9#"\\x y" /a', "b.lnk": "9#\\x?i,0\r\n", "noext": "", "T.tmp": "1",
         "x.y.z": "12", "hid/in.txt": ""}


def make(root):
    for name, content in FILES.items():
        path = os.path.join(root, "T", name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if not name.endswith("/"):
            with open(path, "w", encoding="utf-8", newline="") as file:
                file.write(content)
    os.chmod(os.path.join(root, "T/ro.txt"), 0o444)
    try:
        os.setxattr(os.path.join(root, "T/hid"), "user.DOSATTRIB", b"0x2")
    except OSError:
        pass  # it is not hidden then, on both
    os.makedirs(os.path.join(root, "W"))
    for name in "abcdefgh":
        with open(os.path.join(root, "W", name), "w", encoding="utf-8"):
            pass
