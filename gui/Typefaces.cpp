// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/Typefaces.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace zarno {
namespace {

const juce::StringArray& installedTypefaces() {
    static const juce::StringArray names = juce::Font::findAllTypefaceNames();
    return names;
}

juce::String firstInstalled(std::initializer_list<const char*> names) {
    for (const char* name : names)
        if (installedTypefaces().contains(name)) return name;
    return {};
}

#if JUCE_LINUX
// Stands for the face in the collection that is found; no face has this name.
constexpr const char* collected = "<Collected>";

juce::StringArray fontFolders() {
    const auto variable = [](const char* name) {
        return juce::SystemStats::getEnvironmentVariable(name, {});
    };
    auto folders = juce::StringArray::fromTokens(variable("JUCE_FONT_PATH"), ";,", {}); // as the framework's
    folders.removeEmptyStrings();
    if (!folders.isEmpty()) return folders;
    const auto data = variable("XDG_DATA_HOME");
    return {"/usr/share/fonts", "/usr/local/share/fonts", "~/.fonts",
            (data.isEmpty() ? juce::String("~/.local/share") : data) + "/fonts"};
}

juce::File findCollection() {
    constexpr const char* bestFirst[] = {"NotoSansCJK-Regular.ttc", "SourceHanSans.ttc", "wqy-microhei.ttc",
                                         "wqy-zenhei.ttc", "uming.ttc"};
    juce::File found;
    auto best = std::end(bestFirst);
    for (const auto& folder : fontFolders())
        for (const auto& entry : juce::RangedDirectoryIterator(
                 juce::File::getCurrentWorkingDirectory().getChildFile(folder), true, "*.ttc")) {
            const auto rank = std::find(std::begin(bestFirst), best, entry.getFile().getFileName());
            if (rank == best) continue;
            best = rank;
            found = entry.getFile();
        }
    return found;
}

// Null when there is none. Looked for when a character is missing for the first time.
juce::Typeface::Ptr collectedTypeface() {
    static const juce::File collection = findCollection();
    juce::MemoryBlock data;
    if (!collection.existsAsFile() || !collection.loadFileAsData(data)) return nullptr;
    return juce::Typeface::createSystemTypefaceFor(data.getData(), data.getSize());
}

// A face that lets the one for missing characters draw what it has not. Glyphs of the framework's faces have
// the numbers of their characters.
class CompleteTypeface final : public juce::Typeface {
  public:
    explicit CompleteTypeface(const juce::Typeface::Ptr& face)
        : Typeface(face->getName(), face->getStyle())
        , face_(face) {
        constexpr int noCharacter = 0xFFFF;
        face_->getOutlineForGlyph(noCharacter, box_);
    }

    bool isSuitableForFont(const juce::Font& font) const override { return face_->isSuitableForFont(font); }
    float getAscent() const override { return face_->getAscent(); }
    float getDescent() const override { return face_->getDescent(); }
    float getHeightToPointsFactor() const override { return face_->getHeightToPointsFactor(); }
    bool isHinted() const override { return face_->isHinted(); }

    float getStringWidth(const juce::String& text) override {
        juce::Array<int> glyphs;
        juce::Array<float> offsets;
        getGlyphPositions(text, glyphs, offsets);
        return offsets.getLast();
    }

    // Run by run of what one face has, so that its kerning is kept.
    void getGlyphPositions(const juce::String& text, juce::Array<int>& glyphs,
                           juce::Array<float>& offsets) override {
        offsets.add(0.0f);
        for (auto start = text.getCharPointer(); !start.isEmpty();) {
            const bool isOurs = has(*start);
            auto end = start;
            while (!end.isEmpty() && has(*end) == isOurs)
                ++end;
            juce::Array<float> inRun;
            (isOurs ? face_ : getFallbackTypeface())->getGlyphPositions({start, end}, glyphs, inRun);
            const float before = offsets.getLast();
            for (int i = 1; i < inRun.size(); ++i)
                offsets.add(before + inRun[i]);
            start = end;
        }
    }

    bool getOutlineForGlyph(int glyph, juce::Path& path) override {
        return faceOf(glyph)->getOutlineForGlyph(glyph, path);
    }
    juce::EdgeTable* getEdgeTableForGlyph(int glyph, const juce::AffineTransform& transform,
                                          float height) override {
        return faceOf(glyph)->getEdgeTableForGlyph(glyph, transform, height);
    }

  private:
    // Characters without one look like no character at all.
    bool has(juce::juce_wchar character) {
        if (character < 128) return true;
        const auto [known, isNew] = has_.try_emplace(character, false);
        if (isNew) {
            juce::Path outline;
            known->second =
                face_->getOutlineForGlyph(static_cast<int>(character), outline) && outline != box_;
        }
        return known->second;
    }
    juce::Typeface::Ptr faceOf(int glyph) {
        return has(static_cast<juce::juce_wchar>(glyph)) ? face_ : getFallbackTypeface();
    }

    juce::Typeface::Ptr face_;
    juce::Path box_;
    std::unordered_map<juce::juce_wchar, bool> has_;
};
#endif

} // namespace

void chooseTypefaces(juce::LookAndFeel& lookAndFeel) {
    if (const auto face = firstInstalled({"SimHei"}); face.isNotEmpty())
        lookAndFeel.setDefaultSansSerifTypefaceName(face);
    auto fallback = firstInstalled({"Noto Sans CJK SC", "Source Han Sans SC", "Source Han Sans CN",
                                    "WenQuanYi Zen Hei", "WenQuanYi Micro Hei", "Droid Sans Fallback",
                                    "Microsoft YaHei", "SimSun", "MS Gothic"});
#if JUCE_LINUX
    if (fallback.isEmpty()) fallback = collected;
#endif
    if (fallback.isNotEmpty()) juce::Font::setFallbackFontName(fallback);
}

#if JUCE_LINUX
juce::Font installedFont(juce::Font font) {
    const auto name = font.getTypefaceName();
    const bool isPlaceholder = name.startsWithChar('<') && name != collected;
    if (!isPlaceholder && !installedTypefaces().contains(name))
        font.setTypefaceName(juce::Font::getDefaultSansSerifFontName());
    return font;
}

juce::Typeface::Ptr completeTypeface(const juce::Font& font, const juce::Typeface::Ptr& face) {
    const auto name = font.getTypefaceName();
    if (name != juce::Font::getFallbackFontName()) return new CompleteTypeface(face);
    const auto fromCollection = name == collected ? collectedTypeface() : nullptr;
    return fromCollection != nullptr ? fromCollection : face;
}
#else
juce::Font installedFont(juce::Font font) {
    return font;
}
juce::Typeface::Ptr completeTypeface(const juce::Font&, const juce::Typeface::Ptr& face) {
    return face;
}
#endif

} // namespace zarno
