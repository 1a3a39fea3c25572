// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/stream/StreamPoints.h"
#include "data/stream/StreamServer.h"
#include "engine/VoicePool.h"
#include "engine/ZVoice.h"

namespace zarno {

/// A voice that plays the first chunk of a zone from memory and the rest from two buffers in turn, which it
/// asks the disk thread to refill. Its position counts from the zone's start frame and, in a loop, goes on
/// growing: the loop is unrolled when a buffer is filled. A zone that is whole in memory it plays like a
/// plain voice.
class ZDSVoice final : public ZVoice {
  public:
    ZDSVoice(const PlayContext& context, StreamServer& server, StreamRing& ring)
        : ZVoice(context)
        , server_(server)
        , ring_(ring) {}

    bool start(ZZone* zone, int key, int velocity, int channelTag) override;
    void finish() override;
    void readInterpolated(double position, float& left, float& right) override;
    /// A frame of the preload or of the buffer in use.
    void readFrame(std::int64_t index, float& left, float& right) override;
    FrameWindow frameWindow() const override;

  protected:
    void advance() override;

  private:
    static constexpr int preload = -1;

    bool canPlay(const ZZone& zone) const;
    void beginStream();
    void endStream();
    void requestBoth();
    void request(int half, double neededAt);
    void enter(int half);
    std::int64_t turnOf(double position) const;

    StreamServer& server_;
    StreamRing& ring_;
    std::int64_t chunk_ = 0; // frames; 0 while the zone at hand is not streamed
    StreamPoints points_;
    double end_ = 0.0;            // the position at which the note ends
    std::uint64_t nextFrame_ = 0; // of the file, for the next request
    int current_ = preload;       // the buffer in use
    bool firstAdvance_ = false;   // both buffers are still to be asked for
};

/// The voices of an instrument with these settings, which get new buffers: streaming ones when the streaming
/// flag is set. None may be playing, and the server is paused. [loading] Throws std::bad_alloc.
VoicePool::Voices makeVoices(const InstrumentSettings& settings, const PlayContext& context,
                             StreamServer& server);

} // namespace zarno
