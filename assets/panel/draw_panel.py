#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the pictures of the built-in panel: background.svg (593 x 242) and button-strip.svg (34 x 17: the button up,
and pressed). Everything on them is computed here; the results are committed beside this script.

  assets/panel/draw_panel.py [FOLDER]
"""
import math
import sys
from pathlib import Path

from lettering import path_of, width

WIDTH, HEIGHT = 593, 242
ACCENT = "#f2a54a"
CAPTION = "#aeb4bf"
# Middle of each knob of the built-in layout, with its caption.
KNOBS = [(95, 143, "ATTACK"), (168, 144, "DECAY"), (242, 143, "SUSTAIN"), (329, 144, "RELEASE"),
         (413, 144, "VOLUME"), (497, 144, "PAN")]


def caption(text, middle, top, height, colour, stroke=1.0, spacing=3.2):
    left = round((middle - width(text, height, spacing) / 2) * 2) / 2
    return (f'<path d="{path_of(text, left, top, height, spacing)}" fill="none" stroke="{colour}" '
            f'stroke-width="{stroke}" stroke-linecap="round" stroke-linejoin="round"/>')


def mixed(colour, other, amount):
    """The first colour, with `amount` of the other in it."""
    parts = [(int(colour[i:i + 2], 16), int(other[i:i + 2], 16)) for i in (1, 3, 5)]
    return "#" + "".join(f"{round(x + (y - x) * amount):02x}" for x, y in parts)


def waveform():
    """A plucked note as bars, fading out to the right."""
    middle, lines = 27.5, []
    for i, x in enumerate(range(25, 570, 4)):
        t = i / 136
        level = (1 - math.exp(-(i + 0.4) / 1.6)) * math.exp(-2.6 * t)
        ripple = 0.62 + 0.38 * abs(math.sin(i * 0.71) * math.cos(i * 0.193 + 0.4))
        half = max(0.7, 17.5 * level * ripple)
        cold = min(1.0, t / 0.5)
        opacity = 0.13 + 0.62 * (1 - cold) ** 1.5
        lines.append(f'<rect x="{x}" y="{middle - half:.2f}" width="2" height="{2 * half:.2f}" rx="1" '
                     f'fill="{mixed(ACCENT, "#c9ced8", cold)}" opacity="{opacity:.3f}"/>')
    return "\n".join(lines)


def keys_icon(x, y):
    """Three piano keys, before the instrument's name."""
    return (f'<g fill="none" stroke="{ACCENT}" stroke-width="1"><rect x="{x}" y="{y}" width="15" height="11" rx="2"/>'
            f'<path d="M{x + 5} {y + 6.5} L{x + 5} {y + 11} M{x + 10} {y + 6.5} L{x + 10} {y + 11}"/></g>'
            f'<path d="M{x + 3.5} {y} h3 v6.5 h-3 Z M{x + 8.5} {y} h3 v6.5 h-3 Z" fill="{ACCENT}"/>')


def knob_seat(x, y):
    return f'<circle cx="{x}" cy="{y}" r="24" fill="url(#seat)"/>'


def background():
    parts = [f'''<svg xmlns="http://www.w3.org/2000/svg" width="{WIDTH}" height="{HEIGHT}" viewBox="0 0 {WIDTH} {HEIGHT}">
<defs>
<linearGradient id="body" x1="0" y1="0" x2="0" y2="242" gradientUnits="userSpaceOnUse">
<stop offset="0" stop-color="#2b2f37"/><stop offset="0.45" stop-color="#23262d"/><stop offset="1" stop-color="#17191e"/></linearGradient>
<linearGradient id="glass" x1="0" y1="54" x2="0" y2="108" gradientUnits="userSpaceOnUse">
<stop offset="0" stop-color="#0d0f12"/><stop offset="1" stop-color="#171a1f"/></linearGradient>
<linearGradient id="rim" x1="0" y1="53" x2="0" y2="109" gradientUnits="userSpaceOnUse">
<stop offset="0" stop-color="#000000" stop-opacity="0.55"/><stop offset="1" stop-color="#ffffff" stop-opacity="0.10"/></linearGradient>
<linearGradient id="slot" x1="0" y1="176" x2="0" y2="184" gradientUnits="userSpaceOnUse">
<stop offset="0" stop-color="#0b0c0f"/><stop offset="1" stop-color="#101216"/></linearGradient>
<radialGradient id="seat"><stop offset="0" stop-color="#000000" stop-opacity="0.42"/>
<stop offset="0.78" stop-color="#000000" stop-opacity="0.26"/><stop offset="1" stop-color="#000000" stop-opacity="0"/></radialGradient>
</defs>
<rect width="{WIDTH}" height="{HEIGHT}" fill="url(#body)"/>
<rect width="{WIDTH}" height="1" fill="#ffffff" opacity="0.09"/>''']
    parts.append(waveform())
    # The name's display.
    parts.append('<rect x="141.5" y="53.5" width="364" height="55" rx="7" fill="url(#glass)"/>')
    parts.append('<rect x="141" y="53" width="365" height="56" rx="7.5" fill="none" stroke="url(#rim)" stroke-width="1"/>')
    parts.append(keys_icon(154.5, 66.5))
    # Name and maker beside it.
    parts.append(caption("ZARNO", 72, 67, 14, "#f4f5f7", 1.7, 4.0))
    parts.append(caption("SAMPLER PLAYER", 72, 90.5, 5, "#8d94a1", 0.8, 3.4))
    for x, y, text in KNOBS:
        parts.append(knob_seat(x, y))
        parts.append(caption(text, x, 166.5, 6, CAPTION))
    parts.append('<path d="M6 242 L6 182 A4 4 0 0 1 10 178 L582 178 A4 4 0 0 1 586 182 L586 242 Z" fill="url(#slot)"/>')
    parts.append("</svg>\n")
    return "\n".join(parts)


def button(left, pressed):
    top, bottom = ("#15171b", "#22252b") if pressed else ("#434852", "#2b2f36")
    glyph = ACCENT if pressed else "#e3e6ea"
    name = "down" if pressed else "up"
    return f'''<linearGradient id="{name}" x1="0" y1="0" x2="0" y2="17" gradientUnits="userSpaceOnUse">
<stop offset="0" stop-color="{top}"/><stop offset="1" stop-color="{bottom}"/></linearGradient>
<rect x="{left + 0.5}" y="0.5" width="16" height="16" rx="3.5" fill="url(#{name})" stroke="#000000" stroke-opacity="0.6"/>
<rect x="{left + 6}" y="6" width="5" height="5" rx="1" fill="{glyph}"/>'''


def strip():
    return f'''<svg xmlns="http://www.w3.org/2000/svg" width="34" height="17" viewBox="0 0 34 17">
{button(0, False)}
{button(17, True)}
</svg>
'''


if __name__ == "__main__":
    folder = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).parent)
    (folder / "background.svg").write_text(background(), encoding="utf-8", newline="\n")
    (folder / "button-strip.svg").write_text(strip(), encoding="utf-8", newline="\n")
