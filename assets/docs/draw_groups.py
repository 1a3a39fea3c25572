#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Draws the pictures of docs/groups.md. What plays in them is computed with the player's rules, not typed in.

  assets/docs/draw_groups.py [FOLDER]     docs/pictures when no folder is given
"""
import sys
from html import escape
from pathlib import Path

INK, FAINT, LINE = "#24292f", "#6e7781", "#d0d7de"
COLOURS = ["#0969da", "#bf3989", "#1a7f37", "#9a6700"]
PALE = ["#ddf4ff", "#ffeff7", "#dafbe1", "#fff8c5"]


class Picture:
    def __init__(self, width, height):
        self.size = (width, height)
        self.parts = [f'<rect width="{width}" height="{height}" rx="6" fill="#ffffff"/>']

    def text(self, x, y, text, size=13, colour=INK, anchor="start", weight="normal"):
        self.parts.append(f'<text x="{x}" y="{y}" font-family="sans-serif" font-size="{size}" fill="{colour}" '
                          f'text-anchor="{anchor}" font-weight="{weight}">{escape(text)}</text>')

    def box(self, x, y, width, height, text, kind=None, size=13):
        stroke, fill = (LINE, "#f6f8fa") if kind is None else (COLOURS[kind], PALE[kind])
        self.parts.append(f'<rect x="{x}" y="{y}" width="{width}" height="{height}" rx="4" fill="{fill}" '
                          f'stroke="{stroke}"/>')
        self.text(x + width / 2, y + height / 2 + size * 0.36, text, size, FAINT if kind is None else INK, "middle")

    def line(self, x1, y1, x2, y2, colour=FAINT, dashed=False):
        dash = ' stroke-dasharray="4 3"' if dashed else ""
        self.parts.append(f'<path d="M{x1} {y1} L{x2} {y2}" stroke="{colour}" stroke-width="1.5" fill="none"{dash}/>')

    def path(self, points, colour):
        self.parts.append(f'<path d="M{" L".join(f"{x} {y}" for x, y in points)}" stroke="{colour}" '
                          f'stroke-width="2" fill="none"/>')

    def save(self, path):
        width, height = self.size
        path.write_text(f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
                        f'viewBox="0 0 {width} {height}">\n' + "\n".join(self.parts) + "\n</svg>\n", encoding="utf-8")


class RoundRobin:
    """A group as the player has it: the search starts behind the zone that played last and takes the first match."""

    def __init__(self, zones):
        self.zones, self.last = zones, -1

    def play(self, key):
        for step in range(len(self.zones)):
            index = (self.last + 1 + step) % len(self.zones)
            if self.zones[index][0] == key:
                self.last = index
                return self.zones[index]
        return None


def triggers(path):
    picture = Picture(680, 196)
    picture.text(16, 26, "Keyswitches: C1 makes Long active, D1 makes Short active. Release, with Always, stays.", 13)
    events = ["start", "E4", "D1", "E4", "G4", "C1", "E4"]
    switches = {"C1": "Long", "D1": "Short"}
    active, left, step = "Long", 110, 80
    for row, name in enumerate(["Long", "Short", "Release"]):
        picture.text(16, 100 + 32 * row, name, 13, COLOURS[row], weight="bold")
    for column, event in enumerate(events):
        active = switches.get(event, active)
        x = left + step * column
        picture.text(x + 34, 60, event, 13, INK if event in switches else FAINT, "middle",
                     "bold" if event in switches else "normal")
        for row, name in enumerate(["Long", "Short", "Release"]):
            on = name in (active, "Release")
            picture.box(x, 84 + 32 * row, 68, 24, "active" if on else "", row if on else None, 12)
    picture.save(path)


def robin_rows(picture, top, title, groups, notes):
    picture.text(16, top, title, 13, weight="bold")
    robins = [RoundRobin(zones) for zones in groups]
    picture.text(16, top + 30, "zones, in order", 12, FAINT)
    x = 130
    for zones in groups:
        for key, take in zones:
            picture.box(x, top + 12, 54, 26, f"{key} {take}", take - 1, 12)
            x += 58
        x += 26
    picture.text(16, top + 70, "played", 12, FAINT)
    picture.text(16, top + 104, "sounds", 12, FAINT)
    for column, key in enumerate(notes):
        x = 130 + 62 * column
        picture.text(x + 27, top + 70, key, 13, INK, "middle")
        hit = next(filter(None, (robin.play(key) for robin in robins)))
        picture.box(x, top + 86, 54, 26, f"{hit[0]} {hit[1]}", hit[1] - 1, 12)


def round_robin(path):
    picture = Picture(680, 420)
    notes = ["C4", "E4", "C4", "E4", "C4", "E4", "C4", "E4"]
    by_key = [("C4", 1), ("C4", 2), ("E4", 1), ("E4", 2)]
    by_take = [("C4", 1), ("E4", 1), ("C4", 2), ("E4", 2)]
    robin_rows(picture, 26, "One group, zones ordered by key: the second takes never sound", [by_key], notes)
    robin_rows(picture, 160, "A group for each key: every key alternates for itself", [by_key[:2], by_key[2:]], notes)
    robin_rows(picture, 294, "One group, zones ordered by take: nearly as good, where a group is all there can be",
               [by_take], notes)
    picture.save(path)


def release(path):
    picture = Picture(680, 190)
    picture.text(16, 26, "A release group sounds when the key goes up; the longer it was held, the softer.", 13)
    for left, held, level in ((60, 90, 0.8), (370, 200, 0.45)):
        picture.line(left, 150, left + 290, 150, LINE)
        picture.path([(left, 150), (left + 6, 60), (left + held, 82), (left + held + 14, 150)], COLOURS[0])
        top = 150 - 90 * level
        picture.path([(left + held, 150), (left + held + 4, top), (left + held + 60, 148)], COLOURS[1])
        picture.line(left + held, 46, left + held, 150, FAINT, True)
        picture.text(left, 172, "key down", 12, FAINT, "middle")
        picture.text(left + held, 172, "key up", 12, FAINT, "middle")
        picture.text(left + held + 16, top - 4, "release sound", 12, COLOURS[1])
    picture.text(16, 60, "note", 12, COLOURS[0])
    picture.save(path)


def selection(path):
    picture = Picture(680, 196)
    rows = [("Stack", [0, 1, 2]), ("Round Robin", [0]), ("Random Robin", [2]), ("Total Random", [1])]
    picture.text(16, 26, "Three zones of a group match a note. What sounds:", 13)
    notes = {"Stack": "all of them, as layers", "Round Robin": "the next in order",
             "Random Robin": "any but the one before", "Total Random": "any, the one before, too"}
    for row, (name, on) in enumerate(rows):
        y = 44 + 36 * row
        picture.text(16, y + 18, name, 13, weight="bold")
        for zone in range(3):
            picture.box(150 + 84 * zone, y, 76, 26, f"zone {zone + 1}", row if zone in on else None, 12)
        picture.text(420, y + 18, notes[name], 13, FAINT)
    picture.save(path)


def main():
    here = Path(__file__).resolve().parents[2]
    folder = Path(sys.argv[1]) if len(sys.argv) > 1 else here / "docs/pictures"
    triggers(folder / "group-triggers.svg")
    selection(folder / "group-selection.svg")
    round_robin(folder / "group-round-robin.svg")
    release(folder / "group-release.svg")


main()
