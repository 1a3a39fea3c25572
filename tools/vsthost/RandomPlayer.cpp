// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/vsthost/RandomPlayer.h"

#include <algorithm>

namespace zarno {
namespace {

constexpr int channels = 3, keys = 128;
constexpr int noteOff = 0x80, noteOn = 0x90, aftertouch = 0xA0, controller = 0xB0, program = 0xC0,
              pressure = 0xD0, bend = 0xE0;

} // namespace

void RandomPlayer::add(int offset, int status, int data1, int data2) {
    const auto at = static_cast<std::size_t>(list_.numEvents++);
    Vst2::VstMidiEvent& event = events_[at];
    event.type = Vst2::kVstMidiType;
    event.byteSize = sizeof event;
    event.deltaFrames = offset;
    event.midiData[0] = static_cast<char>(status);
    event.midiData[1] = static_cast<char>(data1);
    event.midiData[2] = static_cast<char>(data2);
    list_.events[at] = reinterpret_cast<Vst2::VstEvent*>(&event);
}

int RandomPlayer::anyController() {
    static constexpr int heard[] = {1,  5,  6,  7, 8,  10, 11, 64, 64,  64,
                                    68, 91, 91, 1, 11, 64, 20, 32, 127, 126};
    if (below(200) == 0) return below(3) == 0 ? 121 : below(2) == 0 ? 120 : 123;
    return heard[below(static_cast<int>(std::size(heard)))];
}

void RandomPlayer::addAny(int frames) {
    const int offset = below(50) == 0 ? frames + below(5000) : below(frames);
    const int channel = below(20) == 0 ? below(channels) : 0, value = below(128);
    const int choice = below(100);
    if (choice < 45)
        add(offset, noteOn | channel, 24 + below(80), value);
    else if (choice < 75)
        add(offset, noteOff | channel, 24 + below(80), 0);
    else if (choice < 87)
        add(offset, controller | channel, anyController(), value);
    else if (choice < 95)
        add(offset, bend | channel, below(128), value);
    else if (choice < 97)
        add(offset, aftertouch | channel, below(keys), value);
    else if (choice < 98)
        add(offset, pressure | channel, value, 0);
    else
        add(offset, program | channel, below(4), 0);
}

Vst2::VstEvents& RandomPlayer::play(int frames, int events) {
    list_.numEvents = 0;
    for (int i = 0; i < std::min(events, mostEvents); ++i)
        addAny(frames);
    if (below(4) != 0)
        std::sort(events_.begin(), events_.begin() + list_.numEvents,
                  [](const auto& a, const auto& b) { return a.deltaFrames < b.deltaFrames; });
    return list_;
}

Vst2::VstEvents& RandomPlayer::end(int part) {
    list_.numEvents = 0;
    if (part < endings - 1) {
        for (int key = 0; key < mostEvents; ++key)
            add(0, noteOff | (part / 2), key + mostEvents * (part % 2), 0);
    } else {
        add(0, controller, 64, 0);
        add(0, controller, 123, 0);
    }
    return list_;
}

} // namespace zarno
