// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/SoundFontImport.h"

#include "tools/import/EqualPower.h"
#include "tools/import/SoundFontFrames.h"
#include "tools/import/SoundFontShaping.h"
#include "tools/import/SoundFontVoices.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <deque>
#include <map>

namespace zarno {
namespace {

// How players of these files read their numbers; the reference implementation, where the standard and the
// hardware it describes differ.
constexpr double attenuationScale = 0.4;  // of initial attenuation
constexpr double velocityDecibels = 40.0; // for a factor of ten
constexpr int fullVelocityAmount = 960;
constexpr int noKey = -1;
constexpr double usualVibratoRate = 8.176; // Hz
constexpr int polyphony = 64;              // presets are layered, and pairs of samples may be two voices

double attenuationOf(const SoundFontVoice& voice) { // dB
    return attenuationScale / 10.0 * voice[Generator::Attenuation];
}

// All that must be the same in the voices of a left and a right side.
using SharedBySides = std::array<int, generatorCount + 6>;

SharedBySides sharedBySides(const SoundFontVoice& voice) {
    SharedBySides shared{voice.lowKey,       voice.highKey,        voice.lowVelocity,
                         voice.highVelocity, voice.velocityAmount, static_cast<int>(voice.instrument)};
    std::copy(voice.amounts.begin(), voice.amounts.end(), shared.begin() + 6);
    for (const Generator own : {Generator::Pan, Generator::SampleId})
        shared[6 + static_cast<std::size_t>(own)] = 0;
    return shared;
}

bool isHardSide(const SoundFontSample& sample, int pan) {
    return (sample.type == SoundFontSample::Left && pan <= -500) ||
           (sample.type == SoundFontSample::Right && pan >= 500);
}

// `other` is the sample that `one` is linked with.
bool areSides(std::size_t indexOfOne, const SoundFontSample& one, const SoundFontSample& other) {
    const auto shape = [](const SoundFontSample& s) {
        return std::tuple(s.end - s.start, s.loopStart - s.start, s.loopEnd - s.start, s.rate, s.rootKey,
                          s.correction);
    };
    return other.link == indexOfOne && other.type != one.type && other.isCompressed() == one.isCompressed() &&
           shape(one) == shape(other);
}

class PresetImport {
  public:
    PresetImport(const SoundFontFile& file, const SoundFontFile::Preset& preset, ImportReport& report)
        : file_(std::make_shared<SoundFontFile>(file))
        , preset_(preset)
        , report_(report)
        , place_("preset \"" + preset.name + '"') {}

    ImportedInstrument run();

  private:
    void remark(const char* what, const char* instead) { report_.add(what, instead, place_); }
    bool isPlayable(const SoundFontVoice& voice);
    std::vector<std::optional<std::size_t>> otherSides(const std::vector<SoundFontVoice>& voices) const;
    void addZone(const SoundFontVoice& voice, const SoundFontVoice* right);
    void addLayers(ImportedZone zone, double attenuation);
    std::size_t sampleFor(std::size_t left, std::optional<std::size_t> right);
    void setPitch(ImportedZone& zone, const SoundFontVoice& voice);
    void setLevel(ImportedZone& zone, const SoundFontVoice& voice, bool isPair);
    void setPoints(ImportedZone& zone, const SoundFontVoice& voice);
    void reportRest(const SoundFontVoice& voice);

    std::shared_ptr<const SoundFontFile> file_; // readers of frames outlive this
    const SoundFontFile::Preset& preset_;
    ImportReport& report_;
    std::string place_;
    ImportedInstrument out_;
    std::map<std::pair<std::size_t, std::optional<std::size_t>>, std::size_t> samples_;
};

bool PresetImport::isPlayable(const SoundFontVoice& voice) {
    const SoundFontSample& sample = file_->samples[voice.sample];
    const bool isRom = (sample.type & 0x8000) != 0;
    if (isRom)
        remark("sample in a sound card's memory", "left out");
    else if (sample.start == sample.end || sample.rate < 400 || sample.rate > 384000)
        remark("empty sample, or one without a real sample rate", "left out");
    else
        return true;
    return false;
}

// Zones that play the sides of one recording, hard left and right, sound as one zone would: for the first of
// two, the index of the other one. Of any number of voices in little time, whatever the file.
std::vector<std::optional<std::size_t>>
PresetImport::otherSides(const std::vector<SoundFontVoice>& voices) const {
    std::vector<std::optional<std::size_t>> others(voices.size());
    std::map<std::pair<std::size_t, SharedBySides>, std::deque<std::size_t>> waiting; // by sample
    for (std::size_t i = 0; i < voices.size(); ++i) {
        const SoundFontSample& sample = file_->samples[voices[i].sample];
        if (!isHardSide(sample, voices[i][Generator::Pan])) continue;
        const SharedBySides shared = sharedBySides(voices[i]);
        const auto before = waiting.find({sample.link, shared});
        if (before != waiting.end() && !before->second.empty() &&
            areSides(voices[i].sample, sample, file_->samples[sample.link])) {
            others[before->second.front()] = i;
            before->second.pop_front();
        } else {
            waiting[{voices[i].sample, shared}].push_back(i);
        }
    }
    return others;
}

std::size_t PresetImport::sampleFor(std::size_t left, std::optional<std::size_t> right) {
    const auto [found, isNew] = samples_.try_emplace({left, right}, out_.samples.size());
    if (!isNew) return found->second;
    const SoundFontSample& sample = file_->samples[left];
    ImportedSample made;
    made.name = sample.name;
    made.identity = std::to_string(left) + (right ? '+' + std::to_string(*right) : "");
    made.format.sampleRate = static_cast<int>(sample.rate);
    made.format.channels = right ? 2 : 1;
    made.format.frames = sample.end - sample.start;
    made.format.bits = file_->lowBytesPosition > 0 ? 24 : 16;
    made.open = [file = file_, left, right] { return openFrames(*file, left, right); };
    out_.samples.push_back(std::move(made));
    return found->second;
}

// A zone that sounds as if one certain key were played has no key tracking.
void PresetImport::setPitch(ImportedZone& zone, const SoundFontVoice& voice) {
    const SoundFontSample& sample = file_->samples[voice.sample];
    const int root = voice[Generator::RootKey];
    zone.rootKey = root >= 0 && root <= 127 ? root : sample.rootKey;
    zone.keyTracking = voice[Generator::ScaleTuning];
    zone.tune = sample.correction * zone.keyTracking / 100.0 + voice[Generator::FineTune] +
                100.0 * voice[Generator::CoarseTune];
    if (voice[Generator::FixedKey] != noKey) {
        zone.tune += zone.keyTracking * (voice[Generator::FixedKey] - zone.rootKey);
        zone.keyTracking = 0.0;
    }
    zone.tune += zone.shaping.contourToPitch * zone.shaping.contour.rest;
}

void PresetImport::setLevel(ImportedZone& zone, const SoundFontVoice& voice, bool isPair) {
    zone.volume = -attenuationOf(voice);
    zone.volume -=
        soundFontResonance(voice) / 2.0; // as the format has it, whether the filter is heard or not
    if (voice[Generator::Pan] != 0) Sides::ofPan(voice[Generator::Pan] / 500.0).applyTo(zone);
    if (isPair) zone.pan = 0.0; // both sides in full
    zone.velocityTracking = static_cast<double>(voice.velocityAmount) / fullVelocityAmount;
    if (const int velocity = voice[Generator::FixedVelocity]; velocity > 0) {
        zone.volume += zone.velocityTracking * velocityDecibels * std::log10(std::min(velocity, 127) / 127.0);
        zone.velocityTracking = 0.0;
    }
    zone.envelope = soundFontEnvelope(voice, zone.shaping.level);
}

void PresetImport::setPoints(ImportedZone& zone, const SoundFontVoice& voice) {
    const SoundFontSample& sample = file_->samples[voice.sample];
    const auto frame = [&](std::int64_t point, Generator fine, Generator coarse) {
        point += voice[fine] + 32768ll * voice[coarse] - sample.start;
        return static_cast<std::uint64_t>(std::clamp<std::int64_t>(point, 0, sample.end - sample.start));
    };
    zone.start = frame(sample.start, Generator::StartOffset, Generator::StartCoarseOffset);
    zone.end = frame(sample.end, Generator::EndOffset, Generator::EndCoarseOffset);
    zone.loopStart = frame(sample.loopStart, Generator::LoopStartOffset, Generator::LoopStartCoarseOffset);
    zone.loopEnd = frame(sample.loopEnd, Generator::LoopEndOffset, Generator::LoopEndCoarseOffset);
    const int mode = voice[Generator::SampleModes] & 3;
    if (mode != 1 && mode != 3) return;
    if (zone.loopStart >= zone.loopEnd) return remark("loop without frames", "plays without a loop");
    zone.loop = LoopMode::Loop;
    if (mode == 3) remark("loop that ends with the key", "loops through the release, too");
}

void PresetImport::reportRest(const SoundFontVoice& voice) {
    if (voice[Generator::ReverbSend] != 0 || voice[Generator::ChorusSend] != 0)
        remark("reverb or chorus send", "left out; the instrument has one reverb for all");
    if (voice.unknownModulators > 0) remark("modulator", "left out");
}

void PresetImport::addZone(const SoundFontVoice& voice, const SoundFontVoice* right) {
    ImportedZone zone;
    zone.sample = sampleFor(voice.sample, right ? std::optional(right->sample) : std::nullopt);
    zone.place = place_;
    zone.group = file_->instruments[voice.instrument].name;
    zone.keys = {voice.lowKey, voice.highKey};
    zone.velocities = {std::max(1, voice.lowVelocity), voice.highVelocity};
    zone.choke = std::max(0, voice[Generator::ExclusiveClass]);
    zone.shaping = soundFontShaping(voice);
    setPitch(zone, voice);
    setLevel(zone, voice, right != nullptr);
    setPoints(zone, voice);
    reportRest(voice);
    if (zone.velocities.isEmpty() || zone.start >= zone.end)
        return remark("zone that nothing can play", "left out");
    addLayers(zone, attenuationOf(voice));
}

// A zone that is louder than full level is so until velocity has made up for it: no voice is louder than
// that.
void PresetImport::addLayers(ImportedZone zone, double attenuation) {
    const double decades = std::min(attenuation, 0.0) / velocityDecibels; // of velocity
    const int loudest = zone.velocityTracking > 0.0
                            ? static_cast<int>(127.0 * std::pow(10.0, decades / zone.velocityTracking))
                            : 0;
    if (attenuation < 0.0 && loudest < zone.velocities.high) {
        ImportedZone full = zone;
        full.velocities.low = std::max(zone.velocities.low, loudest + 1);
        full.velocityTracking = 0.0;
        full.volume += attenuation;
        out_.zones.push_back(std::move(full));
        zone.velocities.high = loudest;
    }
    if (!zone.velocities.isEmpty()) out_.zones.push_back(std::move(zone));
}

ImportedInstrument PresetImport::run() {
    out_.name = preset_.name.empty() ? "Preset " + std::to_string(preset_.program) : preset_.name;
    out_.polyphony = polyphony;
    out_.volume = chordHeadroom;
    out_.vibratoRate = usualVibratoRate; // on the mod wheel, as the format has it for every preset
    const auto voices = voicesOf(*file_, preset_);
    const auto others = otherSides(voices);
    std::vector<bool> done(voices.size(), false);
    for (std::size_t i = 0; i < voices.size(); ++i) {
        if (done[i] || !isPlayable(voices[i])) continue;
        const SoundFontVoice *voice = &voices[i], *other = nullptr;
        if (others[i]) {
            other = &voices[*others[i]];
            done[*others[i]] = true;
        }
        if (other && file_->samples[voice->sample].type == SoundFontSample::Right) std::swap(voice, other);
        addZone(*voice, other);
    }
    if (out_.zones.empty()) throw MakerError(file_->path, place_ + " plays nothing");
    return std::move(out_);
}

std::optional<int> number(std::string_view text) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return value;
}

} // namespace

ImportedInstrument importPreset(const SoundFontFile& file, const SoundFontFile::Preset& preset,
                                ImportReport& report) {
    return PresetImport(file, preset, report).run();
}

std::string fileNameOf(const SoundFontFile::Preset& preset) {
    char numbers[16];
    std::snprintf(numbers, sizeof numbers, "%03d-%03d ", preset.bank & 0x3FFF, preset.program & 0x3FFF);
    std::string name = numbers + preset.name;
    for (char& c : name)
        if (static_cast<unsigned char>(c) < 32 ||
            std::string_view("<>:\"/\\|?*").find(c) != std::string_view::npos)
            c = '_';
    while (name.ends_with('.') || name.ends_with(' ')) // which Windows would drop
        name.pop_back();
    return name;
}

const SoundFontFile::Preset& findPreset(const SoundFontFile& file, const std::string& wanted) {
    const auto colon = wanted.find(':');
    const auto bank = colon == std::string::npos ? 0 : number(std::string_view(wanted).substr(0, colon));
    const auto program = number(std::string_view(wanted).substr(colon == std::string::npos ? 0 : colon + 1));
    for (const auto& preset : file.presets)
        if ((bank && program && preset.bank == *bank && preset.program == *program) || preset.name == wanted)
            return preset;
    throw MakerError(file.path, "there is no preset \"" + wanted + '"');
}

} // namespace zarno
