// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/common/SongReader.h"

#include "data/Limits.h"
#include "platform/File.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <algorithm>

namespace zarno {
namespace {

bool readWhole(const std::string& path, std::vector<char>& bytes) {
    File file(path);
    if (!file.isOpen() || file.size() > limits::songBytes) return false;
    bytes.resize(static_cast<std::size_t>(file.size()));
    return file.read(bytes.data(), bytes.size()) == bytes.size();
}

bool isChannelMessage(const juce::MidiMessage& message) {
    return message.getRawDataSize() <= 3 && message.getRawData()[0] >= 0x80 && message.getRawData()[0] < 0xF0;
}

SongEvent toEvent(const juce::MidiMessage& message) {
    SongEvent event;
    event.seconds = message.getTimeStamp();
    event.size = message.getRawDataSize();
    std::copy_n(message.getRawData(), event.size, event.bytes);
    return event;
}

} // namespace

int Song::noteCount() const {
    return static_cast<int>(
        std::count_if(events.begin(), events.end(), [](const SongEvent& event) { return event.isNoteOn(); }));
}

std::optional<Song> readSong(const std::string& path, std::string& error) {
    std::vector<char> bytes;
    juce::MidiFile file;
    if (!readWhole(path, bytes)) {
        error = "cannot read " + path;
        return std::nullopt;
    }
    juce::MemoryInputStream stream(bytes.data(), bytes.size(), false);
    if (!file.readFrom(stream, false)) {
        error = path + " is not a standard MIDI file";
        return std::nullopt;
    }
    file.convertTimestampTicksToSeconds();
    Song song;
    song.lengthSeconds = std::max(file.getLastTimestamp(), 0.0);
    for (int track = 0; track < file.getNumTracks(); ++track)
        for (const auto* holder : *file.getTrack(track))
            if (isChannelMessage(holder->message)) song.events.push_back(toEvent(holder->message));
    std::stable_sort(song.events.begin(), song.events.end(),
                     [](const SongEvent& a, const SongEvent& b) { return a.seconds < b.seconds; });
    return song;
}

} // namespace zarno
