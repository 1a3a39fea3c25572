# SPDX-License-Identifier: GPL-3.0-or-later
"""Just enough of a Standard MIDI File writer: type 1, one list of timed messages a track."""

import struct


def variable_length(number):
    out = [number & 0x7F]
    while number := number >> 7:
        out.append(0x80 | (number & 0x7F))
    return bytes(reversed(out))


class Track:
    def __init__(self):
        self.events = []

    def add(self, tick, message, order=0):
        """`order` sorts messages of one tick; equal ones keep the order in which they were added."""
        self.events.append((max(0, round(tick)), order, bytes(message)))

    def text(self, kind, words):
        data = words.encode("utf-8")
        self.add(0, bytes([0xFF, kind]) + variable_length(len(data)) + data, -1)

    def tempo(self, tick, beats_per_minute):
        self.add(tick, b"\xff\x51\x03" + round(60e6 / beats_per_minute).to_bytes(3, "big"))

    def note(self, tick, length, key, velocity, channel=0):
        self.add(tick, (0x90 | channel, key, max(1, min(127, round(velocity)))), 1)
        self.add(tick + length, (0x80 | channel, key, 64))

    def controller(self, tick, number, value, channel=0):
        self.add(tick, (0xB0 | channel, number, value))

    def note_count(self):
        return sum(message[0] & 0xF0 == 0x90 for _, _, message in self.events)

    def chunk(self):
        body, now = b"", 0
        for tick, _, message in sorted(self.events, key=lambda event: event[:2]):
            body += variable_length(tick - now) + message
            now = tick
        body += b"\x00\xff\x2f\x00"
        return b"MTrk" + struct.pack(">I", len(body)) + body


def write(path, tracks, ticks_per_quarter):
    header = b"MThd" + struct.pack(">IHHH", 6, 1, len(tracks), ticks_per_quarter)
    with open(path, "wb") as out:
        out.write(header + b"".join(track.chunk() for track in tracks))
