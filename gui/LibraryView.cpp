// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/LibraryView.h"

#include <algorithm>

namespace zarno {
namespace {

// The folder below the library's, "/" between its parts; empty for what lies in the library's own folder.
juce::String sectionOf(const juce::String& path, const juce::StringArray& folders) {
    const auto folder = juce::File::isAbsolutePath(path) ? juce::File(path).getParentDirectory() : juce::File();
    for (const auto& root : folders)
        if (juce::File::isAbsolutePath(root) && (folder == juce::File(root) || folder.isAChildOf(juce::File(root)))) {
            const auto below = folder.getRelativePathFrom(juce::File(root)).replaceCharacter('\\', '/');
            return below == "." ? juce::String() : below;
        }
    return folder.getFileName();
}

} // namespace

void LibraryView::setLibrary(const juce::StringArray& titles, const juce::StringArray& paths,
                             const juce::StringArray& folders, const juce::StringArray& recent) {
    entries_.clear();
    recent_.clear();
    for (int i = 0; i < titles.size(); ++i) {
        const auto section = sectionOf(paths[i], folders);
        entries_.push_back({titles[i], section, (titles[i] + "\n" + section).toLowerCase(), i});
    }
    std::stable_sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
        const int bySection = a.section.compareNatural(b.section);
        return bySection != 0 ? bySection < 0 : a.title.compareNatural(b.title) < 0;
    });
    for (const auto& path : recent)
        for (std::size_t i = 0; i < entries_.size(); ++i)
            if (paths[entries_[i].index] == path) recent_.push_back(static_cast<int>(i));
    search({});
}

const std::vector<LibraryView::Row>& LibraryView::search(const juce::String& text) {
    rows_.clear();
    const auto wanted = text.trim().toLowerCase();
    if (wanted.isEmpty()) {
        if (!recent_.empty()) rows_.push_back({"Recent", {}, -1});
        for (const int place : recent_) {
            const auto& entry = entries_[static_cast<std::size_t>(place)];
            rows_.push_back({entry.title, entry.section, entry.index});
        }
        const juce::String* section = nullptr;
        for (const auto& entry : entries_) {
            if (section == nullptr || *section != entry.section)
                rows_.push_back({entry.section.isEmpty() ? juce::String("Library") : entry.section, {}, -1});
            section = &entry.section;
            rows_.push_back({entry.title, {}, entry.index});
        }
        return rows_;
    }
    const auto words = juce::StringArray::fromTokens(wanted, false);
    for (const bool begins : {true, false})
        for (const auto& entry : entries_) {
            if (entry.searched.startsWith(wanted) != begins) continue;
            if (std::all_of(words.begin(), words.end(),
                            [&](const auto& word) { return entry.searched.contains(word); }))
                rows_.push_back({entry.title, entry.section, entry.index});
        }
    return rows_;
}

int LibraryView::rowOf(int index) const {
    for (std::size_t i = rows_.size(); i-- > 0;)
        if (index >= 0 && rows_[i].index == index) return static_cast<int>(i);
    return -1;
}

juce::StringArray withMostRecent(const juce::StringArray& recent, const juce::String& path, int most) {
    auto list = recent;
    list.removeString(path);
    list.removeEmptyStrings();
    list.insert(0, path);
    list.removeRange(most, list.size());
    return list;
}

} // namespace zarno
