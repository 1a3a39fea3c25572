// SPDX-License-Identifier: GPL-3.0-or-later
// A standard MIDI file, as one is given to be rendered.
#include "tests/fuzz/run/Target.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/SongBytes.h"
#include "tools/common/SongReader.h"

namespace zarno::fuzz {
namespace {

using namespace std::string_view_literals;

void run(std::string_view input) {
    static const test::ScratchFolder folder("song");
    std::string error;
    const auto song = readSong(folder.write("x.mid", input), error);
    require(song || !error.empty(), "refused in words");
    if (!song) return;
    double now = 0.0;
    for (const SongEvent& event : song->events) {
        require(event.seconds >= now && event.seconds <= song->lengthSeconds, "events in the order of time");
        require(event.size == 2 || event.size == 3, "whole messages");
        now = event.seconds;
    }
}

std::vector<std::string> seeds() {
    constexpr auto tempo = "\x64\xFF\x51\3\x0F\x42\x40\x82\x2C\xFF\x58\4\4\2\x18\x08\0\xFF\x2F\0"sv;
    constexpr auto notes = "\0\xC0\5\0\x90\x3C\x40\x64\x3D\x40\0\xF0\3ab\xF7\x81\0\x80\x3C\0\0\xFF\x2F\0"sv;
    return {test::songBytes(96, {tempo, notes}), test::songBytes(0xE728, {notes}),
            "RIFFsizeRMIDdatasize" + test::songBytes(1, {notes, notes, tempo})};
}

const Registered registered(
    {"song_file", 20000, run, seeds, {"MTrk", "MThd", "\xFF\x51\3", "\xFF\x2F", "\xF0", "\xF7", "\xFF\x7F"}});

} // namespace
} // namespace zarno::fuzz
