// SPDX-License-Identifier: GPL-3.0-or-later
// What a host keeps in its project, given back to an instrument of three groups.
#include "engine/ZGroup.h"
#include "shell/HostChunk.h"
#include "tests/fuzz/run/Target.h"
#include "tests/support/TestInstrument.h"

#include <algorithm>
#include <cstring>

namespace zarno::fuzz {
namespace {

TestInstrument& instrument() {
    static TestInstrument made(4);
    if (made.engine.groups().empty())
        for (const float level : {0.1f, 0.2f, 0.3f})
            made.addLevel(level);
    return made;
}

void apply(const ChunkState& state) {
    TestInstrument& t = instrument();
    if (state.settings) takeRestoredFields(t.engine.settings(), *state.settings);
    t.engine.requestApplySettings();
    for (std::size_t i = 0; i < state.groups.size(); ++i) {
        copyGroup(t.engine.groups()[i]->record, state.groups[i]);
        t.engine.prepareZones(*t.engine.groups()[i]);
    }
    t.engine.deactivateAllGroups();
    if (state.currentGroup.value_or(-1) >= 0)
        t.engine.activateGroup(t.engine.groups()[static_cast<std::size_t>(*state.currentGroup)].get());
    t.noteOn(60);
    const Stereo out = t.render(200);
    for (const auto& side : {out.left, out.right})
        require(std::ranges::all_of(side, [](float x) { return x >= -1 && x <= 1; }), "a sound comes out");
    t.engine.requestStop();
}

void run(std::string_view input) {
    const std::span chunk(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    const ChunkParts parts = splitChunk(chunk);
    for (const std::size_t groups : {0u, 5u, 3u}) {
        const ChunkState state = decodeTail(parts.tail, groups);
        require(state.groups.empty() || state.groups.size() == groups, "all group records or none");
        require(!state.currentGroup ||
                    (*state.currentGroup >= -1 &&
                     *state.currentGroup < static_cast<std::int32_t>(std::max<std::size_t>(groups, 1))),
                "the current group is one of them");
        if (groups == 3) apply(state);
    }
    const auto again = encodeChunkPath(parts.path);
    require(parts.path.starts_with(splitChunk(again).path), "what is said of the path is how it begins");
}

std::vector<std::string> seeds() {
    const auto& engine = instrument().engine;
    std::vector<std::string> all;
    for (const char* path : {"/library/piano.zse", ""}) {
        const auto chunk = encodeChunk(path, engine.settings(), 1, engine.groups());
        all.emplace_back(chunk.begin(), chunk.end());
    }
    all.push_back(std::string(2000, 'x'));
    return all;
}

const Registered registered({"host_chunk", 2000, run, seeds});

} // namespace
} // namespace zarno::fuzz
