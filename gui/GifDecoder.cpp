// SPDX-License-Identifier: GPL-3.0-or-later
// The format is GIF89a as CompuServe published it: https://www.w3.org/Graphics/GIF/
#include "gui/GifDecoder.h"

#include <algorithm>
#include <cstring>

namespace zarno {
namespace {

// Bounded reading: past the end everything is 0 and ok() turns false.
class Reader {
  public:
    Reader(const std::uint8_t* data, std::size_t size)
        : data_(data)
        , left_(size) {}

    bool ok() const { return ok_; }
    const std::uint8_t* data() const { return data_; }
    std::size_t left() const { return left_; }
    int byte() {
        if (left_ == 0) {
            ok_ = false;
            return 0;
        }
        --left_;
        return *data_++;
    }
    int word() {
        const int low = byte();
        return low | byte() << 8;
    }
    void skip(std::size_t count) {
        ok_ = ok_ && count <= left_;
        count = std::min(count, left_);
        data_ += count;
        left_ -= count;
    }

  private:
    const std::uint8_t* data_;
    std::size_t left_;
    bool ok_ = true;
};

std::vector<GifColour> readPalette(Reader& in, int flags) {
    std::vector<GifColour> palette;
    if ((flags & 0x80) == 0) return palette;
    palette.resize(std::size_t{2} << (flags & 7));
    for (auto& colour : palette)
        for (auto& part : colour)
            part = static_cast<std::uint8_t>(in.byte());
    return palette;
}

void skipBlocks(Reader& in) {
    while (const int length = in.byte())
        in.skip(static_cast<std::size_t>(length));
}

void readExtension(Reader& in, GifPicture& picture) {
    constexpr int graphicControl = 0xF9;
    if (in.byte() == graphicControl && in.byte() == 4) {
        const int flags = in.byte();
        in.word(); // delay
        const int index = in.byte();
        if ((flags & 1) != 0) picture.transparent = index;
    }
    skipBlocks(in);
}

// The codes of the picture's data, least significant bit first, out of blocks of up to 255 bytes.
class Codes {
  public:
    explicit Codes(Reader in)
        : in_(in) {}

    // -1 at the end.
    int next(int bits) {
        while (held_ < bits) {
            if (blockLeft_ == 0 && (blockLeft_ = in_.byte()) == 0) return -1;
            buffer_ |= static_cast<std::uint32_t>(in_.byte()) << held_;
            if (!in_.ok()) return -1;
            --blockLeft_;
            held_ += 8;
        }
        const int code = static_cast<int>(buffer_ & ((1u << bits) - 1));
        buffer_ >>= bits;
        held_ -= bits;
        return code;
    }

  private:
    Reader in_;
    std::uint32_t buffer_ = 0;
    int held_ = 0, blockLeft_ = 0;
};

// Puts indices where they belong: line by line, interlaced in four passes.
class Pen {
  public:
    Pen(const GifPicture& picture, const std::function<void(int, int, const GifColour&)>& plot)
        : picture_(picture)
        , plot_(plot)
        , step_(picture.interlaced ? 8 : 1) {}

    // False when the picture is full.
    bool put(int index) {
        if (y_ >= picture_.height) return false;
        if (index != picture_.transparent && index < static_cast<int>(picture_.palette.size()))
            plot_(x_, y_, picture_.palette[static_cast<std::size_t>(index)]);
        if (++x_ == picture_.width) nextLine();
        return true;
    }

  private:
    void nextLine() {
        constexpr int starts[] = {0, 4, 2, 1}, steps[] = {8, 8, 4, 2};
        x_ = 0;
        y_ += step_;
        while (picture_.interlaced && y_ >= picture_.height && pass_ < 3) {
            y_ = starts[++pass_];
            step_ = steps[pass_];
        }
    }

    const GifPicture& picture_;
    const std::function<void(int, int, const GifColour&)>& plot_;
    int x_ = 0, y_ = 0, pass_ = 0, step_;
};

constexpr int maxCodes = 4096;

// The table of strings: each is an earlier string and one index more.
struct StringTable {
    std::array<std::uint16_t, maxCodes> prefix;
    std::array<std::uint8_t, maxCodes> last;
    std::array<std::uint8_t, maxCodes> text; // scratch for one string, backwards

    // Writes the string of a code that is in the table; roots are below `roots`. Returns its length.
    int unfold(int code, int roots) {
        int length = 0;
        for (; code >= roots; code = prefix[static_cast<std::size_t>(code)])
            text[static_cast<std::size_t>(length++)] = last[static_cast<std::size_t>(code)];
        text[static_cast<std::size_t>(length++)] = static_cast<std::uint8_t>(code);
        return length;
    }
};

} // namespace

std::optional<GifPicture> readGifHeader(const std::uint8_t* data, std::size_t size) {
    if (size < 13 || (std::memcmp(data, "GIF87a", 6) != 0 && std::memcmp(data, "GIF89a", 6) != 0)) return {};
    Reader in(data, size);
    in.skip(10);
    GifPicture picture;
    const int flags = in.byte();
    in.word(); // background colour, aspect ratio
    picture.palette = readPalette(in, flags);
    for (;;) {
        const int kind = in.byte();
        if (!in.ok() || kind == ';') return {};
        if (kind == '!') readExtension(in, picture);
        if (kind != ',') continue;
        in.skip(4); // place on the screen
        picture.width = in.word();
        picture.height = in.word();
        const int pictureFlags = in.byte();
        picture.interlaced = (pictureFlags & 0x40) != 0;
        if (auto own = readPalette(in, pictureFlags); !own.empty()) picture.palette = std::move(own);
        if (!in.ok() || picture.width == 0 || picture.height == 0) return {};
        picture.data = in.data();
        picture.size = in.left();
        return picture;
    }
}

void decodeGifPixels(const GifPicture& picture,
                     const std::function<void(int x, int y, const GifColour&)>& plot) {
    Reader in(picture.data, picture.size);
    const int rootBits = in.byte();
    if (!in.ok() || rootBits < 1 || rootBits > 8) return;
    const int clear = 1 << rootBits, end = clear + 1;
    Codes codes(in);
    Pen pen(picture, plot);
    StringTable table;
    int next = end + 1, bits = rootBits + 1, previous = -1;

    for (int code; (code = codes.next(bits)) >= 0 && code != end;) {
        if (code == clear) {
            next = end + 1;
            bits = rootBits + 1;
            previous = -1;
            continue;
        }
        // The code about to be made may be used already: the previous string and its own first index.
        const bool isNew = code == next && previous >= 0;
        if (code > end ? code >= next && !isNew : code >= clear) return;
        int length = table.unfold(isNew ? previous : code, clear);
        const std::uint8_t first = table.text[static_cast<std::size_t>(length - 1)];
        while (length-- > 0)
            if (!pen.put(table.text[static_cast<std::size_t>(length)])) return;
        if (isNew && !pen.put(first)) return;
        if (previous >= 0 && next < maxCodes) {
            table.prefix[static_cast<std::size_t>(next)] = static_cast<std::uint16_t>(previous);
            table.last[static_cast<std::size_t>(next)] = first;
            if (++next == 1 << bits && bits < 12) ++bits;
        }
        previous = code;
    }
}

} // namespace zarno
