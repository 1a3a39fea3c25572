// SPDX-License-Identifier: GPL-3.0-or-later
// What a streaming voice asks the disk thread for, and what a chunk holds. Here the test is the disk thread.
#include "data/stream/ZDSVoice.h"
#include "engine/VoiceRenderer.h"
#include "tests/support/MemorySound.h"
#include "tests/support/TestInstrument.h"

#include <gmock/gmock.h>

#include <numeric>

namespace zarno {
namespace {

using testing::ElementsAre;

constexpr std::int32_t chunk = 4096;

// Frame n has the value n.
TestSample counting(std::uint64_t frames) {
    return TestSample::made(frames, 1, false, 44100.0,
                            [](std::uint64_t n, int) { return static_cast<double>(n); });
}

std::unique_ptr<ZZone> streamingZone(const TestSample& sample, std::int32_t chunkFrames) {
    auto zone = std::make_unique<ZZone>();
    zone->record = plainZone(sample);
    zone->sound = std::make_unique<MemorySound>(sample.memory);
    zone->lengthInFrames = sample.frames();
    zone->mono = true;
    zone->streaming = true;
    zone->chunkFrames = chunkFrames;
    return zone;
}

std::vector<float> filled(ZZone& zone, std::uint64_t frame, std::uint64_t frames) {
    SampleMemory memory;
    memory.allocate(frames, 1, false);
    std::fill_n(memory.floats(), frames, -7.0f);
    fillChunk(*zone.sound, {zone.record, zone.lengthInFrames}, frame, {memory.floats(), frames, 1, false},
              [](std::size_t) { return true; });
    return {memory.floats(), memory.floats() + frames};
}

// The frames of the file at which the runs of a chunk begin, by the value of the first frame of each.
std::vector<float> runs(const std::vector<float>& frames) {
    std::vector<float> starts{frames[0]};
    for (std::size_t i = 1; i < frames.size(); ++i)
        if (frames[i] != frames[i - 1] + 1) starts.push_back(frames[i]);
    return starts;
}

class StreamRequests : public testing::Test {
  protected:
    StreamRequests() {
        settings.streamBufferFrames = chunk;
        settings.sixteenBit = 0;
        voices = makeVoices(settings, context, server);
    }

    void start(int key = 60) {
        zone->memory = readPreload(*zone, false);
        ASSERT_TRUE(voices[0]->start(zone.get(), key, 100, 0));
    }
    // Plays frames, serving every request at once; says at which position which buffer asked for which frame.
    std::vector<std::array<std::int64_t, 3>> play(int frames) {
        std::vector<std::array<std::int64_t, 3>> seen;
        for (int i = 1; i <= frames; ++i) {
            float left, right;
            voices[0]->render(left, right);
            if (event.wait(0)) ++signals;
            for (int half = 0; half < 2; ++half) {
                Refill refill;
                RefillSlot::Ticket ticket;
                if (!server.ring(0).slot[half].take(refill, ticket)) continue;
                seen.push_back({i, half, static_cast<std::int64_t>(refill.frame)});
                server.ring(0).slot[half].complete(ticket);
            }
        }
        return seen;
    }

    InstrumentSettings settings;
    PlayContext context{settings};
    AutoResetEvent event;
    StreamServer server{event};
    VoicePool::Voices voices;
    std::unique_ptr<ZZone> zone = streamingZone(counting(100000), chunk);
    int signals = 0;
};

// Whoever renders many frames at once reads plainly, so only what the disk thread has let go of.
TEST_F(StreamRequests, ThatAreLateLeaveNoWindow) {
    start();
    float left, right;
    for (int i = 0; i <= chunk; ++i)
        voices[0]->render(left, right);
    EXPECT_EQ(voices[0]->frameWindow().data, nullptr);
    play(1);
    EXPECT_NE(voices[0]->frameWindow().data, nullptr);
}

TEST_F(StreamRequests, ComeWithTheFirstAdvanceAndWithEachSwitch) {
    start();
    using Request = std::array<std::int64_t, 3>;
    EXPECT_THAT(play(1), ElementsAre(Request{1, 0, 4096}, Request{1, 1, 8192}));
    EXPECT_EQ(signals, 1) << "one signal for both";
    EXPECT_THAT(play(20000),
                ElementsAre(Request{8191, 0, 12288}, Request{12287, 1, 16384}, Request{16383, 0, 20480}));
    EXPECT_EQ(signals, 4);
}

TEST_F(StreamRequests, AreMadeAnewByTheNoteThatWaitsForAStolenVoice) {
    start();
    play(100);
    voices[0]->kill();
    auto other = streamingZone(counting(50000), chunk);
    other->record.startFrame = 1000;
    other->memory = readPreload(*other, false);
    EXPECT_FALSE(voices[0]->start(other.get(), 60, 100, 0));
    const auto requests = play(200);
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(requests[0][2], 5096);
    EXPECT_EQ(requests[1][2], 9192);
}

TEST_F(StreamRequests, AreNotMadeAgainByLegato) {
    start();
    play(5000);
    voices[0]->start(zone.get(), 62, 100, 0);
    EXPECT_TRUE(play(1000).empty());
}

TEST_F(StreamRequests, AreTakenBackWhenTheNoteEnds) {
    start();
    float left, right;
    voices[0]->render(left, right);
    Refill refill;
    RefillSlot::Ticket first, second;
    ASSERT_TRUE(server.ring(0).slot[0].take(refill, first));
    voices[0]->stop();
    EXPECT_FALSE(server.ring(0).slot[0].take(refill, second)) << "nothing is read for a note that is over";
    start();
    voices[0]->render(left, right);
    server.ring(0).slot[0].complete(first); // the fill of the note before comes late
    EXPECT_FALSE(server.ring(0).slot[0].isReady());
    ASSERT_TRUE(server.ring(0).slot[0].take(refill, second));
    server.ring(0).slot[0].complete(second);
    EXPECT_TRUE(server.ring(0).slot[0].isReady());
}

TEST_F(StreamRequests, OfAShortLoopStartInsideIt) {
    zone->record.loopMode = 2;
    zone->record.loopStart = 500;
    zone->record.loopEnd = 1000;
    start();
    const auto requests = play(1);
    const std::int64_t behindPreload = 500 + (4096 - 1000 - 1) % 501;
    EXPECT_EQ(requests[0][2], behindPreload);
    EXPECT_EQ(requests[1][2], 500 + (4096 - (1000 - behindPreload)) % 500);
    EXPECT_FALSE(play(200000).empty()) << "a loop does not end by position";
    EXPECT_TRUE(voices[0]->isPlaying());
}

// For more than a day at the sample's own pitch, past what 32 bits count: each buffer holds the numbers of
// its frames, so that what is heard is the position.
TEST_F(StreamRequests, AreExactForAsLongAsALoopIsHeld) {
    constexpr std::int64_t length = 65536, increment = 4096, loopStart = 500, period = 1009;
    settings.streamBufferFrames = length;
    settings.polyphony = 1;
    voices = makeVoices(settings, context, server);
    zone = streamingZone(counting(100000), length);
    zone->record.loopMode = 2;
    zone->record.loopStart = loopStart;
    zone->record.loopEnd = loopStart + period;
    zone->record.fixedPitch = 1;
    zone->fileSampleRate = 44100.0 * increment;
    const TestSample numbers = TestSample::made(
        length, 1, false, 44100.0, [](std::uint64_t n, int) { return static_cast<double>(n) / length; });
    for (StreamBuffer& buffer : server.ring(0).buffer)
        buffer.write({numbers.memory->floats(), length, 1, false});
    start();

    Modulation modulation(settings, context);
    VoiceRenderer renderer(modulation);
    VoicePool pool;
    pool.fill(std::move(voices));
    ModulationSegment segment;
    std::int64_t wanted = loopStart + (length - (loopStart + period) - 1) % (period + 1);
    float gain = 0.0f;
    for (std::int64_t position = 0; position < std::int64_t{1} << 33;) {
        constexpr int frames = length / increment;
        float left[frames] = {}, right[frames] = {};
        modulation.fill(segment, frames);
        renderer.render(pool, segment, left, right);
        if (position == length) gain = left[frames / 2] * 2;
        for (int i = 0; i < frames && position >= length; ++i)
            ASSERT_EQ(left[i], gain * static_cast<float>(i * increment) / length) << "from " << position;
        position += length;
        for (RefillSlot& slot : server.ring(0).slot) {
            Refill refill;
            RefillSlot::Ticket ticket;
            if (!slot.take(refill, ticket)) continue;
            ASSERT_EQ(static_cast<std::int64_t>(refill.frame), wanted) << "at " << position;
            wanted = loopStart + (wanted - loopStart + length) % period;
            slot.complete(ticket);
        }
    }
    EXPECT_GT(gain, 0.1f);
    EXPECT_LE(server.stats().lateRefills, 1u);
}

TEST(StreamChunks, UnrollTheLoop) {
    auto zone = streamingZone(counting(2000), 1200);
    zone->record.loopMode = 2;
    zone->record.loopStart = 500;
    zone->record.loopEnd = 1000;
    EXPECT_THAT(runs(filled(*zone, 900, 1200)), ElementsAre(900, 500, 500, 500));
    const StreamPoints points(zone->record, 2000);
    EXPECT_EQ(points.frameBehind(900, 1200), 600u);
    EXPECT_EQ(points.frameBehind(0, 1000), 1000u) << "a loop end at the very end of the chunk is not in it";
    EXPECT_THAT(runs(filled(*zone, 1500, 700)), ElementsAre(500, 500)) << "beyond the loop end";
    EXPECT_EQ(points.frameBehind(1500, 700), 700u);

    zone->record.loopStart = 999;
    EXPECT_THAT(filled(*zone, 997, 5), ElementsAre(997, 998, 999, 999, 999)) << "a loop of one frame";
    zone->record.loopStart = 1000;
    EXPECT_THAT(filled(*zone, 998, 4), ElementsAre(998, 999, 1000, 1001)) << "a shorter one is none";
}

TEST(StreamChunks, AreSilentBehindTheSample) {
    auto zone = streamingZone(counting(1000), 100);
    EXPECT_THAT(filled(*zone, 997, 5), ElementsAre(997, 998, 999, 0, 0));
    zone->record.loopMode = 2;
    zone->record.loopStart = 998;
    zone->record.loopEnd = 1003; // a stand-in may be shorter than its record thinks
    EXPECT_THAT(filled(*zone, 997, 9), ElementsAre(997, 998, 999, 0, 0, 0, 998, 999, 0));
    EXPECT_EQ(StreamPoints(zone->record, 1000).frameBehind(997, 9), 1000u);
    static_cast<MemorySound&>(*zone->sound).absent = true;
    EXPECT_THAT(filled(*zone, 997, 2), ElementsAre(-7, -7)) << "no file: what the buffer held";
    EXPECT_THAT(filled(*zone, 1003, 0), testing::IsEmpty());
}

TEST(StreamChunks, KeepTheirLengthWithinMemory) {
    InstrumentSettings settings;
    EXPECT_EQ(chunkFramesInUse(settings), 44100);
    settings.streamBufferFrames = -5;
    EXPECT_EQ(chunkFramesInUse(settings), 1);
    settings.streamBufferFrames = INT32_MAX;
    settings.polyphony = 1;
    EXPECT_EQ(chunkFramesInUse(settings), 4194304);
    settings.polyphony = 1024;
    EXPECT_EQ(chunkFramesInUse(settings), 4194304 / 128);
    settings.sixteenBit = 0;
    EXPECT_EQ(chunkFramesInUse(settings), 4194304 / 256);
    EXPECT_EQ(settings.streamBufferFrames, INT32_MAX) << "the stored value is kept";
}

} // namespace
} // namespace zarno
