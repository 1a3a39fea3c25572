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

bool isTempo(const juce::MidiMessage& message) {
    return message.isTempoMetaEvent() && message.getMetaEventLength() >= 3;
}

// What the file's header says of a tick: seconds when tempos do not count, quarter notes when they do.
struct TickLength {
    double length = 0.0; // 0: the header makes no sense
    bool isOfQuarter = true;
};

TickLength tickLength(short timeFormat) {
    if (timeFormat >= 0) return {timeFormat == 0 ? 0.0 : 1.0 / timeFormat, true};
    const int framesPerSecond = -(timeFormat >> 8), ticksPerFrame = timeFormat & 0xFF;
    if (framesPerSecond < 24 || framesPerSecond > 30 || ticksPerFrame == 0) return {};
    const double rate = framesPerSecond == 29 ? 30.0 / 1.001 : framesPerSecond; // 29: 30 with frames dropped
    return {1.0 / (rate * ticksPerFrame), false};
}

// Tells the time of ticks that come in their order.
class SongClock {
  public:
    explicit SongClock(const TickLength& tick)
        : tick_(tick)
        , secondsPerTick_(tick.length * (tick.isOfQuarter ? 0.5 : 1.0)) {} // 120 quarters a minute at first

    double secondsAt(double tick) const { return seconds_ + (tick - at_) * secondsPerTick_; }

    void setTempo(double tick, double secondsPerQuarter) {
        if (!tick_.isOfQuarter) return;
        seconds_ = secondsAt(tick);
        at_ = tick;
        secondsPerTick_ = tick_.length * secondsPerQuarter;
    }

  private:
    TickLength tick_;
    double secondsPerTick_;
    double at_ = 0.0, seconds_ = 0.0;
};

// Channel messages and tempos of all tracks, by their ticks.
std::vector<const juce::MidiMessage*> merged(const juce::MidiFile& file) {
    std::vector<const juce::MidiMessage*> all;
    for (int track = 0; track < file.getNumTracks(); ++track)
        for (const auto* holder : *file.getTrack(track))
            if (isChannelMessage(holder->message) || isTempo(holder->message))
                all.push_back(&holder->message);
    std::stable_sort(all.begin(), all.end(),
                     [](const auto* a, const auto* b) { return a->getTimeStamp() < b->getTimeStamp(); });
    return all;
}

Song toSong(const juce::MidiFile& file) {
    SongClock clock(tickLength(file.getTimeFormat()));
    Song song;
    for (const juce::MidiMessage* message : merged(file)) {
        const double tick = message->getTimeStamp();
        if (isTempo(*message)) {
            clock.setTempo(tick, message->getTempoSecondsPerQuarterNote());
            continue;
        }
        SongEvent event;
        event.seconds = clock.secondsAt(tick);
        event.size = message->getRawDataSize();
        std::copy_n(message->getRawData(), event.size, event.bytes);
        song.events.push_back(event);
    }
    song.lengthSeconds = clock.secondsAt(file.getLastTimestamp());
    return song;
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
    if (!file.readFrom(stream, false) || tickLength(file.getTimeFormat()).length == 0.0) {
        error = path + " is not a standard MIDI file";
        return std::nullopt;
    }
    Song song = toSong(file);
    if (song.lengthSeconds > limits::songSeconds) {
        error = path + " is longer than a day";
        return std::nullopt;
    }
    return song;
}

} // namespace zarno
