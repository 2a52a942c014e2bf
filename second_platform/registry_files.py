"""Reads registry files as both platforms write them."""

import re

STATEMENT = re.compile(r'(@|"(?:[^"\\]|\\.)*")=(.*)', re.DOTALL)


def decoded(content):
    try:
        return content.decode("utf-16" if content.startswith(b"\xff\xfe") else "utf-8")
    except UnicodeDecodeError:
        return content.decode("cp1252")


def read_registry(path):
    """The first line, which says which form it has, and the rest."""
    with open(path, "rb") as file:
        form, _, keys = decoded(file.read()).replace("\r\n", "\n").partition("\n")
    return form, keys


def unquoted(text):
    return re.sub(r"\\(.)", r"\1", text[1:-1], flags=re.DOTALL)


def parse_data(data, is_narrow):
    """Type and bytes; of a text only what precedes its first terminator, as a file shows no more."""
    if data.startswith('"'):
        return 1, unquoted(data).encode("utf-16-le", "surrogatepass")
    kind, _, value = data.partition(":")
    if kind == "dword":
        return 4, int(value, 16).to_bytes(4, "little")
    number = int(kind[4:-1], 16) if kind != "hex" else 3
    content = bytes.fromhex(value.replace(",", ""))
    if is_narrow and number in (1, 2, 7):
        content = decoded(content).encode("utf-16-le")
    units = [content[index:index + 2] for index in range(0, len(content), 2)]
    return number, b"".join(units[:units.index(b"\0\0")] if number == 1 and b"\0\0" in units else units)


def parse_registry(path):
    """All values by key and name, and all keys, by key and None. Names have
    the spelling in which they appear first, as they have in the registry."""
    form, text = read_registry(path)
    values, spelling = {}, {}
    key = ""
    for line in re.split(r"\n(?=[\[@\"]|\n|$)", re.sub(r"\\\n\s*", "", text)):
        line = line.strip("\n")
        match = STATEMENT.fullmatch(line)
        if line.startswith("["):
            key = ""
            for name in line[1:-1].split("\\"):
                key = spelling.setdefault((key + name).lower(), key + name)
                values[key, None] = ()
                key += "\\"
        elif match:
            name = "" if match[1] == "@" else unquoted(match[1])
            entry = spelling.setdefault((key + "\0" + name).lower(), (key, name))
            values[entry] = parse_data(match[2], form == "REGEDIT4")
    return values
