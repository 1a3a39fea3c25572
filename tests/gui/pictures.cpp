// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/Limits.h"
#include "gui/ImageDecoder.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>

#include <cstdlib>
#include <memory>
#include <vector>

namespace zarno {
namespace {

using Bytes = std::vector<unsigned char>;

juce::Image decode(const Bytes& bytes) {
    // A block of its own: a read past the end is seen by the address sanitizer.
    const std::unique_ptr<unsigned char[]> exact(new unsigned char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), exact.get());
    return decodeImage(exact.get(), bytes.size());
}

juce::Image testPicture() {
    juce::Image image(juce::Image::ARGB, 21, 13, true);
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 21; ++x)
            image.setPixelAt(x, y,
                             juce::Colour::fromRGBA(static_cast<juce::uint8>(x * 12),
                                                    static_cast<juce::uint8>(y * 19), 128,
                                                    x < 10 ? juce::uint8{255} : juce::uint8{128}));
    return image;
}

// Rounding aside: the picture is kept multiplied by its alpha.
bool isNear(juce::Colour a, juce::Colour b) {
    const auto near = [](int x, int y) { return std::abs(x - y) <= 3; };
    return a.getAlpha() == b.getAlpha() && near(a.getRed(), b.getRed()) && near(a.getGreen(), b.getGreen()) &&
           near(a.getBlue(), b.getBlue());
}

template <typename Format>
Bytes encoded(const juce::Image& image, Format&& format) {
    juce::MemoryOutputStream out;
    EXPECT_TRUE(format.writeImageToStream(image, out));
    const auto* data = static_cast<const unsigned char*>(out.getData());
    return {data, data + out.getDataSize()};
}

void put16(Bytes& bytes, std::initializer_list<int> words) {
    for (const int word : words) {
        bytes.push_back(static_cast<unsigned char>(word & 255));
        bytes.push_back(static_cast<unsigned char>(word >> 8));
    }
}

// 3 x 2 pixels 0 1 2 / 2 1 0 of red, green and a transparent third colour, as clear codes and single indices.
Bytes gif(bool interlaced = false) {
    Bytes bytes{'G', 'I', 'F', '8', '9', 'a'};
    put16(bytes, {3, 2});
    bytes.insert(bytes.end(), {0x81, 0, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255, 9, 9, 9});
    bytes.insert(bytes.end(), {'!', 0xF9, 4, 1, 0, 0, 2, 0, ','});
    put16(bytes, {0, 0, 3, 2});
    bytes.push_back(interlaced ? 0x40 : 0);
    bytes.push_back(2); // codes of three bits, the clear code is 4 and the end is 5
    unsigned bits = 0;
    int held = 0;
    Bytes codes;
    for (const int code : {4, 0, 4, 1, 4, 2, 4, 2, 4, 1, 4, 0, 5}) {
        bits |= static_cast<unsigned>(code) << held;
        for (held += 3; held >= 8; held -= 8, bits >>= 8)
            codes.push_back(static_cast<unsigned char>(bits & 255));
    }
    codes.push_back(static_cast<unsigned char>(bits));
    bytes.push_back(static_cast<unsigned char>(codes.size()));
    bytes.insert(bytes.end(), codes.begin(), codes.end());
    bytes.insert(bytes.end(), {0, ';'});
    return bytes;
}

// The colour of a palette's entry in the next function.
juce::Colour entryColour(int index) {
    return juce::Colour(static_cast<juce::uint8>(index), static_cast<juce::uint8>(255 - index), 7);
}

// A GIF of 256 colours compressed as encoders do: strings of many indices, codes that grow from 9 to 12 bits, and a
// clear code when the table is full.
Bytes compressedGif(int width, int height, bool interlaced, const std::function<int(int x, int y)>& indexAt) {
    Bytes bytes{'G', 'I', 'F', '8', '9', 'a'};
    put16(bytes, {width, height});
    bytes.insert(bytes.end(), {0xF7, 0, 0});
    for (int i = 0; i < 256; ++i)
        for (const auto part : {entryColour(i).getRed(), entryColour(i).getGreen(), entryColour(i).getBlue()})
            bytes.push_back(part);
    bytes.push_back(',');
    put16(bytes, {0, 0, width, height});
    bytes.push_back(interlaced ? 0x40 : 0);
    bytes.push_back(8);

    Bytes codes;
    unsigned bits = 0;
    int held = 0, size = 9, next = 258;
    std::map<std::pair<int, int>, int> strings;
    const auto put = [&](int code) {
        bits |= static_cast<unsigned>(code) << held;
        for (held += size; held >= 8; held -= 8, bits >>= 8)
            codes.push_back(static_cast<unsigned char>(bits & 255));
    };
    put(256);
    int current = -1;
    const auto add = [&](int index) {
        if (current < 0) return static_cast<void>(current = index);
        if (const auto known = strings.find({current, index}); known != strings.end())
            return static_cast<void>(current = known->second);
        put(current);
        strings[{current, index}] = next;
        if (next++ == 1 << size && size < 12) ++size;
        if (next == 4096) {
            put(256);
            strings.clear();
            size = 9, next = 258;
        }
        current = index;
    };
    const int starts[] = {0, 4, 2, 1}, steps[] = {8, 8, 4, 2};
    for (int pass = 0; pass < (interlaced ? 4 : 1); ++pass)
        for (int y = interlaced ? starts[pass] : 0; y < height; y += interlaced ? steps[pass] : 1)
            for (int x = 0; x < width; ++x)
                add(indexAt(x, y));
    put(current);
    put(257);
    codes.push_back(static_cast<unsigned char>(bits));
    for (std::size_t at = 0; at < codes.size(); at += 255) {
        const std::size_t count = std::min<std::size_t>(255, codes.size() - at);
        bytes.push_back(static_cast<unsigned char>(count));
        bytes.insert(bytes.end(), codes.begin() + static_cast<std::ptrdiff_t>(at),
                     codes.begin() + static_cast<std::ptrdiff_t>(at + count));
    }
    bytes.insert(bytes.end(), {0, ';'});
    return bytes;
}

TEST(Pictures, CompressedAndInterlacedGifsComeOutAsTheyWentIn) {
    const auto flat = [](int, int y) { return y < 30 ? 3 : 200; };            // strings that hold themselves
    const auto noisy = [](int x, int y) { return (x * x + 31 * y * x) % 251; }; // fills the table several times
    for (const auto& indexAt : {std::function<int(int, int)>(flat), std::function<int(int, int)>(noisy)})
        for (const bool interlaced : {false, true}) {
            const auto image = decode(compressedGif(203, 61, interlaced, indexAt));
            ASSERT_EQ(image.getBounds(), juce::Rectangle<int>(0, 0, 203, 61));
            for (int y = 0; y < 61; ++y)
                for (int x = 0; x < 203; ++x)
                    ASSERT_EQ(image.getPixelAt(x, y), entryColour(indexAt(x, y)))
                        << x << " " << y << (interlaced ? " interlaced" : "");
        }
}

TEST(Pictures, ComeOutAsTheyWentIn) {
    const auto original = testPicture();
    const auto png = decode(encoded(original, juce::PNGImageFormat()));
    ASSERT_EQ(png.getBounds(), original.getBounds());
    for (int y = 0; y < 13; ++y)
        for (int x = 0; x < 21; ++x)
            ASSERT_TRUE(isNear(png.getPixelAt(x, y), original.getPixelAt(x, y))) << x << " " << y;

    juce::Image plain(juce::Image::RGB, 40, 30, true);
    plain.clear(plain.getBounds(), juce::Colours::orange);
    juce::JPEGImageFormat jpegFormat;
    jpegFormat.setQuality(1.0f);
    const auto jpeg = decode(encoded(plain, jpegFormat));
    ASSERT_EQ(jpeg.getBounds(), plain.getBounds());
    const auto colour = jpeg.getPixelAt(20, 15);
    EXPECT_NEAR(colour.getRed(), 255, 3);
    EXPECT_NEAR(colour.getGreen(), 165, 3);
    EXPECT_NEAR(colour.getBlue(), 0, 3);
}

TEST(Pictures, GifsShowTheirFirstPicture) {
    const auto red = juce::Colour(0xffff0000), green = juce::Colour(0xff00ff00), none = juce::Colour();
    const juce::Colour rows[2][3] = {{red, green, none}, {none, green, red}};
    for (const bool interlaced : {false, true}) { // two lines come in the same order either way
        const auto image = decode(gif(interlaced));
        ASSERT_EQ(image.getBounds(), juce::Rectangle<int>(0, 0, 3, 2));
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                EXPECT_EQ(image.getPixelAt(x, y), rows[y][x]) << x << " " << y;
    }
}

TEST(Pictures, AreNotDecodedWhenTheyClaimTooMuch) {
    auto png = encoded(testPicture(), juce::PNGImageFormat());
    EXPECT_TRUE(decodeImage(png.data(), png.size(), 21 * 13).isValid());
    EXPECT_FALSE(decodeImage(png.data(), png.size(), 21 * 13 - 1).isValid());
    auto wide = gif();
    wide[39] = 0x21; // the picture's width: 0x2103
    EXPECT_FALSE(decode(wide).isValid());
    juce::Image line(juce::Image::RGB, limits::imageSide + 1, 1, true);
    EXPECT_FALSE(decode(encoded(line, juce::PNGImageFormat())).isValid());
    EXPECT_FALSE(decode(encoded(line, juce::JPEGImageFormat())).isValid());
    EXPECT_FALSE(decode({}).isValid());
    EXPECT_FALSE(decode({'B', 'M', 1, 2, 3}).isValid());
}

} // namespace
} // namespace zarno
