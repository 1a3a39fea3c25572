// SPDX-License-Identifier: GPL-3.0-or-later
// A song on a streaming instrument of real recordings. scripts/test-real says which: ZARNO_REAL_INSTRUMENT
// (embedded) and ZARNO_REAL_SONG.
#include "data/load/InstrumentLoader.h"
#include "engine/ZInstrument.h"
#include "tests/host/HostRig.h"
#include "tests/reference/PlainInstrument.h"
#include "tests/support/MemorySound.h"
#include "tools/common/SongReader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace zarno::test {
namespace {

constexpr int rate = 44100, tailFrames = rate;

std::vector<TimedEvent> eventsOf(const Song& song) {
    std::vector<TimedEvent> events;
    for (const SongEvent& event : song.events)
        events.push_back({static_cast<std::int64_t>(event.seconds * rate),
                          std::vector<std::uint8_t>(event.bytes, event.bytes + event.size)});
    return events;
}

// The plain engine reads samples that lie in memory whole.
void readIntoMemory(ZZone& zone) {
    ZSoundFile& sound = *zone.sound;
    auto frames = std::make_shared<SampleMemory>();
    ASSERT_TRUE(sound.reopen());
    ASSERT_TRUE(frames->allocate(sound.lengthInFrames(), sound.channelCount(), true));
    sound.seekFrame(0);
    ASSERT_EQ(sound.readShort(frames->shorts(), frames->frames()), frames->frames());
    zone.sound = std::make_unique<MemorySound>(frames, zone.fileSampleRate);
}

Rendered renderPlainly(const std::string& path, int frames, int blockSize,
                       const std::vector<TimedEvent>& events) {
    ManualClock clock;
    ZInstrument holder;
    EXPECT_TRUE(loadInstrument(holder, path));
    EXPECT_NE(holder.settings().streaming, 0);
    for (const auto& group : holder.groups())
        for (const auto& zone : group->zones())
            readIntoMemory(*zone);
    PlainInstrument plain(holder.groups(), holder.settings(), clock);
    plain.applySettings();
    plain.activateGroup(0);

    Rendered result{std::vector<float>(static_cast<std::size_t>(frames)),
                    std::vector<float>(static_cast<std::size_t>(frames))};
    std::size_t next = 0;
    for (int at = 0; at < frames; at += blockSize) {
        const int count = std::min(blockSize, frames - at);
        for (; next < events.size() && events[next].frame < at + count; ++next) {
            const auto& bytes = events[next].bytes;
            plain.postEvent(bytes[0] & 0xF0, bytes[0] & 0x0F, bytes[1], bytes.size() > 2 ? bytes[2] : 0,
                            static_cast<std::uint32_t>(events[next].frame - at));
        }
        plain.renderBlock(result.left.data() + at, result.right.data() + at, count);
    }
    return result;
}

TEST(RealRecordings, StreamedThroughTheModuleEqualThePlainEngine) {
    const char* path = std::getenv("ZARNO_REAL_INSTRUMENT");
    const char* songPath = std::getenv("ZARNO_REAL_SONG");
    if (path == nullptr || songPath == nullptr) GTEST_SKIP() << "run by scripts/test-real";
    std::string error;
    const auto song = readSong(songPath, error);
    ASSERT_TRUE(song) << error;
    const auto events = eventsOf(*song);
    const int frames = static_cast<int>(song->lengthSeconds * rate) + tailFrames;

    std::ifstream file(path, std::ios::binary);
    HostRig rig;
    rig.addInstrument("real.zse", {std::istreambuf_iterator<char>(file), {}});
    const auto plugin = rig.loadActive();
    ASSERT_NE(plugin, nullptr);
    const Rendered streamed = render(*plugin, frames, events);
    EXPECT_GE(firstSound(streamed.left), 0);
    EXPECT_EQ(streamed, renderPlainly(path, frames, plugin->options().blockSize, events));
}

} // namespace
} // namespace zarno::test
