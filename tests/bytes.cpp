// SPDX-License-Identifier: GPL-3.0-or-later
// Fields out of a file through a small window, out of one that shrinks meanwhile, and out of memory.
#include "data/Bytes.h"
#include "platform/File.h"
#include "tests/support/Chance.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace zarno {
namespace {

constexpr std::size_t window = 16;

std::string someText(Chance& chance, int length) {
    std::string text;
    while (static_cast<int>(text.size()) < length)
        text += static_cast<char>(chance.oneIn(20) ? 0 : chance.below(256));
    return text;
}

// Any reads, each compared with what the text itself says.
void readAtRandom(Bytes& bytes, const std::string& text, Chance& chance) {
    const auto at = [&] { return static_cast<std::size_t>(bytes.position()); };
    for (int i = 0; i < 2000; ++i) {
        if (bytes.left() == 0 || chance.oneIn(8)) bytes.seek(static_cast<std::uint64_t>(chance.below(320)));
        const std::size_t from = std::min(at(), text.size());
        const auto count = static_cast<std::size_t>(chance.below(chance.of({4, 20, 60})));
        std::string got(count, '?');
        std::vector<std::uint8_t> block;
        std::string word;
        switch (chance.below(4)) {
        case 0:
            got.resize(bytes.readSome(got.data(), count));
            ASSERT_EQ(got, text.substr(from, count));
            break;
        case 1:
            if (bytes.read(got.data(), count))
                ASSERT_EQ(got, text.substr(from, count));
            else
                ASSERT_LT(text.size(), from + count);
            break;
        case 2:
            if (bytes.readBlock(block, count))
                ASSERT_EQ(std::string(block.begin(), block.end()), text.substr(from, count));
            else
                ASSERT_LT(text.size(), from + count);
            break;
        default:
            const auto end = bytes.readString(word, count);
            ASSERT_EQ(word, text.substr(from, std::min(text.find('\0', from) - from, count + 1)));
            const bool limit = word.size() == count + 1;
            const bool ended = from + word.size() == text.size();
            ASSERT_EQ(end, limit   ? Bytes::StringEnd::Limit
                           : ended ? Bytes::StringEnd::EndOfFile
                                   : Bytes::StringEnd::Zero);
        }
    }
}

TEST(Bytes, AreTheSameOutOfAFileAndOutOfMemory) {
    const test::TempFolder folder;
    Chance chance(3);
    const std::string text = someText(chance, 300);
    const File file(folder.write("a", text));
    Bytes stored(file, window), held(text.data(), text.size());
    readAtRandom(stored, text, chance);
    readAtRandom(held, text, chance);
}

TEST(Bytes, StayWithinAFileThatShrinksMeanwhile) {
    const test::TempFolder folder;
    const std::string path = folder.write("a", std::string(300, 'x'));
    const File file(path);
    Bytes bytes(file, window);
    std::filesystem::resize_file(path, 100);
    char some[200];
    std::vector<std::uint8_t> block;
    std::string word;
    bytes.seek(90);
    EXPECT_FALSE(bytes.read(some, 12)) << "through the window";
    EXPECT_FALSE(bytes.readBlock(block, 200)) << "past it";
    EXPECT_TRUE(block.empty());
    EXPECT_EQ(bytes.position(), 90u);
    EXPECT_EQ(bytes.readString(word, 200), Bytes::StringEnd::EndOfFile);
    EXPECT_EQ(word, std::string(10, 'x'));
    bytes.seek(90);
    EXPECT_EQ(bytes.readSome(some, 200), 10u);
}

} // namespace
} // namespace zarno
