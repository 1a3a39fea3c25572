# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the default identity into a freshly linked Windows module: brand-module.py MODULE ID TITLE VENDOR.

Unbranded, the three fields hold pieces of "This program cannot be run in DOS mode." A cross build cannot run the
command line that brands modules, so the build has this much of it. Where the fields lie says shell/ModuleIdentity.h.
"""
import re
import sys
from pathlib import Path

HEADER = Path(__file__).resolve().parent.parent / "shell" / "ModuleIdentity.h"


def read_fields():
    """Offset and size of each field, in the order of the arguments."""
    body = re.search(r"namespace identityField \{(.*?)\}", HEADER.read_text(encoding="utf-8"), re.S).group(1)
    numbers = {name: int(value) for name, value in re.findall(r"size_t (\w+) = (\d+);", body)}
    text = numbers["textBytes"]
    return [(numbers["uniqueId"], 4), (numbers["packTitle"], text), (numbers["vendor"], text)]


def main(path, *texts):
    fields = read_fields()
    end = max(offset + size for offset, size in fields)
    with open(path, "r+b") as module:
        start = module.read(end)
        header = int.from_bytes(start[60:64], "little")
        if len(start) < end or start[:2] != b"MZ" or header < end:
            sys.exit(f"{path}: no Windows module with room for an identity")
        for (offset, size), text in zip(fields, texts, strict=True):
            field = text.encode("utf-8")
            if len(field) > size:
                sys.exit(f"{path}: '{text}' is longer than {size} bytes")
            module.seek(offset)
            module.write(field.ljust(size, b"\0"))


main(*sys.argv[1:])
