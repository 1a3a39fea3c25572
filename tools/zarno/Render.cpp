// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/Render.h"

#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tools/common/Levels.h"
#include "tools/common/ProgressBar.h"
#include "tools/common/SongReader.h"
#include "tools/common/WavWriter.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace zarno {
namespace {

constexpr double silence = 1e-5; // -100 dB: a tail below it is over

class Renderer {
  public:
    Renderer(const RenderOptions& options, ZInstrument& instrument, const Song& song)
        : options_(options)
        , instrument_(instrument)
        , song_(song)
        , left_(static_cast<std::size_t>(options.block))
        , right_(left_) {}

    void renderTo(WavWriter& writer) {
        const double end = song_.lengthSeconds;
        ProgressBar progress("Rendering");
        while (seconds() < end || (!isOver() && seconds() < end + options_.tailSeconds)) {
            renderBlock();
            const float* channels[] = {left_.data(), right_.data()};
            if (!writer.write(channels, options_.block))
                throw std::runtime_error(options_.out + ": cannot write");
            if (end > 0.0) progress.show(seconds() / end);
        }
    }

    double seconds() const { return static_cast<double>(frames_) / options_.rate; }
    const Levels& levels() const { return levels_; }
    int mostVoices() const { return mostVoices_; }

  private:
    void renderBlock() {
        postEvents();
        float* outputs[] = {left_.data(), right_.data()};
        instrument_.renderBlock(outputs, 2, options_.block);
        frames_ += options_.block;
        mostVoices_ = std::max(mostVoices_, instrument_.playingVoices());
        Levels block;
        for (const auto* channel : {&left_, &right_}) {
            block.add(channel->data(), channel->size());
            levels_.add(channel->data(), channel->size());
        }
        blockPeak_ = block.peak();
    }

    void postEvents() {
        for (; next_ < song_.events.size(); ++next_) {
            const SongEvent& event = song_.events[next_];
            const auto at = static_cast<std::int64_t>(event.seconds * options_.rate + 0.5);
            if (at >= frames_ + options_.block) return;
            instrument_.postEvent(event.type(), event.channel(), event.bytes[1], event.bytes[2],
                                  static_cast<std::uint32_t>(at - frames_));
        }
    }

    bool isOver() const { return instrument_.playingVoices() == 0 && blockPeak_ < silence; }

    const RenderOptions& options_;
    ZInstrument& instrument_;
    const Song& song_;
    std::vector<float> left_, right_;
    std::size_t next_ = 0;
    std::int64_t frames_ = 0;
    Levels levels_;
    double blockPeak_ = 0.0;
    int mostVoices_ = 0;
};

void load(ZInstrument& instrument, const std::string& path) {
    const LoadResult result = loadInstrument(instrument, path);
    if (!result) throw std::runtime_error(sentence(result.problem));
    for (const std::string& missing : result.missing)
        std::fprintf(stderr, "missing sample: %s\n", missing.c_str());
    for (const std::string& unsupported : result.unsupported)
        std::fprintf(stderr, "sample of unknown format: %s\n", unsupported.c_str());
    if (result.problem) std::fprintf(stderr, "%s\n", sentence(result.problem).c_str());
}

struct KeyRange {
    int low = 127, high = 0;
    bool isEmpty() const { return low > high; }
    void add(int key) { low = std::min(low, key), high = std::max(high, key); }
    std::string text() const { return std::to_string(low) + " to " + std::to_string(high); }
};

// The most likely reason, in the order in which a maker would look for it.
std::string whySilent(const ZInstrument& instrument, const Song& song, int mostVoices) {
    KeyRange played, zones;
    for (const SongEvent& event : song.events)
        if (event.type() == midi::noteOn && event.bytes[2] > 0) played.add(event.bytes[1]);
    for (const auto& group : instrument.groups())
        for (const auto& zone : group->zones())
            zones.add(zone->record.lowKey), zones.add(zone->record.highKey);
    if (played.isEmpty()) return "the song has no notes";
    if (zones.isEmpty()) return "the instrument has no zone whose sample can be read";
    if (mostVoices > 0)
        return "its voices play too softly to be heard: look at volumes, envelopes and samples";
    if (played.high < zones.low || played.low > zones.high)
        return "the song plays the keys " + played.text() + ", the zones have the keys " + zones.text();
    return "no zone answers to its notes: look at the groups' triggers, keys and velocities";
}

void printStats(const StreamStats& stats) {
    std::printf(
        "streaming: at most %d voices, %llu refills, %llu late, %llu failed, %.1f MB read at %.0f MB/s\n",
        stats.mostVoices, static_cast<unsigned long long>(stats.refills),
        static_cast<unsigned long long>(stats.lateRefills),
        static_cast<unsigned long long>(stats.failedRefills), static_cast<double>(stats.bytesRead) / 1e6,
        stats.megabytesPerSecond());
}

void renderOrThrow(const RenderOptions& options) {
    std::string error;
    const auto song = readSong(options.song, error);
    if (!song) throw std::runtime_error(error);

    ZInstrument instrument;
    instrument.setSampleRate(static_cast<float>(options.rate));
    instrument.setOffline(!options.realtime);
    if (options.seed) instrument.seedRandom(*options.seed);
    load(instrument, options.instrument);

    WavWriter writer;
    if (!writer.open(options.out, options.rate, 2, static_cast<WavWriter::Format>(options.bits)))
        throw std::runtime_error(options.out + ": cannot write");
    Renderer renderer(options, instrument, *song);
    renderer.renderTo(writer);
    if (!writer.close()) throw std::runtime_error(options.out + ": cannot write");

    const Levels& levels = renderer.levels();
    std::printf("%s: %.1f s, %d notes, at most %d voices, peak %.1f dB, RMS %.1f dB\n", options.out.c_str(),
                renderer.seconds(), song->noteCount(), renderer.mostVoices(), toDecibels(levels.peak()),
                toDecibels(levels.rms()));
    if (options.stats) printStats(instrument.streamStats());
    if (levels.peak() < silence)
        throw std::runtime_error(options.out +
                                 ": this is silent: " + whySilent(instrument, *song, renderer.mostVoices()));
}

} // namespace

int render(const RenderOptions& options) {
    try {
        renderOrThrow(options);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zarno: %s\n", error.what());
        return 1;
    }
}

} // namespace zarno
