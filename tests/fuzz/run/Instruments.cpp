// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/fuzz/run/Instruments.h"

#include "tests/support/InstrumentBuilder.h"

namespace zarno::fuzz {
namespace {

using namespace test;

InstrumentBuilder smallInstrument(bool embedded, bool streaming) {
    InstrumentBuilder file;
    file.storage = embedded;
    file.settings.streamingStored = streaming;
    file.settings.streamBufferFramesStored = 8;
    file.settings.polyphonyStored = 4;
    file.image = "PNG", file.layout = "<x/>", file.licences = {"l"};
    const std::string frames(64, 'f');
    const auto sample = [&](int width) { return embedded ? block(width, 44100, 1, 32, frames) : ""; };
    file.groups = {{"A", {}, {zone("a.wav", sample(2)), zone("a.wav")}, {}},
                   {"B", {}, {zone("b.wav", sample(2))}, {}}};
    file.groups[1].zones[0].record.loopMode = 2;
    return file;
}

} // namespace

std::vector<std::string> instrumentSeeds() {
    std::vector<std::string> seeds;
    for (const bool embedded : {false, true})
        for (const bool streaming : {false, true})
            seeds.push_back(smallInstrument(embedded, streaming).bytes());
    auto wide = smallInstrument(true, false);
    wide.settings.sixteenBitStored = 0;
    wide.groups.push_back({"six", {}, {zone("c", block(4, 48000, 6, 2, std::string(48, 'x')))}, {}});
    auto lying = smallInstrument(true, false);
    lying.imageSize = lying.groupCount = INT32_MAX;
    for (const auto& bytes : {wide.bytes(), lying.bytes()})
        seeds.push_back(bytes);
    return seeds;
}

} // namespace zarno::fuzz
