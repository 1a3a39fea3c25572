// SPDX-License-Identifier: GPL-3.0-or-later
// What the system is told to fetch. This program's own call stands before the library's.
#ifdef __linux__
#include "data/load/ReadAhead.h"
#include "platform/File.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>

namespace {

using Piece = std::pair<off_t, off_t>;
std::vector<Piece>* fetched = nullptr; // while a test looks

} // namespace

extern "C" int posix_fadvise(int, off_t offset, off_t length, int advice) noexcept {
    if (fetched != nullptr && advice == POSIX_FADV_WILLNEED) fetched->emplace_back(offset, length);
    return 0;
}

namespace zarno {
namespace {

TEST(ReadAhead, TellsOfEachZoneOnceAndSixteenAhead) {
    const test::TempFolder folder;
    const std::string path = folder.write("a.wav", std::string(100000, 'x'));
    ReadAhead ahead;
    ahead.add(path, 0, 1000);
    ahead.add(path, 50000, 1000);
    ahead.add(folder / "none.wav", 0, 1000);
    ahead.add(std::make_shared<const File>(path), 99000, 5000);
    for (int i = 4; i < 20; ++i)
        ahead.add(path, 0, 1);
    std::vector<Piece> pieces;
    fetched = &pieces;
    ahead.reach(0);
    const std::size_t first = pieces.size();
    ahead.reach(1);
    const std::size_t second = pieces.size();
    ahead.reach(0);
    ahead.reach(100);
    fetched = nullptr;
    ASSERT_EQ(first, 17u) << "two of the second, none of the third";
    const std::vector<Piece> begin(pieces.begin(), pieces.begin() + 5);
    EXPECT_THAT(begin, testing::ElementsAre(Piece(0, 5096), Piece(0, 4096), Piece(50000, 5096),
                                            Piece(99000, 1000), Piece(0, 4097)));
    EXPECT_EQ(second, 18u);
    EXPECT_EQ(pieces.size(), 20u);
}

} // namespace
} // namespace zarno
#endif
