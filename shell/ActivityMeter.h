// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <atomic>

namespace zarno {

/// What the audio thread does, for the window: the output's level and the share of its time. The audio thread pays
/// a look through the block, two looks at a clock and one store for each block.
class ActivityMeter {
  public:
    struct Reading {
        float peak = 0.0f;        ///< of both channels, linear; falls by 20 dB in 0.75 s
        double cpu = 0.0;         ///< share of the time that a block lasts, smoothed
        std::uint32_t blocks = 0; ///< counted from the start
    };
    /// [any]
    Reading read() const;

    /// [audio] Measures one block from its construction to its end.
    class Block {
      public:
        Block(ActivityMeter& meter, const juce::AudioBuffer<float>& audio, double sampleRate)
            : meter_(meter)
            , audio_(audio)
            , sampleRate_(sampleRate)
            , start_(juce::Time::getHighResolutionTicks()) {}
        ~Block();
        Block(const Block&) = delete;
        Block& operator=(const Block&) = delete;

      private:
        ActivityMeter& meter_;
        const juce::AudioBuffer<float>& audio_;
        const double sampleRate_;
        const juce::int64 start_;
    };

  private:
    std::atomic<std::uint64_t> published_{0}; // blocks, cpu and peak in one word
    float peak_ = 0.0f;                       // these three: audio thread
    double cpu_ = 0.0;
    std::uint32_t blocks_ = 0;
};

} // namespace zarno
