// SPDX-License-Identifier: GPL-3.0-or-later
// Songs as standard MIDI files say them.
#include "data/Limits.h"
#include "tests/support/SongBytes.h"
#include "tests/support/TempFolder.h"
#include "tools/common/SongReader.h"

#include <gmock/gmock.h>

namespace zarno {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

// A note of 100 ticks, once more after 100, from two tracks' ends that differ.
constexpr auto notes = "\0\x90\x3C\x40\x64\x80\x3C\0\x64\x91\x3D\x40\x64\x3D\0\0\xFF\x2F\0"sv;
constexpr auto secondTempo =
    "\x64\xFF\x51\3\x0F\x42\x40\x82\x2C\xFF\x2F\0"sv; // at 100: 1 s a quarter; ends at 400

std::optional<Song> read(const std::string& bytes, std::string& error) {
    const test::TempFolder folder;
    return readSong(folder.write("song.mid", bytes), error);
}

TEST(SongFiles, TicksBecomeSecondsByTempoOrByFrames) {
    const struct {
        unsigned timeFormat;
        std::vector<std::string_view> tracks;
        std::vector<double> seconds;
        double length;
    } songs[] = {
        {100, {notes}, {0.0, 0.5, 1.0, 1.5}, 1.5},
        {100, {notes, secondTempo}, {0.0, 0.5, 1.5, 2.5}, 3.5},
        {100, {secondTempo, notes}, {0.0, 0.5, 1.5, 2.5}, 3.5},
        {0xE764, {notes, secondTempo}, {0.0, 0.04, 0.08, 0.12}, 0.16}, // 25 frames of 100 ticks
        {0xE328, {notes}, {0.0, 1001 / 12000.0, 1001 / 6000.0, 1001 / 4000.0}, 1001 / 4000.0},
    };
    for (const auto& expected : songs) {
        std::string error;
        const auto song = read(test::songBytes(expected.timeFormat, expected.tracks), error);
        ASSERT_TRUE(song) << error;
        EXPECT_EQ(song->noteCount(), 2);
        EXPECT_DOUBLE_EQ(song->lengthSeconds, expected.length);
        std::vector<double> seconds;
        for (const SongEvent& event : song->events)
            seconds.push_back(event.seconds);
        EXPECT_THAT(seconds, testing::Pointwise(testing::DoubleEq(), expected.seconds));
        EXPECT_EQ(song->events[2].channel(), 1);
    }
}

TEST(SongFiles, ThoseThatMakeNoSenseAreRefused) {
    const std::string days = "\0\xFF\x51\3\xFF\xFF\xFF\xFF\xFF\xFF\x7F\x90\x3C\x40\0\xFF\x2F\0"s;
    const std::pair<std::string, const char*> songs[] = {
        {test::songBytes(0, {notes}), "is not a standard MIDI file"},
        {test::songBytes(0xE700, {notes}), "is not a standard MIDI file"}, // frames of no ticks
        {test::songBytes(0x8000, {notes}), "is not a standard MIDI file"},
        {test::songBytes(100, {notes}).substr(0, 30), "is not a standard MIDI file"},
        {test::songBytes(1, {days}), "is longer than a day"},
        {std::string(limits::songBytes + 1, '\0'), "cannot read "},
    };
    for (const auto& [bytes, reason] : songs) {
        std::string error;
        EXPECT_FALSE(read(bytes, error)) << reason;
        EXPECT_THAT(error, testing::HasSubstr(reason));
    }
}

} // namespace
} // namespace zarno
