// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/load/InstrumentFile.h"

#include "data/Bytes.h"
#include "data/Limits.h"
#include "platform/File.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace zarno {
namespace {

using Refusal = InstrumentFile::Refusal;

std::string quoted(const StoredText& text) {
    return '"' + std::string(text.text()) + '"';
}

// Reads the fields in file order. Each function returns false when reading has to stop.
class Parser {
  public:
    Parser(Bytes& in, InstrumentFile& out, const std::function<void()>& alive = {})
        : in_(in)
        , out_(out)
        , alive_(alive) {}

    Refusal head();
    void body();

  private:
    bool stop(Incomplete::Cause cause, std::string reason);
    bool endsIn(const std::string& what);
    template <typename T>
    bool value(T& field, const char* what);
    bool text(StoredText& field, std::size_t limit, const std::string& what);
    bool image();
    bool licences();
    bool groups();
    bool group(std::size_t index);
    bool zone(GroupEntry& group, std::size_t index);
    bool sampleBlock(ZoneEntry& zone);

    template <typename T>
    void reserve(std::vector<T>& list, std::int32_t count, std::size_t smallestEntry) {
        list.reserve(std::min<std::uint64_t>(std::max(count, 0), in_.left() / smallestEntry));
    }

    Bytes& in_;
    InstrumentFile& out_;
    const std::function<void()> alive_;
    std::unordered_map<std::string, std::size_t> blockOf_;
};

bool Parser::stop(Incomplete::Cause cause, std::string reason) {
    if (!out_.incomplete) out_.incomplete = Incomplete{in_.position(), std::move(reason), cause};
    return false;
}

bool Parser::endsIn(const std::string& what) {
    if (in_.readFailed()) return stop(Incomplete::Cause::ReadError, "the file cannot be read in " + what);
    return stop(Incomplete::Cause::EndOfFile, "the file ends in " + what);
}

template <typename T>
bool Parser::value(T& field, const char* what) {
    return in_.read(&field, sizeof field) || endsIn(what);
}

bool Parser::text(StoredText& field, std::size_t limit, const std::string& what) {
    const Bytes::StringEnd end = in_.readString(field.bytes, limit);
    field.terminated = end != Bytes::StringEnd::Limit;
    return end != Bytes::StringEnd::EndOfFile || endsIn(what);
}

Refusal Parser::head() {
    if (in_.readSome(out_.magic, sizeof out_.magic) < sizeof out_.magic) endsIn("the magic");
    // On purpose one matching byte is enough: instruments with a damaged magic are in use.
    bool matches = false;
    for (int i = 0; i < 4; ++i)
        matches = matches || out_.magic[i] == format::magic[i];
    if (!matches) return Refusal::NotAnInstrument;
    if (!value(out_.version, "the version")) return Refusal::None;
    if (out_.version > format::newestVersion) return Refusal::TooNew;
    if (value(out_.storage, "the storage flag") && text(out_.name, limits::nameBytes, "the name"))
        text(out_.title, limits::nameBytes, "the title");
    return Refusal::None;
}

void Parser::body() {
    if (out_.incomplete) return;
    static_cast<void>(value(out_.settings, "the instrument record") &&
                      text(out_.remark, limits::nameBytes, "the remark") && image() &&
                      text(out_.layout, limits::layoutBytes, "the layout text") && licences() && groups());
}

bool Parser::image() {
    if (!value(out_.imageSize, "the image size")) return false;
    if (out_.imageSize < 1) return true;
    return in_.readBlock(out_.image, static_cast<std::uint64_t>(out_.imageSize)) || endsIn("the panel image");
}

bool Parser::licences() {
    if (!value(out_.licenceCount, "the licence count")) return false;
    if (out_.licenceCount > limits::licenceTexts)
        return stop(Incomplete::Cause::Limit, "it states too many licence texts");
    reserve(out_.licences, out_.licenceCount, 1);
    for (std::int32_t i = 0; i < out_.licenceCount; ++i) {
        StoredText licence;
        if (!text(licence, limits::nameBytes, "licence text " + std::to_string(i + 1))) return false;
        out_.licences.push_back(std::move(licence));
    }
    return true;
}

bool Parser::groups() {
    if (!value(out_.groupCount, "the group count")) return false;
    reserve(out_.groups, out_.groupCount, format::smallestGroup);
    for (std::int32_t i = 0; i < out_.groupCount; ++i)
        if (!group(static_cast<std::size_t>(i) + 1)) return false;
    return true;
}

bool Parser::group(std::size_t number) {
    GroupEntry entry;
    const std::string where = "group " + std::to_string(number);
    if (!text(entry.name, limits::nameBytes, "the name of " + where)) return false;
    if (!in_.read(&entry.record, sizeof entry.record)) return endsIn("the record of " + where);
    out_.groups.push_back(std::move(entry));
    GroupEntry& kept = out_.groups.back();
    if (!in_.read(kept.zoneCount)) return endsIn("the zone count of " + where);
    reserve(kept.zones, kept.zoneCount, format::smallestZone);
    for (std::int32_t i = 0; i < kept.zoneCount; ++i)
        if (!zone(kept, static_cast<std::size_t>(i) + 1)) return false;
    return true;
}

bool Parser::zone(GroupEntry& group, std::size_t number) {
    if (alive_) alive_();
    ZoneEntry entry;
    const std::string where =
        "zone " + std::to_string(number) + " of group " + std::to_string(out_.groups.size());
    if (!text(entry.sample, limits::nameBytes, "the sample name of " + where)) return false;
    if (out_.isEmbedded() && !sampleBlock(entry)) return false;
    if (!in_.read(&entry.record, sizeof entry.record)) return endsIn("the record of " + where);
    group.zones.push_back(std::move(entry));
    return true;
}

bool Parser::sampleBlock(ZoneEntry& zone) {
    const auto [found, isNew] = blockOf_.try_emplace(std::string(zone.sample.text()), out_.blocks.size());
    zone.block = found->second;
    if (!isNew) return true;

    SampleBlock block;
    block.name = found->first;
    block.position = in_.position();
    if (!in_.read(&block.header, sizeof block.header))
        return endsIn("the sample header of " + quoted(zone.sample));
    const bool sixteenBit = out_.settings.sixteenBitStored != 0;
    block.dataBytes = format::sampleDataBytes(sixteenBit, block.header.channels, block.header.frames);
    out_.blocks.push_back(block);
    if (block.dataBytes > in_.left()) {
        in_.seek(in_.size());
        return endsIn("the sample data of " + quoted(zone.sample));
    }
    in_.seek(in_.position() + block.dataBytes);
    return true;
}

} // namespace

InstrumentFile::Refusal InstrumentFile::parse(Bytes& bytes, const std::function<void()>& alive) {
    *this = InstrumentFile();
    fileSize = bytes.size();
    Parser parser(bytes, *this, alive);
    const Refusal refusal = parser.head();
    if (refusal == Refusal::None) parser.body();
    endOffset = bytes.position();
    return refusal;
}

const char* describe(InstrumentFile::Refusal refusal) {
    switch (refusal) {
    case Refusal::None:
        return "accepted";
    case Refusal::CannotOpen:
        return "the file cannot be opened";
    case Refusal::NotAnInstrument:
        return "this is not an instrument file";
    case Refusal::TooNew:
        return "the instrument was made for a newer version";
    }
    return "";
}

std::optional<HeaderNames> peekHeader(const std::string& path) {
    const File file(path);
    if (!file.isOpen()) return std::nullopt;
    file.adviseRandom(); // else the kernel fetches far more than the header
    Bytes bytes(file, headerPeekBytes);
    InstrumentFile parsed;
    parsed.fileSize = file.size();
    if (Parser(bytes, parsed).head() != Refusal::None) return std::nullopt;
    return HeaderNames{std::string(parsed.name.text()), std::string(parsed.title.text())};
}

} // namespace zarno
