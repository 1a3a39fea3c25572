# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the default identity into a freshly linked Windows module: brand-module.py MODULE ID TITLE VENDOR.

Unbranded, the three fields hold pieces of "This program cannot be run in DOS mode." A cross build cannot run the
command line that brands modules, so the build has this much of it. Offsets as in shell/ModuleIdentity.h.
"""
import sys

FIELDS = ((78, 4), (82, 16), (99, 16))
STUB_END = 115


def main(path, *texts):
    with open(path, "r+b") as module:
        start = module.read(STUB_END)
        header = int.from_bytes(start[60:64], "little")
        if len(start) < STUB_END or start[:2] != b"MZ" or header < STUB_END:
            sys.exit(f"{path}: no Windows module with room for an identity")
        for (offset, size), text in zip(FIELDS, texts, strict=True):
            field = text.encode("utf-8")
            if len(field) > size:
                sys.exit(f"{path}: '{text}' is longer than {size} bytes")
            module.seek(offset)
            module.write(field.ljust(size, b"\0"))


main(*sys.argv[1:])
