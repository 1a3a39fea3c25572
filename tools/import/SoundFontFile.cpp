// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontFile.h"

#include "data/Bytes.h"
#include "platform/File.h"
#include "platform/Utf8.h"
#include "tools/import/CompressedSound.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cstring>
#include <map>

namespace zarno {
namespace {

struct ChunkPlace {
    std::uint64_t position = 0, size = 0;
};

std::string fixedText(const char* bytes, std::size_t most) {
    const std::string_view text(bytes, most);
    std::string shown = toUtf8(text.substr(0, text.find('\0')));
    while (!shown.empty() && shown.back() == ' ')
        shown.pop_back();
    return shown;
}

} // namespace

std::pair<int, int> GeneratorSet::range(Generator g) const {
    if (!has(g)) return {0, 127};
    const auto bits = static_cast<std::uint16_t>((*this)[g]);
    return {std::min(bits & 0xFF, 127), std::min(bits >> 8, 127)};
}

// The lists of a SoundFont refer to each other by the index of the first entry; an entry ends where the next
// one begins. The last entry of every list is a terminator that only ends the one before it.
class SoundFontReader {
  public:
    explicit SoundFontReader(const std::string& path)
        : path_(path)
        , file_(path)
        , bytes_(file_, 65536) {
        if (!file_.isOpen()) fail("the file cannot be opened");
    }

    SoundFontFile read();

  private:
    template <std::size_t Size>
    using Records = std::vector<std::array<char, Size>>;
    struct Zones { // of presets or of instruments
        Records<4> bags, generators;
        Records<10> modulators;
    };

    [[noreturn]] void fail(const std::string& why) const { throw MakerError(path_, why); }
    void chunks(ChunkPlace place, const std::string& prefix);
    const ChunkPlace* find(const std::string& name) const;
    template <std::size_t Size>
    Records<Size> records(const std::string& name);
    void readName();
    void readData();
    void readSamples();
    void readCompressed(SoundFontSample& sample, std::uint32_t begin, std::uint32_t end);
    bool isPadded(std::uint64_t position);
    std::vector<GeneratorSet> zonesOf(const Zones& zones, std::size_t from, std::size_t to, Generator target,
                                      std::size_t targets, const std::string& owner) const;

    std::string path_;
    File file_;
    Bytes bytes_;
    std::map<std::string, ChunkPlace> chunks_; // "pdta/phdr"
    SoundFontFile out_;
};

namespace {

template <typename T, std::size_t Size>
T at(const std::array<char, Size>& record, std::size_t offset) {
    T value;
    std::memcpy(&value, record.data() + offset, sizeof value);
    return value;
}

} // namespace

// Notes where each chunk lies; of chunks of one name the first counts. A chunk never reaches beyond its
// parent.
void SoundFontReader::chunks(ChunkPlace place, const std::string& prefix) {
    std::uint64_t position = place.position;
    const std::uint64_t end = place.position + place.size;
    while (position + 8 <= end) {
        char id[4];
        std::uint32_t size = 0;
        bytes_.seek(position);
        if (!bytes_.read(id, 4) || !bytes_.read(size)) return;
        position += 8;
        const ChunkPlace body{position, std::min<std::uint64_t>(size, end - position)};
        const std::string name = prefix + std::string(id, 4);
        if (std::equal(id, id + 4, "LIST") && prefix.empty() && body.size >= 4) {
            char kind[4];
            if (!bytes_.read(kind, 4)) return;
            chunks({body.position + 4, body.size - 4}, std::string(kind, 4) + '/');
        } else {
            chunks_.try_emplace(name, body);
        }
        position += body.size;
        if ((size & 1) != 0 && isPadded(position)) ++position;
    }
}

// Some programs leave out the byte after a chunk of odd length: then the next chunk's name is there at once.
bool SoundFontReader::isPadded(std::uint64_t position) {
    char next[5] = {};
    bytes_.seek(position);
    if (!bytes_.read(next, 5)) return true;
    const auto isName = [](const char* text) {
        static constexpr std::string_view names[] = {
            "LIST", "ifil", "isng", "INAM", "irom", "iver", "ICRD", "IENG", "IPRD", "ICOP", "ICMT", "ISFT",
            "smpl", "sm24", "phdr", "pbag", "pmod", "pgen", "inst", "ibag", "imod", "igen", "shdr"};
        return std::find(std::begin(names), std::end(names), std::string_view(text, 4)) != std::end(names);
    };
    return isName(next + 1) || !isName(next);
}

const ChunkPlace* SoundFontReader::find(const std::string& name) const {
    const auto found = chunks_.find(name);
    return found == chunks_.end() ? nullptr : &found->second;
}

template <std::size_t Size>
SoundFontReader::Records<Size> SoundFontReader::records(const std::string& name) {
    const ChunkPlace* place = find(name);
    if (!place) fail("the list " + name + " is missing");
    if (place->size % Size != 0) fail("the list " + name + " ends in the middle of an entry");
    Records<Size> list(place->size / Size); // the chunk lies within the file
    bytes_.seek(place->position);
    for (auto& record : list)
        if (!bytes_.read(record.data(), Size)) fail("the list " + name + " cannot be read");
    if (list.empty()) fail("the list " + name + " has no end entry");
    return list;
}

void SoundFontReader::readName() {
    out_.name = path_;
    const ChunkPlace* place = find("INFO/INAM");
    if (!place) return;
    std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(place->size, 256)), '\0');
    bytes_.seek(place->position);
    bytes_.readSome(text.data(), text.size());
    out_.name = fixedText(text.data(), text.size());
}

void SoundFontReader::readData() {
    const ChunkPlace* place = find("sdta/smpl");
    if (!place) fail("there is no sample data");
    out_.dataPosition = place->position;
    out_.dataPoints = static_cast<std::uint32_t>(std::min<std::uint64_t>(place->size / 2, UINT32_MAX));
    const ChunkPlace* low = find("sdta/sm24"); // to be ignored when it is not as long as the points
    if (low && low->size >= out_.dataPoints) out_.lowBytesPosition = low->position;
}

void SoundFontReader::readSamples() {
    const auto records = this->records<46>("pdta/shdr");
    for (std::size_t i = 0; i + 1 < records.size(); ++i) {
        const auto& r = records[i];
        SoundFontSample sample;
        sample.name = fixedText(r.data(), 20);
        sample.end = std::min(at<std::uint32_t>(r, 24), out_.dataPoints);
        sample.start = std::min(at<std::uint32_t>(r, 20), sample.end);
        sample.loopStart = at<std::uint32_t>(r, 28);
        sample.loopEnd = at<std::uint32_t>(r, 32);
        sample.rate = at<std::uint32_t>(r, 36);
        sample.rootKey = at<std::uint8_t>(r, 40) <= 127 ? at<std::uint8_t>(r, 40) : 60; // 255: no pitch
        sample.correction = at<std::int8_t>(r, 41);
        sample.link = at<std::uint16_t>(r, 42);
        sample.type = at<std::uint16_t>(r, 44);
        if ((sample.type & SoundFontSample::Compressed) != 0)
            readCompressed(sample, at<std::uint32_t>(r, 20), at<std::uint32_t>(r, 24));
        out_.samples.push_back(sample);
    }
}

// "sf3": start and end are bytes of the sample data, and the loop is counted from the sample's start.
void SoundFontReader::readCompressed(SoundFontSample& sample, std::uint32_t begin, std::uint32_t end) {
    const ChunkPlace data = *find("sdta/smpl");
    sample.type &= static_cast<std::uint16_t>(~SoundFontSample::Compressed);
    sample.start = sample.end = 0;
    if (begin >= end || end > data.size) return;
    const CompressedSound sound(path_, data.position + begin, end - begin);
    if (!sound.isOpen() || sound.channels() != 1) return;
    sample.end = static_cast<std::uint32_t>(std::min<std::uint64_t>(sound.frames(), UINT32_MAX));
    sample.bytesPosition = data.position + begin;
    sample.bytes = end - begin;
}

// The zones of one preset or instrument. A zone that names what it plays and what is not there is a fault of
// the file; one that names nothing says something for all others when it comes first, and nothing otherwise.
std::vector<GeneratorSet> SoundFontReader::zonesOf(const Zones& zones, std::size_t from, std::size_t to,
                                                   Generator target, std::size_t targets,
                                                   const std::string& owner) const {
    if (from > to || to >= zones.bags.size()) fail("\"" + owner + "\" has zones that are not there");
    std::vector<GeneratorSet> list;
    for (std::size_t bag = from; bag < to; ++bag) {
        const std::size_t first = at<std::uint16_t>(zones.bags[bag], 0);
        const std::size_t last = at<std::uint16_t>(zones.bags[bag + 1], 0);
        const std::size_t firstModulator = at<std::uint16_t>(zones.bags[bag], 2);
        const std::size_t lastModulator = at<std::uint16_t>(zones.bags[bag + 1], 2);
        if (first > last || last > zones.generators.size() || firstModulator > lastModulator ||
            lastModulator > zones.modulators.size())
            fail("\"" + owner + "\" has a zone whose values are not there");
        GeneratorSet set;
        for (std::size_t i = first; i < last && !set.has(target); ++i) { // what follows the target is ignored
            const auto id = at<std::uint16_t>(zones.generators[i], 0);
            if (id >= generatorCount) continue;
            set.amounts[id] = at<std::int16_t>(zones.generators[i], 2);
            set.given.set(id);
        }
        for (std::size_t i = firstModulator; i < lastModulator; ++i) {
            const auto& m = zones.modulators[i];
            set.modulators.push_back({at<std::uint16_t>(m, 0), at<std::uint16_t>(m, 2),
                                      at<std::int16_t>(m, 4), at<std::uint16_t>(m, 6),
                                      at<std::uint16_t>(m, 8)});
        }
        if (set.has(target) && static_cast<std::uint16_t>(set[target]) >= targets)
            fail("\"" + owner + "\" plays something that is not there");
        if (set.has(target) || bag == from) list.push_back(std::move(set));
    }
    return list;
}

SoundFontFile SoundFontReader::read() {
    char id[4], kind[4];
    std::uint32_t size = 0;
    if (!bytes_.read(id, 4) || !bytes_.read(size) || !bytes_.read(kind, 4) ||
        !std::equal(id, id + 4, "RIFF") || !std::equal(kind, kind + 4, "sfbk"))
        fail("this is no SoundFont file");
    chunks({12, bytes_.size() - 12}, "");
    out_.path = path_;
    readName();
    readData();
    readSamples();

    const Zones instruments{records<4>("pdta/ibag"), records<4>("pdta/igen"), records<10>("pdta/imod")};
    const auto instrumentHeaders = records<22>("pdta/inst");
    for (std::size_t i = 0; i + 1 < instrumentHeaders.size(); ++i) {
        SoundFontFile::Instrument instrument;
        instrument.name = fixedText(instrumentHeaders[i].data(), 20);
        instrument.zones = zonesOf(instruments, at<std::uint16_t>(instrumentHeaders[i], 20),
                                   at<std::uint16_t>(instrumentHeaders[i + 1], 20), Generator::SampleId,
                                   out_.samples.size(), instrument.name);
        out_.instruments.push_back(std::move(instrument));
    }

    const Zones presets{records<4>("pdta/pbag"), records<4>("pdta/pgen"), records<10>("pdta/pmod")};
    const auto presetHeaders = records<38>("pdta/phdr");
    for (std::size_t i = 0; i + 1 < presetHeaders.size(); ++i) {
        const auto& header = presetHeaders[i];
        SoundFontFile::Preset preset;
        preset.name = fixedText(header.data(), 20);
        preset.program = at<std::uint16_t>(header, 20);
        preset.bank = at<std::uint16_t>(header, 22);
        preset.zones =
            zonesOf(presets, at<std::uint16_t>(header, 24), at<std::uint16_t>(presetHeaders[i + 1], 24),
                    Generator::Instrument, out_.instruments.size(), preset.name);
        out_.presets.push_back(std::move(preset));
    }
    std::stable_sort(out_.presets.begin(), out_.presets.end(), [](const auto& a, const auto& b) {
        return std::pair(a.bank, a.program) < std::pair(b.bank, b.program);
    });
    return std::move(out_);
}

SoundFontFile SoundFontFile::read(const std::string& path) {
    return SoundFontReader(path).read();
}

} // namespace zarno
