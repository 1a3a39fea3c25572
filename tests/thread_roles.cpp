// SPDX-License-Identifier: GPL-3.0-or-later
// The tags in the headers, held against calls from the wrong threads. Where nothing checks, there is nothing
// to test.
#include "platform/ThreadRole.h"

#if defined(ZARNO_THREAD_CHECKS)

#include "data/load/InstrumentLoader.h"
#include "data/load/LicenceCheck.h"
#include "data/load/ReadAhead.h"
#include "data/load/ZoneBuilder.h"
#include "data/stream/DiskThread.h"
#include "tests/support/StreamingInstrument.h"

#include <gtest/gtest.h>

#include <functional>

namespace zarno {
namespace {

struct Tagged {
    const char* name;
    unsigned allowed;
    std::function<void()> call;
};

struct WrongThread {};

// Each call alone on a thread of each kind: made by those that are allowed, not begun by others.
TEST(ThreadRoles, ACallFromTheWrongThreadIsNoticed) {
    thread::onWrongThread([](const char*) { throw WrongThread(); });
    ZInstrument instrument;
    InstrumentContents contents;
    AutoResetEvent event;
    StreamServer server(event);
    server.allocate(1, 64, true);
    RefillSlot slot;
    Refill refill;
    RefillSlot::Ticket ticket = 0;
    StreamBuffer buffer;
    EventQueue queue;
    std::vector<EngineEvent> events;
    ZGroup group("group");
    ZRandom random(1);
    ZZone zone;
    const TestSample sample = TestSample::level(0.5f, 100);
    zone.sound = std::make_shared<MemorySound>(sample.memory);
    zone.chunkFrames = 10;
    zone.mono = true;
    AllowEverything licence;
    ReadAhead ahead;
    ZoneBuilder builder(instrument.settings());
    LoadResult result;
    float left = 0.0f, right = 0.0f;
    using namespace thread;
    const unsigned any = ~0u, reading = reader | loading;
    const Tagged rows[] = {
        {"renderBlock", audio, [&] { instrument.renderBlock(nullptr, 0, 64); }},
        {"postEvent", any, [&] { instrument.postEvent(midi::noteOn, 0, 60, 100, 0); }},
        {"setSampleRate", any, [&] { instrument.setSampleRate(48000.0f); }},
        {"requestStop", any, [&] { instrument.requestStop(); }},
        {"requestRelease", any, [&] { instrument.requestRelease(); }},
        {"resetControllers", any, [&] { instrument.resetControllers(0); }},
        {"playingVoices", any, [&] { instrument.playingVoices(); }},
        {"requestActiveGroups", any & ~(audio | disk), [&] { instrument.requestActiveGroups({}); }},
        {"applySettings", audio | loading, [&] { instrument.applySettings(); }},
        {"deactivateAllGroups", audio | loading, [&] { instrument.deactivateAllGroups(); }},
        {"resetSettings", loading | message, [&] { instrument.resetSettings(); }},
        {"exchange", loading, [&] { instrument.exchange(contents); }},
        {"clear", loading, [&] { instrument.clear(); }},
        {"rebuildPool", loading, [&] { instrument.rebuildPool(); }},
        {"createGroup", loading, [&] { instrument.createGroup("made"); }},
        {"setLoading", loading, [&] { instrument.setLoading(false); }},
        {"ZInstrument", any & ~(audio | disk), [] { ZInstrument(); }},
        {"readInstrument", reading, [&] { readInstrument(contents, "nowhere.zse", {}); }},
        {"takeOver", loading, [&] { takeOver(instrument, contents, result); }},
        {"loadInstrument", loading, [&] { loadInstrument(instrument, "nowhere.zse"); }},
        {"licence.allows", reading, [&] { licence.allows({}, {}, nullptr); }},
        {"ahead.add", reading, [&] { ahead.add("nowhere.wav", 0, 1); }},
        {"ahead.reach", reading, [&] { ahead.reach(0); }},
        {"fromWaveFile", reading, [&] { builder.fromWaveFile("nowhere.wav"); }},
        {"fromBlock", reading, [&] { builder.fromBlock("nowhere", nullptr, 0); }},
        {"recordChanged", reading, [&] { builder.recordChanged(zone); }},
        {"readPreload", reading, [&] { readPreload(zone, false); }},
        {"addZone", reading, [&] { group.addZone(std::make_unique<ZZone>()); }},
        {"touch", any, [&] { group.touch(); }},
        {"mayMatch", audio, [&] { group.mayMatch(60, 100); }},
        {"selectZone", audio, [&] { group.selectZone(60, 100, random); }},
        {"gains", audio, [&] { zone.gains(44100.0, 0); }},
        {"queue.push", any, [&] { queue.push({}); }},
        {"queue.moveTo", audio, [&] { queue.moveTo(events); }},
        {"queue.clear", audio | loading, [&] { queue.clear(); }},
        {"pause", any & ~(audio | disk), [&] { StreamServer::Pause{server}; }},
        {"allocate", loading, [&] { server.allocate(1, 64, true); }},
        {"beginBlock", audio, [&] { server.beginBlock({}); }},
        {"awaitBuffer", audio, [&] { server.awaitBuffer(slot); }},
        {"zonesChange", loading, [&] { server.zonesChange(); }},
        {"hurry", any, [&] { server.hurry(); }},
        {"serve", disk, [&] { server.serviceStreams(); }},
        {"stats", any, [&] { server.stats(); }},
        {"slot.post", audio | loading, [&] { slot.post({}); }},
        {"slot.isReady", audio | loading, [&] { slot.isReady(); }},
        {"slot.cancel", audio | loading, [&] { slot.cancel(); }},
        {"slot.isCurrent", disk, [&] { slot.isCurrent(0); }},
        {"slot.take", disk, [&] { slot.take(refill, ticket); }},
        {"slot.complete", disk, [&] { slot.complete(ticket); }},
        {"buffer.allocate", loading, [&] { buffer.allocate(64, true); }},
        {"buffer.readFrame", audio, [&] { buffer.readFrame(0, true, left, right); }},
    };
    for (const Tagged& row : rows)
        for (const Role role : {audio, loading, disk, message, reader}) {
            const auto onThatThread = [&] {
                const Acts acts(role);
                row.call();
            };
            if ((row.allowed & role) != 0)
                EXPECT_NO_THROW(onThatThread()) << row.name << " on " << role;
            else
                EXPECT_THROW(onThatThread(), WrongThread) << row.name << " on " << role;
        }
}

// The threads of the house say what they are.
TEST(ThreadRoles, TheDiskThreadIsKnown) {
    struct Client : ZSEThreadClient {
        void serviceStreams() override {
            role = thread::current();
            served.signal();
        }
        thread::Role role = thread::unknown;
        AutoResetEvent served;
    };
    const auto client = std::make_shared<Client>();
    DiskThread share;
    share.add(client);
    share.event().signal();
    ASSERT_TRUE(client->served.wait(10000));
    share.remove(*client);
    EXPECT_EQ(client->role, thread::disk);
}

} // namespace
} // namespace zarno

#endif
