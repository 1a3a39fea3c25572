// SPDX-License-Identifier: GPL-3.0-or-later
// What a note costs the audio thread against the size of the instrument. Each iteration is a note-on and its
// note-off in one block of one sample; "none" is the same block without them.
#include "bench/BenchInstrument.h"

#include <benchmark/benchmark.h>

namespace zarno::bench {
namespace {

constexpr int lowestKey = 24, keys = 80;

void fillGroups(ZInstrument& instrument, int groups, int zones, SelectionMode mode) {
    const auto memory = makeNoise(2000, 2, true);
    for (int g = 0; g < groups; ++g) {
        ZGroup& group = instrument.createGroup("group");
        group.record.selectionMode = static_cast<std::int32_t>(mode);
        // Velocity layers over all keys, dealt out to the groups: a note finds one zone in one of them.
        for (int z = g; z < zones; z += groups) {
            const int key = lowestKey + z % keys;
            auto zone = makeZone(memory, key, key);
            zone->record.lowVelocity = zone->record.highVelocity = 1 + z / keys % 250;
            zone->record.release = 0.0f;
            group.addZone(std::move(zone));
        }
    }
}

void playNotes(benchmark::State& state, SelectionMode mode, bool withNotes) {
    ZInstrument instrument;
    setVoices(instrument, 64);
    fillGroups(instrument, static_cast<int>(state.range(1)), static_cast<int>(state.range(0)), mode);
    float left = 0.0f, right = 0.0f;
    float* outputs[] = {&left, &right};
    int note = 0;
    for (auto _ : state) {
        if (withNotes) {
            const int key = lowestKey + note++ % keys;
            instrument.postEvent(midi::noteOn, 0, key, 1, 0);
            instrument.postEvent(midi::noteOff, 0, key, 0, 0);
        }
        instrument.renderBlock(outputs, 2, 1);
        benchmark::DoNotOptimize(left);
    }
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"zones", "groups"});
    for (const int zones : {100, 1000, 5000, 20000})
        benchmark->Args({zones, 1});
    for (const int groups : {10, 100, 500})
        benchmark->Args({20000, groups});
}

BENCHMARK_CAPTURE(playNotes, none, SelectionMode::Stack, false)->Args({100, 1})->Args({20000, 500});
BENCHMARK_CAPTURE(playNotes, stack, SelectionMode::Stack, true)->Apply(sizes);
BENCHMARK_CAPTURE(playNotes, round_robin, SelectionMode::RoundRobin, true)->Apply(sizes);

} // namespace
} // namespace zarno::bench
