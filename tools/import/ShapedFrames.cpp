// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/ShapedFrames.h"

#include "engine/Interpolation.h"
#include "tools/import/Biquad.h"
#include "tools/import/LowPass.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace zarno {
namespace {

constexpr std::size_t mostChannels = 2;
using Frame = std::array<float, mostChannels>;

// The frames of a part one after the other, the loop again and again; silence after the end. A reversed part
// is read whole before it begins.
class PartFrames {
  public:
    PartFrames(const ImportedSample& source, const ShapedPart& part)
        : reader_(source.open())
        , sourceChannels_(static_cast<std::size_t>(std::max(source.format.channels, 1)))
        , name_(source.name)
        , part_(part) {
        while (frame_ < part_.start && refill(part_.start - frame_))
            frame_ += buffered_, next_ = buffered_;
        if (part_.shaping.isReversed && !part_.loops()) {
            while (frame_ < part_.end)
                reversed_.push_back(read());
        }
    }

    Frame next() {
        Frame frame{};
        if (!reversed_.empty()) {
            frame = reversed_.back();
            reversed_.pop_back();
        } else if (frame_ < part_.end) {
            const std::uint64_t at = frame_;
            frame = faded(read(), at);
            if (at >= part_.loopStart) loop_.push_back(frame);
        } else if (!loop_.empty()) {
            frame = loop_[inLoop_];
            inLoop_ = (inLoop_ + 1) % loop_.size();
        }
        return frame;
    }

  private:
    Frame read() {
        Frame frame{};
        if (next_ >= buffered_ && !refill(part_.end - frame_))
            throw MakerError(name_, "the sample ends before the length it states");
        for (std::size_t c = 0; c < std::min(sourceChannels_, mostChannels); ++c)
            frame[c] = buffer_[next_ * sourceChannels_ + c];
        ++next_;
        ++frame_;
        return frame;
    }
    // The end of a loop becomes what comes before its start.
    Frame faded(Frame frame, std::uint64_t at) {
        const std::uint64_t fade = part_.shaping.loopFade;
        if (fade == 0 || !part_.loops()) return frame;
        if (at < part_.loopStart && at + fade >= part_.loopStart) before_.push_back(frame);
        if (at + fade < part_.end) return frame;
        const std::uint64_t along = at + fade - part_.end;
        if (along >= before_.size()) return frame;
        const float share = static_cast<float>(along + 1) / static_cast<float>(fade + 1);
        for (std::size_t c = 0; c < mostChannels; ++c)
            frame[c] = std::lerp(frame[c], before_[static_cast<std::size_t>(along)][c], share);
        return frame;
    }
    bool refill(std::uint64_t most) {
        constexpr std::uint64_t piece = 4096;
        buffer_.resize(piece * sourceChannels_);
        buffered_ = static_cast<std::size_t>(reader_->read(buffer_.data(), std::min(most, piece)));
        next_ = 0;
        return buffered_ > 0;
    }

    std::unique_ptr<FrameReader> reader_;
    const std::size_t sourceChannels_;
    const std::string name_;
    const ShapedPart part_;
    std::vector<float> buffer_;
    std::size_t buffered_ = 0, next_ = 0;
    std::uint64_t frame_ = 0; // of the recording, read so far
    std::vector<Frame> loop_, before_, reversed_;
    std::size_t inLoop_ = 0;
};

// Reads frames at any speed, by a third-degree curve through four of them.
class BentFrames {
  public:
    BentFrames(const ImportedSample& source, const ShapedPart& part)
        : frames_(source, part) {
        for (std::size_t i = 1; i < window_.size(); ++i)
            window_[i] = frames_.next();
    }

    Frame read(double speed) {
        Frame frame = window_[1];
        if (const auto t = static_cast<float>(fraction_); t != 0.0f)
            for (std::size_t c = 0; c < mostChannels; ++c)
                frame[c] = interpolateMid(t, window_[0][c], window_[1][c], window_[2][c], window_[3][c]);
        for (fraction_ += speed; fraction_ >= 1.0; fraction_ -= 1.0) {
            std::rotate(window_.begin(), window_.begin() + 1, window_.end());
            window_.back() = frames_.next();
        }
        return frame;
    }

  private:
    PartFrames frames_;
    std::array<Frame, 4> window_{};
    double fraction_ = 0.0;
};

class ShapedFrames final : public FrameReader {
  public:
    ShapedFrames(const ImportedSample& source, const ShapedPart& part, std::uint64_t frames)
        : source_(source, part)
        , shaping_(part.shaping)
        , rate_(part.rate)
        , q_(shaping_.q())
        , frames_(frames)
        , silence_(static_cast<std::uint64_t>(shaping_.level.silence * rate_ / 1000.0))
        , channels_(std::min(mostChannels, static_cast<std::size_t>(std::max(source.format.channels, 1)))) {
        for (const ImportedBand& band : shaping_.bands)
            if (band.exists())
                for (std::size_t c = 0; c < mostChannels; ++c)
                    bands_[c].emplace_back(band, rate_);
    }

    std::uint64_t read(float* destination, std::uint64_t frames) override {
        frames = std::min(frames, frames_ - frame_);
        for (std::uint64_t i = 0; i < frames; ++i, destination += channels_)
            readFrame(destination);
        return frames;
    }

    std::uint64_t read(std::int16_t* destination, std::uint64_t frames) override {
        floats_.resize(static_cast<std::size_t>(std::min(frames, frames_ - frame_)) * channels_);
        frames = read(floats_.data(), frames);
        std::transform(floats_.begin(), floats_.end(), destination, [](float value) {
            return static_cast<std::int16_t>(std::lrintf(std::clamp(value * 32768.0f, -32768.0f, 32767.0f)));
        });
        return frames;
    }

  private:
    // What moves, moves by steps this short.
    void move() {
        constexpr std::uint64_t framesPerStep = 16;
        if (frame_ % framesPerStep != 0) return;
        const double time = 1000.0 * static_cast<double>(frame_) / rate_;
        gain_ = shaping_.levelAt(time);
        speed_ = shaping_.pitchAt(time);
        if (shaping_.cutoff <= 0.0) return;
        for (LowPass& filter : filters_)
            filter.set(shaping_.cutoffAt(time) / rate_, q_);
    }

    void readFrame(float* destination) {
        move();
        Frame frame = frame_ < silence_ ? Frame{} : source_.read(speed_);
        ++frame_;
        if (channels_ == 2 && shaping_.width != 1.0) {
            const auto keep = static_cast<float>(0.5 + 0.5 * shaping_.width);
            frame = {std::lerp(frame[1], frame[0], keep), std::lerp(frame[0], frame[1], keep)};
        }
        for (std::size_t c = 0; c < channels_; ++c) {
            double value = shaping_.cutoff > 0.0 ? filters_[c](frame[c]) : frame[c];
            for (Biquad& band : bands_[c])
                value = band(value);
            destination[c] = static_cast<float>(gain_ * value);
        }
    }

    BentFrames source_;
    const ImportedShaping shaping_;
    const double rate_, q_;
    const std::uint64_t frames_, silence_;
    const std::size_t channels_;
    std::array<LowPass, mostChannels> filters_;
    std::array<std::vector<Biquad>, mostChannels> bands_;
    double gain_ = 1.0, speed_ = 1.0;
    std::uint64_t frame_ = 0;
    std::vector<float> floats_;
};

// Until the filter's own ringing has fallen by 90 dB.
double settling(const ImportedShaping& shaping) {
    double low = 1e9, sharp = 0.5; // of bands
    for (const ImportedBand& band : shaping.bands)
        if (band.exists()) low = std::min(low, band.frequency), sharp = std::max(sharp, band.q);
    if (shaping.cutoff <= 0.0)
        return std::min(1000.0, 1000.0 * 10.4 * 2.0 * sharp / (2.0 * std::numbers::pi * std::max(low, 1.0)));
    constexpr double nepers = 10.4;
    const double damping = 0.5 / shaping.q(); // above 1 there are two real poles, of which one is slower
    const double slowest = damping <= 1.0 ? damping : damping - std::sqrt(damping * damping - 1.0);
    constexpr double longest = 1000.0; // ms
    return std::min(longest, 1000.0 * nepers / (2.0 * std::numbers::pi * shaping.lowestCutoff() * slowest));
}

} // namespace

ShapedPart withWholeTurns(ShapedPart part) {
    constexpr double closeEnough = 0.01, longest = 4.0; // s
    auto& swings = part.shaping.swings;
    for (ImportedSwing& swing : swings)
        if (swing.rate * longest < 1.0 || swing.delay > part.shaping.longest)
            swing = {}; // no loop is that long
    const ImportedSwing& first = swings[0].exists() ? swings[0] : swings[1];
    if (!part.loops() || !first.exists()) return part;
    const double turnsPerPass = first.rate * static_cast<double>(part.end - part.loopStart) / part.rate;
    const double most = std::max(turnsPerPass + 1.0, longest * first.rate);
    double best = 1e9;
    for (double turns = 1.0; turns <= most && best > closeEnough; turns += 1.0) {
        const double passes = std::max(1.0, std::round(turns / turnsPerPass));
        const double off = std::fabs(turns / (passes * turnsPerPass) - 1.0);
        if (off < best) best = off, part.passes = static_cast<std::uint64_t>(passes);
    }
    const double seconds = static_cast<double>(part.loopFrames()) / part.rate;
    for (ImportedSwing& swing : swings)
        if (swing.exists()) swing.rate = std::max(1.0, std::round(swing.rate * seconds)) / seconds;
    return part;
}

// A loop may begin anywhere once frames repeat: when the recording is in its loop, nothing moves, and the
// filter has forgotten what was before.
ShapedLength lengthOf(const ShapedPart& part) {
    const double framesPerMs = part.rate / 1000.0;
    const auto silence = static_cast<std::uint64_t>(part.shaping.level.silence * framesPerMs);
    if (!part.loops()) return {part.end - part.start + silence, 0};
    const std::uint64_t before = part.loopStart > part.start ? part.loopStart - part.start : 0;
    const ImportedShaping& shaping = part.shaping;
    const double bend = std::fabs(shaping.contourToPitch) + std::fabs(shaping.swings[0].pitch) +
                        std::fabs(shaping.swings[1].pitch);
    const double slowest = std::exp2(bend / 1200.0);
    const double reached = static_cast<double>(silence) + static_cast<double>(before) * slowest;
    const double rests = shaping.end() * framesPerMs;
    const auto loopStart = static_cast<std::uint64_t>(
        std::ceil(std::max(reached, rests) + settling(part.shaping) * framesPerMs));
    return {loopStart + part.loopFrames(), loopStart};
}

ImportedSample shapedSample(const ImportedSample& source, const ShapedPart& part) {
    ImportedSample made = source;
    made.format.frames = lengthOf(part).frames;
    made.format.channels = std::clamp(source.format.channels, 1, static_cast<int>(mostChannels));
    made.shape = std::make_shared<const ShapedPart>(part);
    made.open = [source, part, frames = made.format.frames] {
        return std::make_unique<ShapedFrames>(source, part, frames);
    };
    return made;
}

} // namespace zarno
