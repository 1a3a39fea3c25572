// SPDX-License-Identifier: GPL-3.0-or-later
// A disk that does not give a read back, as a share that has vanished. Worth most under the sanitizers.
#include "data/load/InstrumentLoader.h"
#include "tests/support/Gate.h"
#include "tests/support/InstrumentBuilder.h"
#include "tests/support/StreamingInstrument.h"
#include "tests/support/TempFolder.h"
#include "tests/support/ThreadNames.h"
#include "tests/support/WaveBuilder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

namespace zarno {
namespace {

constexpr int chunk = 4096;
constexpr double longestMs = limits::hungReadMs + 5000.0; // with a margin for a machine under load

int diskThreads() {
    return threadsNamed("ZSE Disk Thread");
}

// One key, some chunks long.
std::unique_ptr<TestInstrument> streaming() {
    auto played = std::make_unique<TestInstrument>(4);
    played->addLevel(0.5f);
    makeStreaming(*played, chunk);
    return played;
}

ZZone& zoneOf(TestInstrument& played) {
    return *played.engine.groups()[0]->zones()[0];
}

bool isServed(TestInstrument& played) {
    const std::uint64_t before = played.engine.streamStats().refills;
    played.noteOn(60);
    played.render(64);
    return comesTrue([&] { return played.engine.streamStats().refills >= before + 2; });
}

class HungDisk : public testing::Test {
  protected:
    // A note whose read has begun and does not end.
    void hang() {
        static_cast<MemorySound&>(*zoneOf(*hung).sound).onRead = [gate = gate](std::uint64_t) {
            gate->pass();
        };
        hung->noteOn(60);
        hung->render(64);
        ASSERT_TRUE(comesTrue([&] { return gate->waiting() == 1; }));
    }
    void TearDown() override {
        gate->open();
        hung.reset();
        EXPECT_TRUE(comesTrue([] { return diskThreads() == 0; })) << "all of them end";
    }

    std::shared_ptr<Gate> gate = std::make_shared<Gate>(); // its last user may be left behind
    std::unique_ptr<TestInstrument> hung = streaming();
};

TEST_F(HungDisk, HoldsUpNoOtherInstrument) {
    hang();
    const auto other = streaming();
    EXPECT_TRUE(isServed(*other));
    EXPECT_EQ(diskThreads(), 2);
    EXPECT_EQ(hung->render(40 * chunk).left.back(), 0.0f) << "late buffers hold silence";
    EXPECT_GT(hung->engine.streamStats().lateRefills, 10u);
    EXPECT_TRUE(isServed(*other));
    EXPECT_EQ(diskThreads(), 2) << "what hangs is not tried again";
    gate->open();
    EXPECT_TRUE(comesTrue([] { return diskThreads() == 1; }));
    EXPECT_TRUE(isServed(*hung)) << "the share is back";
}

TEST_F(HungDisk, HoldsUpNobodyWhoChangesTheInstrument) {
    test::TempFolder folder;
    folder.write("a.wav", test::rampWave(20000));
    test::InstrumentBuilder file;
    file.settings.streamBufferFramesStored = chunk;
    file.groups = {{"G", {}, {test::zone("a.wav")}, {}}};
    const std::string path = folder.write("x.zse", file.bytes());
    struct Change {
        const char* what;
        std::function<void()> act;
        bool goesOn; // while the read hangs still
    };
    const Change changes[] = {
        {"another instrument", [&] { EXPECT_TRUE(loadInstrument(hung->engine, path)); }, true},
        {"one that does not open", [&] { loadInstrument(hung->engine, path + "x"); }, false},
        {"other voices", [&] { hung->engine.rebuildPool(); }, false},
        {"none", [&] { hung->engine.clear(); }, false},
        {"its end", [&] { hung = streaming(); }, true},
    };
    for (const Change& change : changes) {
        SCOPED_TRACE(change.what);
        hung = streaming();
        gate = std::make_shared<Gate>();
        hang();
        const auto began = std::chrono::steady_clock::now();
        change.act();
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - began;
        EXPECT_LT(took.count(), longestMs);
        RecordProperty(change.what, std::to_string(took.count()));
        EXPECT_TRUE(!change.goesOn || isServed(*hung));
        gate->open();
        EXPECT_TRUE(hung->engine.groups().empty() || isServed(*hung)) << "the share is back";
    }
}

} // namespace
} // namespace zarno
