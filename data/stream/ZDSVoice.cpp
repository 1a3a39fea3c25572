// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/stream/ZDSVoice.h"

#include "data/Limits.h"
#include "engine/Interpolation.h"

#include <algorithm>

namespace zarno {
namespace {

// A looped note ends where a double no longer counts halves of frames, in some thousand years.
constexpr double furthestPosition = 4.5e15;

} // namespace

bool ZDSVoice::start(ZZone* zone, int key, int velocity, int channelTag) {
    if (zone != nullptr && !canPlay(*zone)) return false;
    const bool fresh = !playing_;
    if (!ZVoice::start(zone, key, velocity, channelTag)) return false;
    if (fresh) beginStream();
    return true;
}

bool ZDSVoice::canPlay(const ZZone& zone) const {
    if (!zone.streaming) return true;
    const StreamBuffer& buffer = ring_.buffer[0];
    return zone.memory != nullptr && zone.chunkFrames > 0 &&
           static_cast<std::uint64_t>(zone.chunkFrames) == buffer.frames() &&
           zone.memory->isSixteenBit() == buffer.isSixteenBit();
}

void ZDSVoice::beginStream() {
    chunk_ = zone_->streaming ? zone_->chunkFrames : 0;
    if (chunk_ == 0) return;
    points_ = StreamPoints(zone_->record, zone_->lengthInFrames);
    position_ = 0.0;
    jumpsBack_ = false;
    end_ = points_.loops ? furthestPosition
                         : static_cast<double>(points_.end) - static_cast<double>(points_.start);
    nextFrame_ = points_.frameBehindPreload(static_cast<std::uint64_t>(chunk_));
    current_ = preload;
    firstAdvance_ = true;
    server_.voiceStarted();
}

void ZDSVoice::endStream() {
    if (chunk_ == 0) return;
    chunk_ = 0;
    for (RefillSlot& slot : ring_.slot)
        slot.cancel();
    server_.voiceEnded();
}

void ZDSVoice::finish() {
    endStream();
    ZVoice::finish();
}

void ZDSVoice::advance() {
    if (chunk_ == 0) {
        ZVoice::advance();
        return;
    }
    position_ += increment_;
    if (!(position_ < end_)) {
        finish();
        return;
    }
    if (firstAdvance_) {
        firstAdvance_ = false;
        requestBoth();
        return;
    }
    if (position_ < static_cast<double>(chunk_)) return;
    const int half = static_cast<int>(turnOf(position_) % 2);
    if (half != current_) enter(half);
}

// How many chunks behind the preload.
std::int64_t ZDSVoice::turnOf(double position) const {
    return static_cast<std::int64_t>(position) / chunk_ - 1;
}

void ZDSVoice::requestBoth() {
    request(0, static_cast<double>(chunk_));
    request(1, static_cast<double>(2 * chunk_));
    server_.wakeDiskThread();
}

// neededAt: the position from which on the voice reads the buffer.
void ZDSVoice::request(int half, double neededAt) {
    const double frames = (neededAt - position_) / increment_;
    const double dueMs = server_.renderedMs() + frames * 1000.0 / context_.sampleRate;
    ring_.slot[half].post({zone_, nextFrame_, dueMs});
    nextFrame_ = points_.frameBehind(nextFrame_, static_cast<std::uint64_t>(chunk_));
}

void ZDSVoice::enter(int half) {
    if (current_ != preload) {
        request(current_, static_cast<double>((turnOf(position_) + 2) * chunk_));
        server_.wakeDiskThread();
    }
    current_ = half;
    if (!server_.awaitBuffer(ring_.slot[half])) server_.countLate();
}

void ZDSVoice::readInterpolated(double position, float& left, float& right) {
    if (chunk_ == 0) {
        ZVoice::readInterpolated(position, left, right);
        return;
    }
    const auto whole = static_cast<std::int64_t>(position);
    const auto t = static_cast<float>(position - static_cast<double>(whole));
    const std::int64_t index = whole % chunk_;
    if (t == 0.0f) {
        readFrame(index, left, right);
        return;
    }
    // Frames are not read across the seams of the ring, the first of the zone included, on purpose.
    float l[4], r[4];
    for (std::int64_t tap = 0; tap < 4; ++tap)
        readFrame(std::clamp<std::int64_t>(index + tap - 1, 0, chunk_ - 1), l[tap], r[tap]);
    left = interpolate4(t, l[0], l[1], l[2], l[3], quality_);
    right = zone_->mono ? left : interpolate4(t, r[0], r[1], r[2], r[3], quality_);
}

void ZDSVoice::readFrame(std::int64_t index, float& left, float& right) {
    if (chunk_ == 0 || current_ == preload)
        ZVoice::readFrame(index, left, right);
    else
        ring_.buffer[current_].readFrame(index, zone_->mono, left, right);
}

FrameWindow ZDSVoice::frameWindow() const {
    if (chunk_ == 0) return ZVoice::frameWindow();
    if (firstAdvance_) return {};
    FrameWindow window;
    window.sixteenBit = ring_.buffer[0].isSixteenBit();
    window.stereo = !zone_->mono;
    if (current_ == preload) {
        const SampleMemory& memory = *zone_->memory;
        if (memory.frames() == 0) return {};
        window.data = window.sixteenBit ? static_cast<const void*>(memory.shorts()) : memory.floats();
        window.limit = static_cast<double>(memory.frames());
    } else {
        // A buffer that is late is read frame by frame, through atomic words.
        if (!ring_.slot[current_].isReady()) return {};
        const std::int64_t turn = turnOf(position_);
        window.data = ring_.buffer[current_].frame0();
        window.origin = static_cast<double>((turn + 1) * chunk_);
        window.limit = window.origin + static_cast<double>(chunk_);
    }
    window.limit = std::min(window.limit, end_);
    return window;
}

VoicePool::Voices makeVoices(const InstrumentSettings& settings, const PlayContext& context,
                             StreamServer& server) {
    const int count = std::clamp<int>(settings.polyphony, 1, limits::voices);
    const bool streaming = settings.streaming != 0;
    server.allocate(streaming ? count : 0, chunkFramesInUse(settings), settings.sixteenBit != 0);
    VoicePool::Voices voices(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        auto& voice = voices[static_cast<std::size_t>(i)];
        if (streaming)
            voice = std::make_unique<ZDSVoice>(context, server, server.ring(i));
        else
            voice = std::make_unique<ZVoice>(context);
    }
    return voices;
}

} // namespace zarno
