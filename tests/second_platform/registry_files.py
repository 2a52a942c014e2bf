"""Reads registry files as both platforms write them."""

import re

STATEMENT = re.compile(r'(@|"(?:[^"\\]|\\.)*")=(.*)', re.DOTALL)


def unquoted(text):
    return re.sub(r"\\(.)", r"\1", text[1:-1], flags=re.DOTALL)


def parse_data(data):
    """Type and bytes; of a text only what precedes its first terminator, as a file shows no more."""
    if data.startswith('"'):
        return 1, unquoted(data).encode("utf-16-le", "surrogatepass")
    kind, _, value = data.partition(":")
    if kind == "dword":
        return 4, int(value, 16).to_bytes(4, "little")
    content = bytes.fromhex(value.replace(",", ""))
    if kind != "hex(1)":
        return int(kind[4:-1], 16) if kind != "hex" else 3, content
    units = [content[index:index + 2] for index in range(0, len(content), 2)]
    return 1, b"".join(units[:units.index(b"\0\0")] if b"\0\0" in units else units)


def parse_registry(path):
    """All values by key and name, and all keys, by key and None. Names have
    the spelling in which they appear first, as they have in the registry."""
    with open(path, encoding="utf-16", newline="") as file:
        text = re.sub(r"\\\r\n\s*", "", file.read())
    values = {}
    spelling = {}
    key = ""
    for line in re.split(r"\r\n(?=[\[@\"]|\r\n|$)", text):
        line = line.strip("\r\n")
        match = STATEMENT.fullmatch(line)
        if line.startswith("["):
            key = ""
            for name in line[1:-1].split("\\"):
                key = spelling.setdefault((key + name).lower(), key + name)
                values[key, None] = ()
                key += "\\"
        elif match:
            name = "" if match[1] == "@" else unquoted(match[1])
            values[spelling.setdefault((key + "\0" + name).lower(), (key, name))] = parse_data(match[2])
    return values
