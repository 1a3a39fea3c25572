// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <vector>

namespace zarno {

// The public Freeverb algorithm (Jezar at Dreampoint, 2000, public domain): per channel eight parallel
// feedback combs with one-pole damping, then four allpasses in series. Room size, damping, wet level and
// width are fixed; only the send belongs to the instrument. Audio thread.
class ZReverb {
  public:
    ZReverb();

    // Scales the delays to the rate (Hz) and clears them when it changes. Allocates above 384 kHz only.
    void setSampleRate(double sampleRate);

    // Adds the reverb of (left, right) x send to the same samples. A state that is no longer finite is
    // cleared, and the sample at which it was found gets none.
    void process(float* left, float* right, int count, float send);

  private:
    class Comb {
      public:
        void resize(int length);
        void clear();
        void add(const float* input, float* sum, int count);

      private:
        std::vector<float> buffer_;
        std::size_t index_ = 0;
        float store_ = 0.0f;
    };
    class Allpass {
      public:
        void resize(int length);
        void clear();
        void run(float* inOut, int count);

      private:
        std::vector<float> buffer_;
        std::size_t index_ = 0;
    };
    struct Channel {
        std::array<Comb, 8> combs;
        std::array<Allpass, 4> allpasses;
        void wet(const float* input, float* output, int count);
    };

    void processPart(float* left, float* right, int count, float send);
    void clear();

    std::array<Channel, 2> channels_;
    double sampleRate_ = 0.0;
    bool wild_ = false; // an input so large was seen that the state may stop being finite
};

} // namespace zarno
