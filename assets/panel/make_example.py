#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes a panel of an instrument maker's own, with every kind of control: layout.xml and panel.png, as they lie in an
instrument's folder. Pictures are computed here. For screenshots, and as an example to start from.

  assets/panel/make_example.py FOLDER
"""
import struct
import sys
import zlib
from pathlib import Path

import numpy as np

WIDTH, HEIGHT = 680, 392
INK, GOLD, PALE = (34, 48, 58), (214, 164, 84), (236, 231, 220)


def png(pixels):
    """Bytes of a PNG of an array height x width x 4."""
    height, width, _ = pixels.shape
    rows = b"".join(b"\0" + pixels[y].tobytes() for y in range(height))

    def chunk(name, data):
        body = name + data
        return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))

    header = struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9))
            + chunk(b"IEND", b""))


def image_text(data):
    """The text form of bytes in a layout: their number, a dot, and six bits a character from the lowest bit on."""
    alphabet = ".ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+"
    bits = int.from_bytes(data, "little")
    characters = []
    for _ in range((len(data) * 8 + 5) // 6):
        characters.append(alphabet[bits & 63])
        bits >>= 6
    return f"{len(data)}." + "".join(characters)


class Canvas:
    """Colours laid over each other, with coverage from signed distances."""

    def __init__(self, width, height):
        self.y, self.x = np.mgrid[0:height, 0:width] + 0.5
        self.colour = np.zeros((height, width, 3))
        self.alpha = np.zeros((height, width))

    def lay(self, distance, colour, opacity=1.0):
        cover = np.clip(0.5 - distance, 0, 1) * opacity
        keep = self.alpha * (1 - cover)
        total = cover + keep
        safe = np.maximum(total, 1e-9)[..., None]
        self.colour = (np.asarray(colour) * cover[..., None] + self.colour * keep[..., None]) / safe
        self.alpha = total

    def circle(self, x, y, radius):
        return np.hypot(self.x - x, self.y - y) - radius

    def box(self, left, top, right, bottom, radius):
        dx = np.abs(self.x - (left + right) / 2) - (right - left) / 2 + radius
        dy = np.abs(self.y - (top + bottom) / 2) - (bottom - top) / 2 + radius
        return np.hypot(np.maximum(dx, 0), np.maximum(dy, 0)) + np.minimum(np.maximum(dx, dy), 0) - radius

    def line(self, x0, y0, x1, y1, width):
        length = (x1 - x0) ** 2 + (y1 - y0) ** 2
        t = np.clip(((self.x - x0) * (x1 - x0) + (self.y - y0) * (y1 - y0)) / length, 0, 1)
        return np.hypot(self.x - x0 - t * (x1 - x0), self.y - y0 - t * (y1 - y0)) - width / 2

    def pixels(self):
        return np.dstack([self.colour, self.alpha * 255]).round().clip(0, 255).astype(np.uint8)


def knob_frame(size, position):
    canvas, middle = Canvas(size, size), size / 2
    angle = np.deg2rad(-135 + 270 * position)
    canvas.lay(canvas.circle(middle, middle + 1.5, middle - 2), (20, 26, 30), 0.45)
    canvas.lay(canvas.circle(middle, middle, middle - 3), (176, 140, 84))
    canvas.lay(canvas.circle(middle, middle, middle - 4.5), (44, 58, 68))
    light = np.clip((canvas.y - 4) / size, 0, 1)[..., None]
    canvas.lay(canvas.circle(middle, middle, middle - 6), np.array([92, 110, 122]) * (1 - light) + np.array([40, 52, 60]) * light)
    reach = lambda part: (middle + np.sin(angle) * middle * part, middle - np.cos(angle) * middle * part)
    canvas.lay(canvas.line(*reach(0.34), *reach(0.68), 3), PALE)
    return canvas.pixels()


def button_strip(size=26):
    def half(pressed):
        canvas = Canvas(size, size)
        canvas.lay(canvas.box(1, 1, size - 1, size - 1, 6), (24, 33, 40))
        canvas.lay(canvas.box(2, 2, size - 2, size - 2, 5), GOLD if pressed else (66, 84, 96))
        canvas.lay(canvas.box(9.5, 9.5, size - 9.5, size - 9.5, 1.5), INK if pressed else PALE)
        return canvas.pixels()

    return np.hstack([half(False), half(True)])


def background():
    canvas = Canvas(WIDTH, HEIGHT)
    light = (canvas.y / HEIGHT)[..., None]
    canvas.lay(canvas.y * 0 - 1, np.array([58, 76, 88]) * (1 - light) + np.array([30, 40, 48]) * light)
    for box in ((14, 58, 338, 184), (346, 58, 666, 184), (14, 192, 338, 300), (346, 192, 666, 300)):
        canvas.lay(canvas.box(*box, 8), (0, 0, 0), 0.22)
    canvas.lay(canvas.line(14, 48, 666, 48, 1), GOLD, 0.8)
    return canvas.pixels()


def layout():
    frames = [knob_frame(48, i / 30) for i in range(31)]
    small = [knob_frame(40, i / 30) for i in range(31)]
    lines = ['<?xml version="1.0" encoding="UTF-8"?>', f'<player width="{WIDTH}" height="{HEIGHT}">', "<images>",
             f"<1>{image_text(png(np.vstack(frames)))}</1>", f"<2>{image_text(png(np.hstack(small)))}</2>",
             f"<3>{image_text(png(button_strip()))}</3>", "</images>"]

    def add(tag, x, y, width, height, **attributes):
        named = "".join(f' {name.lstrip("_")}="{value}"' for name, value in attributes.items())
        lines.append(f'<{tag} x="{x}" y="{y}" width="{width}" height="{height}"{named}/>')

    def text(x, y, width, words, size=11, colour="ffd8d3c6", justification=36):
        add("label", x, y, width, 18, _8=words, _5=justification, _7=size, _16777957=colour)

    add("label", 12, 10, 430, 32, _2=1, _5=33, _7=22, _16777957="ffece7dc")
    add("label", 440, 14, 226, 26, _2=2, _5=34, _7=13, _16777957="ffd6a454")
    for i, (words, target) in enumerate((("Attack", 101), ("Decay", 102), ("Sustain", 103), ("Release", 104),
                                         ("Level", 100))):
        add("knob", 24 + i * 62, 68, 48, 48, _1=1, _2=target)
        text(14 + i * 62, 116, 68, words)
    for i, (words, target) in enumerate((("Volume", 2), ("Pan", 3), ("Reverb", 6), ("Glide", 1), ("Bend", 9))):
        add("knob", 359 + i * 62, 72, 40, 40, _1=2, _2=target)
        text(345 + i * 62, 116, 68, words)
    colours = {"_16782198": "66ffffff", "_16782197": "ffd6a454"}
    for i, (words, target) in enumerate((("Rate", 4), ("Depth", 5), ("Floor", 7), ("Span", 8), ("Brightness", 274))):
        add("knob", 31 + i * 62, 204, 40, 40, _2=target, **colours)
        text(14 + i * 62, 246, 74 if i == 4 else 68, words)
    fields = {"_16780132": "ff22303a", "_16779876": "ffece7dc", "_16780388": "ff5a6e7a", "_16780900": "ffd6a454"}
    for x, y, width, target in ((24, 144, 96, 1), (126, 144, 96, 2), (228, 144, 100, 3), (24, 270, 96, 4),
                                (126, 270, 96, 5), (228, 270, 100, 6), (356, 144, 146, 100), (508, 144, 148, 101)):
        add("combo", x, y, width, 22, _2=target, **fields)
    faces = {"_16777572": "ff3d505c", "_16777573": "ffd6a454"}
    for x, words, target, toggles in ((356, "Poly", 1, 1), (434, "Mono", 2, 1), (512, "Legato", 3, 1),
                                      (590, "Reset", 6, 0)):
        add("button", x, 204, 70, 24, _8=words, _2=target, _3=toggles, **faces)
    for x, words, target, toggles in ((356, "Excluded", 100, 1), (434, "Release", 101, 1), (512, "Group &gt;", 7, 0),
                                      (590, "Library", 8, 0)):
        add("button", x, 234, 70, 24, _8=words, _2=target, _3=toggles, **faces)
    add("button", 356, 266, 34, 24, _8="&lt;", _2=4, **faces)
    add("button", 394, 266, 34, 24, _8="&gt;", _2=5, **faces)
    add("button", 634, 265, 26, 26, _1=3, _2=9)
    add("keyboard", 14, 312, 652, 68, _4="24,108", _3=1)
    lines.append("</player>")
    return "\n".join(lines)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    folder = Path(sys.argv[1])
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "layout.xml").write_text(layout(), encoding="utf-8", newline="\n")
    (folder / "panel.png").write_bytes(png(background()))
