// SPDX-License-Identifier: GPL-3.0-or-later
// Nanoseconds per voice and frame. "plain" is the reference engine of the tests, sample by sample; "exact"
// the engine with its kernels off, so that every frame is rendered by the voices themselves.
#include "bench/BenchInstrument.h"
#include "tests/reference/PlainInstrument.h"

#include <benchmark/benchmark.h>

namespace zarno::bench {
namespace {

enum Form { plain, exact, sse2, avx2 };

struct Sounding {
    ManualClock clock;
    ZInstrument instrument{clock};
    std::unique_ptr<PlainInstrument> reference;
    std::vector<float> left, right;

    Sounding(int voices, int quality, int channels, bool sixteenBit, int block, Form form)
        : left(static_cast<std::size_t>(block))
        , right(left) {
        setVoices(instrument, voices);
        instrument.settings().quality = quality;
        const VoiceKernels* kernels[] = {nullptr, nullptr, &sse2Kernels(), avx2Kernels()};
        instrument.useKernels(kernels[form]);
        ZGroup& group = instrument.createGroup("notes");
        auto zone = makeZone(makeNoise(44100 * 4, channels, sixteenBit), 0, 127);
        zone->record.loopMode = 2;
        zone->record.loopStart = 1000;
        zone->record.loopEnd = zone->record.endFrame;
        group.addZone(std::move(zone));
        instrument.activateGroup(&group);
        if (form == plain) {
            reference = std::make_unique<PlainInstrument>(instrument.groups(), instrument.settings(), clock);
            reference->activateGroup(0);
        }
        for (int i = 0; i < voices; ++i)
            post(midi::noteOn, 48 + i % 24, 100);
        post(midi::pitchBend, 1, 70); // so that positions are not whole frames
        for (int warmUp = 0; warmUp < 2000; warmUp += block)
            render();
    }

    void post(int type, int data1, int data2) {
        if (reference)
            reference->postEvent(type, 0, data1, data2, 0);
        else
            instrument.postEvent(type, 0, data1, data2, 0);
    }

    void render() {
        const int frames = static_cast<int>(left.size());
        float* outputs[] = {left.data(), right.data()};
        if (reference)
            reference->renderBlock(left.data(), right.data(), frames);
        else
            instrument.renderBlock(outputs, 2, frames);
    }

    int playing() const { return reference ? reference->playingVoices() : instrument.playingVoices(); }
};

void renderVoices(benchmark::State& state, Form form) {
    if (form == avx2 && avx2Kernels() == nullptr) return state.SkipWithError("no AVX2 here");
    const auto arg = [&](std::size_t i) { return static_cast<int>(state.range(i)); };
    Sounding sounding(arg(0), arg(1), arg(2), arg(3) == 16, arg(4), form);
    for (auto _ : state) {
        sounding.render();
        benchmark::DoNotOptimize(sounding.left.data());
    }
    if (sounding.playing() != arg(0)) state.SkipWithError("voices have ended");
    state.counters["per_voice_frame"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * arg(0) * arg(4),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void cases(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"voices", "quality", "channels", "bits", "block"});
    for (const int voices : {1, 8, 32, 128, 512})
        benchmark->Args({voices, 2, 2, 16, 512});
    for (const int quality : {0, 1})
        benchmark->Args({128, quality, 2, 16, 512});
    for (const int block : {16, 64, 4096})
        benchmark->Args({128, 2, 2, 16, block});
    benchmark->Args({128, 2, 1, 16, 512});
    benchmark->Args({128, 2, 2, 32, 512});
    benchmark->Args({128, 2, 1, 32, 512});
}

BENCHMARK_CAPTURE(renderVoices, plain, plain)->Apply(cases);
BENCHMARK_CAPTURE(renderVoices, exact, exact)->Apply(cases);
BENCHMARK_CAPTURE(renderVoices, sse2, sse2)->Apply(cases);
BENCHMARK_CAPTURE(renderVoices, avx2, avx2)->Apply(cases);

} // namespace
} // namespace zarno::bench
