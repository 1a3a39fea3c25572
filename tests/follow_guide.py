#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs every command of docs/making-instruments.md, in order, in a folder with what the page asks for.

  follow_guide.py GUIDE.md FOLDER ZARNO MODULE
"""
import math
import os
import re
import shutil
import struct
import subprocess
import sys
import wave
from pathlib import Path


def record(path, hertz):
    with wave.open(str(path), "wb") as out:
        out.setnchannels(1), out.setsampwidth(2), out.setframerate(44100)
        frames = (12000 * math.exp(-i / 20000) * math.sin(2 * math.pi * hertz * i / 44100) for i in range(44100))
        out.writeframes(b"".join(struct.pack("<h", round(frame)) for frame in frames))


def main():
    guide, folder, zarno, module = (Path(each).resolve() for each in sys.argv[1:5])
    shutil.rmtree(folder, ignore_errors=True)
    (folder / "Felt").mkdir(parents=True)
    (folder / "bin").mkdir()
    (folder / "bin" / "zarno").symlink_to(zarno)
    text = guide.read_text(encoding="utf-8")
    for name, octave in re.findall(r"^Felt/(.*C(\d)\.wav)$", text, re.M):
        record(folder / "Felt" / name, 440 * 2 ** (int(octave) - 4 - 0.75))
    if module.exists():
        shutil.copy(module, folder / "ZarnoSamplerPlayer.so")
    else:
        (folder / "ZarnoSamplerPlayer.so").write_bytes(b"ELF") # a build without the player
    environment = {**os.environ, "PATH": f"{folder / 'bin'}:{os.environ['PATH']}"}
    blocks = re.findall(r"^```sh\n(.*?)^```", text, re.M | re.S)
    for block in blocks:
        done = subprocess.run(["sh", "-e", "-c", block], cwd=folder, env=environment, capture_output=True, text=True)
        print(block + done.stdout + done.stderr)
        if done.returncode or "error" in done.stdout:
            sys.exit(f"the guide's commands fail: {block}")
    made = [folder / "map.png", folder / "Felt Pack/FeltPack.so", folder / "Felt Pack/FeltPack.instruments/Felt.zse"]
    missing = [str(path) for path in made if not path.exists()]
    if len(blocks) < 5 or missing:
        sys.exit(f"only {len(blocks)} blocks of commands, or not made: {missing}")
    described = subprocess.run([zarno, "info", made[2]], capture_output=True, text=True).stdout
    if "Recorded at home." not in described:
        sys.exit("the shipped instrument is not the edited one:\n" + described)


main()
