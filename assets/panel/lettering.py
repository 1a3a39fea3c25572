# SPDX-License-Identifier: GPL-3.0-or-later
"""Lettering of our own for the panel: capitals of one stroke width, drawn as strokes, so that they are sharp at every
size and need no typeface. Glyphs stand on a grid ten units high."""
import re

CAP = 10.0
GLYPHS = {  # advance width, path; upper case commands only
    "A": (8.0, "M0 10 L4 0 L8 10 M1.36 6.6 L6.64 6.6"),
    "B": (6.4, "M0 0 L0 10 L3.6 10 A2.7 2.7 0 0 0 3.6 4.6 L0 4.6 M0 0 L3.3 0 A2.3 2.3 0 0 1 3.3 4.6"),
    "C": (8.2, "M8.2 1.9 A4.7 5 0 1 0 8.2 8.1"),
    "D": (7.8, "M0 0 L2.8 0 A5 5 0 0 1 2.8 10 L0 10 L0 0"),
    "E": (5.8, "M5.8 0 L0 0 L0 10 L5.8 10 M0 5 L5 5"),
    "I": (0.0, "M0 0 L0 10"),
    "K": (6.4, "M0 0 L0 10 M6.1 0 L0 6.1 M2.3 3.9 L6.4 10"),
    "L": (5.4, "M0 0 L0 10 L5.4 10"),
    "M": (9.0, "M0 10 L0 0 L4.5 6.8 L9 0 L9 10"),
    "N": (7.6, "M0 10 L0 0 L7.6 10 L7.6 0"),
    "O": (9.8, "M4.9 0 A4.9 5 0 1 1 4.9 10 A4.9 5 0 1 1 4.9 0"),
    "P": (6.2, "M0 10 L0 0 L3.4 0 A2.8 2.8 0 0 1 3.4 5.6 L0 5.6"),
    "R": (6.6, "M0 10 L0 0 L3.4 0 A2.8 2.8 0 0 1 3.4 5.6 L0 5.6 M3.2 5.6 L6.6 10"),
    "S": (6.4, "M6 1.9 C5.4 0.7 4.4 0 3.2 0 C1.5 0 0.4 1 0.4 2.5 C0.4 4 1.5 4.5 3.3 4.95 "
               "C5.1 5.4 6.4 6 6.4 7.5 C6.4 9.1 5.1 10 3.3 10 C1.8 10 0.7 9.3 0 8"),
    "T": (7.2, "M0 0 L7.2 0 M3.6 0 L3.6 10"),
    "U": (7.4, "M0 0 L0 6.3 A3.7 3.7 0 0 0 7.4 6.3 L7.4 0"),
    "V": (8.2, "M0 0 L4.1 10 L8.2 0"),
    "Y": (7.8, "M0 0 L3.9 5.1 L7.8 0 M3.9 5.1 L3.9 10"),
    "Z": (7.2, "M0 0 L7.2 0 L0 10 L7.2 10"),
    " ": (3.0, ""),
}


def width(text, height, spacing):
    """Of the text in pixels, `spacing` grid units between letters."""
    units = sum(GLYPHS[letter][0] for letter in text) + spacing * (len(text) - 1)
    return units * height / CAP


def number(value):
    return f"{value:.2f}".rstrip("0").rstrip(".")


def placed(path, x, y, scale):
    """The path moved and scaled. Radii are scaled, flags of arcs are not."""
    words = re.findall(r"[A-Z]|-?[\d.]+", path)
    out, i = [], 0
    while i < len(words):
        command = words[i]
        out.append(command)
        i += 1
        count = {"M": 2, "L": 2, "C": 6, "A": 7}[command]
        values = [float(word) for word in words[i:i + count]]
        i += count
        if command == "A":
            rx, ry, rotation, large, sweep, ex, ey = values
            out += [number(rx * scale), number(ry * scale), number(rotation), str(int(large)), str(int(sweep)),
                    number(x + ex * scale), number(y + ey * scale)]
        else:
            for k, value in enumerate(values):
                out.append(number((x if k % 2 == 0 else y) + value * scale))
    return " ".join(out)


def path_of(text, x, y, height, spacing):
    """Path data of the text whose first letter begins at x and whose capitals reach from y down to y + height."""
    scale, parts = height / CAP, []
    for letter in text:
        advance, path = GLYPHS[letter]
        if path:
            parts.append(placed(path, x, y, scale))
        x += (advance + spacing) * scale
    return " ".join(parts)
