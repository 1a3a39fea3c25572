// SPDX-License-Identifier: GPL-3.0-or-later
// Which instrument becomes current, loads, waits and is saved, for requests in any order.
#include "shell/LoadController.h"
#include "tests/support/Chance.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace zarno::test {
namespace {

using State = LoadController::State;
using Bytes = std::vector<std::uint8_t>;

// A chunk with a path and a tail of one byte, by which a test knows it again.
Bytes chunkOf(const std::string& path, std::uint8_t mark) {
    Bytes chunk(path.begin(), path.end());
    chunk.insert(chunk.end(), {0, mark});
    return chunk;
}
LoadRequest restoreOf(const std::string& path, std::uint8_t mark) {
    return {path, -1, chunkOf(path, mark), {mark}, false};
}

// A controller in one of its states: "loaded" is loaded; from Loading on "running" is being loaded, with a
// restored state of its own.
class Situation {
  public:
    explicit Situation(State wanted) {
        loads.select("loaded", 0);
        loads.finish(true, true);
        if (wanted == State::Closed) loads.close();
        if (wanted == State::Loading || wanted == State::RestoreWaits) loads.restore(restoreOf("running", 1));
        if (wanted == State::RestoreWaits) restoreAside("waiting", 2);
    }
    ~Situation() {
        loads.close();
        for (std::thread& thread : threads_)
            thread.join();
    }
    // Returns when the controller has taken the request; another thread waits for its turn.
    void restoreAside(const std::string& path, std::uint8_t mark) {
        threads_.emplace_back([this, path, mark] {
            if (loads.restore(restoreOf(path, mark))) began = began.load() * 10 + mark;
            ++returned;
        });
        while (loads.current().path != path || loads.saved().chunk != chunkOf(path, mark))
            std::this_thread::yield();
    }
    void waitForReturned(int count) {
        while (returned < count)
            std::this_thread::yield();
    }

    LoadController loads;
    std::atomic<int> began{0}; // marks of the restores that went on, as digits in their order
    std::atomic<int> returned{0};

  private:
    std::vector<std::thread> threads_;
};

struct Expected {
    bool starts;         // the caller is told to load
    State then;          //
    std::string current; //
    std::string running; // of the request that is being loaded now
};

void expect(Situation& now, const char* request, bool starts, const Expected& expected) {
    SCOPED_TRACE(request);
    EXPECT_EQ(starts, expected.starts);
    EXPECT_EQ(now.loads.state(), expected.then);
    EXPECT_EQ(now.loads.current().path, expected.current);
    EXPECT_EQ(now.loads.running().path, expected.running);
}

TEST(LoadRequests, SelectInEachState) {
    const struct {
        State state;
        Expected other, current;
    } rows[] = {
        {State::Idle, {true, State::Loading, "other", "other"}, {false, State::Idle, "loaded", ""}},
        {State::Loading,
         {false, State::Loading, "other", "running"},
         {false, State::Loading, "running", "running"}},
        {State::RestoreWaits,
         {false, State::RestoreWaits, "other", "running"},
         {false, State::RestoreWaits, "waiting", "running"}},
        {State::Closed, {false, State::Closed, "loaded", ""}, {false, State::Closed, "loaded", ""}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.state));
        Situation a(row.state), b(row.state);
        expect(a, "another", a.loads.select("other", 7), row.other);
        expect(b, "the current one", b.loads.select(b.loads.current().path, 0), row.current);
        EXPECT_FALSE(a.loads.select("", 3)) << "nothing";
    }
}

TEST(LoadRequests, ReloadRestoreAndCloseInEachState) {
    const struct {
        State state;
        Expected reload, replace;
        State afterRestore, afterFinish;
    } rows[] = {
        {State::Idle,
         {true, State::Loading, "loaded", "loaded"},
         {true, State::Loading, "new", "new"},
         State::Loading,
         State::Idle},
        {State::Loading,
         {false, State::Loading, "running", "running"},
         {false, State::Loading, "running", "running"},
         State::RestoreWaits,
         State::Idle},
        {State::RestoreWaits,
         {false, State::RestoreWaits, "waiting", "running"},
         {false, State::RestoreWaits, "waiting", "running"},
         State::RestoreWaits,
         State::Loading},
        {State::Closed,
         {false, State::Closed, "loaded", ""},
         {false, State::Closed, "loaded", ""},
         State::Closed,
         State::Closed},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(static_cast<int>(row.state));
        Situation a(row.state), b(row.state), c(row.state), d(row.state), e(row.state);
        expect(a, "reload", a.loads.reload({}), row.reload);
        expect(b, "replace", b.loads.replaceMissing("new", 2), row.replace);
        if (row.state == State::Closed)
            EXPECT_FALSE(c.loads.restore(restoreOf("late", 3)));
        else
            c.restoreAside("late", 3);
        if (row.state == State::Idle) c.waitForReturned(1);
        EXPECT_EQ(c.loads.state(), row.afterRestore);
        d.loads.finish(true, true);
        EXPECT_EQ(d.loads.state(), row.afterFinish);
        e.loads.close();
        EXPECT_EQ(e.loads.state(), State::Closed);
        if (row.state == State::RestoreWaits) {
            c.waitForReturned(1); // "waiting" gave up for "late"
            EXPECT_EQ(c.began, 0);
            d.waitForReturned(1);
            EXPECT_EQ(d.began, 2);
            EXPECT_EQ(d.loads.running().pendingState, Bytes{2});
            e.waitForReturned(1);
            EXPECT_EQ(e.began, 0);
        }
    }
}

TEST(LoadRequests, ARunningLoadKeepsItsOwnState) {
    Situation now(State::Loading);
    now.restoreAside("running", 9); // the same instrument, other settings
    EXPECT_EQ(now.loads.running().pendingState, Bytes{1});
    EXPECT_TRUE(now.loads.declinesQuestions());
    now.loads.finish(true, true);
    now.waitForReturned(1);
    EXPECT_EQ(now.loads.running().pendingState, Bytes{9});
    EXPECT_EQ(now.loads.saved().chunk, chunkOf("running", 9)) << "not lost with the end of the other load";
    now.loads.finish(true, true);
    EXPECT_TRUE(now.loads.saved().chunk.empty());
    EXPECT_FALSE(now.loads.saved().pathAlone);
}

TEST(LoadRequests, AFailedRestoreIsKeptUntilAnotherChoice) {
    Situation now(State::Loading);
    now.loads.finish(false, true);
    EXPECT_FALSE(now.loads.lastLoadSucceeded());
    EXPECT_EQ(now.loads.saved().chunk, chunkOf("running", 1));
    ASSERT_TRUE(now.loads.select("running", -1)) << "choosing what failed tries again";
    EXPECT_EQ(now.loads.running().pendingState, Bytes{1});
    now.loads.finish(false, true);
    ASSERT_TRUE(now.loads.replaceMissing("elsewhere", 4));
    EXPECT_EQ(now.loads.running().pendingState, Bytes{1});
    now.loads.finish(false, true);
    EXPECT_EQ(now.loads.saved().chunk, chunkOf("running", 1));
    ASSERT_TRUE(now.loads.select("loaded", 0));
    EXPECT_TRUE(now.loads.running().pendingState.empty());
    EXPECT_TRUE(now.loads.saved().chunk.empty());
    EXPECT_TRUE(now.loads.saved().pathAlone) << "the engine's values are of neither";
}

TEST(LoadRequests, AChoiceDuringALoadCanBeMadeAgainAfterIt) {
    LoadController loads;
    ASSERT_TRUE(loads.select("first", 0));
    EXPECT_FALSE(loads.select("second", 1));
    loads.finish(true, true);
    EXPECT_FALSE(loads.isCurrentLoaded());
    EXPECT_FALSE(loads.saved().pathAlone) << "the engine's values go with the path";
    EXPECT_TRUE(loads.select("second", 1));
    EXPECT_EQ(loads.running().index, 1);
}

// Threads that restore, choose and close at random. Each load applies its own state, and the last restore
// wins.
TEST(LoadRequests, InterleavedRestoresNeverTakeEachOthersState) {
    for (std::uint32_t seed = 1; seed <= 200; ++seed) {
        LoadController loads;
        std::atomic<int> foreign{0};
        const auto perform = [&] {
            const LoadRequest& mine = loads.running();
            const auto path = mine.path;
            const auto state = mine.pendingState;
            std::this_thread::yield();
            foreign += mine.path != path || mine.pendingState != state;
            loads.finish(true, true);
        };
        std::vector<std::thread> threads;
        for (std::uint32_t i = 0; i < 3; ++i)
            threads.emplace_back([&, i] {
                Chance chance(seed * 10 + i);
                for (int step = 0; step < 20; ++step) {
                    const std::string path(1, static_cast<char>('a' + chance.below(3)));
                    const bool begins = chance.oneIn(2) ? loads.select(path, 0)
                                                        : loads.restore(restoreOf(path, std::uint8_t(step)));
                    if (begins) perform();
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(foreign, 0);
        ASSERT_EQ(loads.state(), State::Idle);
        if (loads.restore(restoreOf("last", 77))) perform();
        EXPECT_EQ(loads.current().path, "last");
        EXPECT_TRUE(loads.isCurrentLoaded());
        EXPECT_TRUE(loads.saved().chunk.empty());
    }
}

} // namespace
} // namespace zarno::test
