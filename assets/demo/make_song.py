#!/usr/bin/env python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes the demo song: J. S. Bach, Prelude in C major, BWV 846 (1722), for the instrument of this folder.

usage: make_song.py OUT.mid

The notes were typed in for this project. The arpeggios ring over the pedal, each figure comes twice a bar and so
plays both round-robin alternatives, the dynamics cross all velocity layers, and the runs before the last chord
are played with the mallet articulation. Middle C is C4.
"""

import math
import random
import sys

import midi_file
from make_instrument import MALLET_SWITCH, TINE_SWITCH

QUARTER = 480
SIXTEENTH = QUARTER // 4
BAR = 4 * QUARTER

# Bars 1 to 32, half a bar of each: bass, tenor, then three notes that are played twice.
FIGURES = """
C4  E4  G4  C5  E5  60 | C4  D4  A4  D5  F5  62 | B3  D4  G4  D5  F5  64 | C4  E4  G4  C5  E5  60
C4  E4  A4  E5  A5  67 | C4  D4  F#4 A4  D5  64 | B3  D4  G4  D5  G5  68 | B3  C4  E4  G4  C5  61
A3  C4  E4  G4  C5  59 | D3  A3  D4  F#4 C5  66 | G3  B3  D4  G4  B4  62 | G3  Bb3 E4  G4  C#5 69
F3  A3  D4  A4  D5  64 | F3  Ab3 D4  F4  B4  67 | E3  G3  C4  G4  C5  60 | E3  F3  A3  C4  F4  58
D3  F3  A3  C4  F4  61 | G2  D3  G3  B3  F4  64 | C3  E3  G3  C4  E4  54 | C3  G3  Bb3 C4  E4  63
F2  F3  A3  C4  E4  70 | F#2 C3  A3  C4  Eb4 75 | Ab2 F3  B3  C4  D4  81 | G2  F3  G3  B3  D4  82
G2  E3  G3  C4  E4  86 | G2  D3  G3  C4  F4  89 | G2  D3  G3  B3  F4  91 | G2  Eb3 A3  C4  F#4 96
G2  E3  G3  C4  G4  98 | G2  D3  G3  C4  F4  90 | G2  D3  G3  B3  F4  80 | C2  C3  G3  Bb3 E4  72
"""

# Bars 33 and 34: bass and tenor held, over them a run of fourteen sixteenths. Bar 35: the last chord.
RUNS = (
    ("C2 C3", "F3 A3 C4 F4 C4 A3 C4 A3 F3 A3 F3 D3 F3 D3", 68),
    ("C2 B2", "G4 B4 D5 F5 D5 B4 D5 B4 G4 B4 D4 F4 E4 D4", 72),
)
LAST_CHORD, LAST_LEVEL = "C2 C3 E4 G4 C5", 60

# Beats a minute at the bars where the pace changes; in between it glides.
PACE = {1: 90, 3: 99, 4: 95, 6: 102, 8: 97, 11: 98, 15: 100, 18: 95, 19: 88, 20: 97, 24: 106, 28: 104}
PACE |= {29: 99, 31: 96, 32: 91, 33: 88, 34: 78, 34.5: 70, 34.8: 54, 35: 50}


def key_number(name):
    """MIDI key of a name such as F#4 (66)."""
    semitone = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}[name[0]]
    accidental = name.count("#") - name.count("b")
    return 12 * (int(name[-1]) + 1) + semitone + accidental


def glide(points, bar):
    """The value at `bar` (a fraction within it), on straight lines between the points."""
    bars = sorted(points)
    bar = min(max(bar, bars[0]), bars[-1])
    right = next(b for b in bars if b >= bar)
    left = max((b for b in bars if b <= bar), default=right)
    share = 0.0 if right == left else (bar - left) / (right - left)
    return points[left] + share * (points[right] - points[left])


class Player:
    """Turns notes into a track: touch, small unevenness of a hand, pedal."""

    def __init__(self, track):
        self.track = track
        self.hand = random.Random(846)

    def play(self, tick, length, name, velocity):
        unevenness = self.hand.gauss(0.0, 2.0)
        late = max(-4.0, min(4.0, self.hand.gauss(0.0, 1.6)))
        self.track.note(tick + late, length, key_number(name), velocity + unevenness)

    def pedal(self, down, up):
        """The foot follows the hand: down just after the new harmony has begun, up with the next one."""
        self.track.controller(down + 45, 64, 127)
        self.track.controller(up - 6, 64, 0)

    def keyswitch(self, tick, key):
        self.track.note(tick - 24, 20, key, 100)


def play_figure(player, start, names, level):
    for half, echo in ((0, 0.0), (1, -6.0)):
        begin = start + half * BAR // 2
        player.play(begin, 7.9 * SIXTEENTH, names[0], level + 7 + echo / 2)
        player.play(begin + SIXTEENTH, 6.9 * SIXTEENTH, names[1], level - 3 + echo / 2)
        for step in range(6):
            accent = (-6.0, -2.0, 5.0)[step % 3] - (2.0 if step > 2 else 0.0)
            tick = begin + (2 + step) * SIXTEENTH
            player.play(tick, 1.15 * SIXTEENTH, names[2 + step % 3], level + accent + echo)
    player.pedal(start, start + BAR)


def play_run(player, start, bass, run, level):
    low, tenor = bass.split()
    player.play(start, 15.8 * SIXTEENTH, low, level + 6)
    player.play(start + SIXTEENTH, 14.8 * SIXTEENTH, tenor, level - 2)
    player.keyswitch(start + 2 * SIXTEENTH, MALLET_SWITCH)
    names = run.split()
    for step, name in enumerate(names):
        swell = 10.0 * math.sin(math.pi * (step + 1) / len(names))
        player.play(start + (2 + step) * SIXTEENTH, 1.2 * SIXTEENTH, name, level - 4 + swell)
    player.keyswitch(start + BAR, TINE_SWITCH)
    player.pedal(start, start + BAR // 2)
    player.pedal(start + BAR // 2, start + BAR)


def play_last_chord(player, start, level):
    for index, name in enumerate(LAST_CHORD.split()):
        roll = 34 * index
        player.play(start + roll, 0.8 * BAR - roll, name, level + (6, -2, -4, -2, 4)[index])
    player.pedal(start, start + 0.82 * BAR)


def tempo_track(last_bar):
    track = midi_file.Track()
    track.text(3, "Prelude in C major, BWV 846")
    track.text(2, "J. S. Bach, 1722; public domain")
    track.add(0, b"\xff\x58\x04\x04\x02\x18\x08", -1)  # 4/4
    for eighth in range(8 * last_bar):
        track.tempo(eighth * QUARTER / 2, glide(PACE, 1 + eighth / 8))
    return track


def song():
    track = midi_file.Track()
    track.text(3, "Lantern Tines")
    player = Player(track)
    player.keyswitch(24, TINE_SWITCH)
    lead_in = QUARTER // 2
    bars = FIGURES.replace("\n", "|").strip("|").split("|")
    for index, bar in enumerate(bars):
        *names, level = bar.split()
        play_figure(player, lead_in + index * BAR, names, float(level))
    for index, (bass, run, level) in enumerate(RUNS):
        play_run(player, lead_in + (len(bars) + index) * BAR, bass, run, level)
    last = len(bars) + len(RUNS)
    play_last_chord(player, lead_in + last * BAR, LAST_LEVEL)
    return [tempo_track(last + 1), track]


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__.strip())
    tracks = song()
    midi_file.write(sys.argv[1], tracks, QUARTER)
    print(f"{sys.argv[1]}: {sum(track.note_count() for track in tracks)} notes")


if __name__ == "__main__":
    main()
