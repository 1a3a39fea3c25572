// SPDX-License-Identifier: GPL-3.0-or-later
// The documents on formats say what the readers do.
#include "data/Limits.h"
#include "data/load/InstrumentFormat.h"
#include "data/sound/ZEmbeddedSoundFile.h"
#include "engine/Fields.h"
#include "engine/Records.h"
#include "gui/ControlBindings.h"
#include "gui/LayoutFormat.h"
#include "tools/zarno/FieldReference.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>

namespace zarno {
namespace {

using testing::HasSubstr;
using Row = std::vector<std::string>;

std::string document(const std::string& name) {
    std::ifstream file(std::string(ZARNO_SOURCE_FOLDER) + "/docs/" + name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The rows of the tables under a heading, without the titles; blanks and marks around cells taken away.
std::vector<Row> tableUnder(const std::string& text, const std::string& heading) {
    std::istringstream lines(text);
    std::vector<Row> rows;
    bool isInside = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("#")) isInside = line.find(heading) != std::string::npos;
        if (!isInside || !line.starts_with("|") || line.starts_with("|---")) continue;
        Row row;
        std::istringstream cells(line.substr(1));
        for (std::string cell; std::getline(cells, cell, '|');) {
            const auto first = cell.find_first_not_of(" `"), last = cell.find_last_not_of(" `");
            row.push_back(first == std::string::npos ? "" : cell.substr(first, last - first + 1));
        }
        rows.push_back(row);
    }
    if (!rows.empty()) rows.erase(rows.begin());
    return rows;
}

std::string number(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

template <typename Record>
void expectTableOf(const std::string& text, const std::string& name) {
    const RecordLayout& layout = layoutOf(Record());
    const auto rows = tableUnder(text, '`' + name + '`');
    ASSERT_EQ(rows.size(), layout.fields.size() + 1) << name;
    EXPECT_THAT(text, HasSubstr('`' + name + "`, " + std::to_string(layout.bytes) + " bytes"));
    for (std::size_t i = 0; i < layout.fields.size(); ++i) {
        const RecordField& field = layout.fields[i];
        const char* at = static_cast<const char*>(layout.defaults) + field.offset;
        std::int32_t whole = 0;
        float real = 0;
        std::memcpy(&whole, at, sizeof whole);
        std::memcpy(&real, at, sizeof real);
        const bool isFloat = field.type == FieldType::Float;
        const Row expected = {std::to_string(field.offset), std::string(field.name),
                              isFloat                        ? "float32"
                              : field.type == FieldType::Int ? "int32"
                                                             : "uint64",
                              isFloat ? number(real) : std::to_string(whole), std::string(field.unit)};
        EXPECT_EQ(Row(rows[i].begin(), rows[i].begin() + 5), expected) << name;
        for (std::size_t value = 0; value < field.choices.size(); ++value)
            EXPECT_THAT(rows[i][5],
                        HasSubstr(std::to_string(value) + ' ' + std::string(field.choices[value])));
    }
    EXPECT_EQ(rows.back()[0], std::to_string(layout.unreadOffset));
}

TEST(Documents, TheFormatIsTheOneThatIsRead) {
    const std::string text = document("format.md");
    expectTableOf<InstrumentSettings>(text, "InstrumentSettings");
    expectTableOf<GroupRecord>(text, "GroupRecord");
    expectTableOf<ZoneRecord>(text, "ZoneRecord");

    const std::string name = "text, " + std::to_string(limits::nameBytes) + " at most";
    std::map<std::string, std::string> form;
    for (const Row& row : tableUnder(text, "The sequence"))
        form.try_emplace(row[0], row[1]);
    EXPECT_EQ(form["name"], name);
    EXPECT_EQ(form["sample"], name);
    EXPECT_EQ(form["layout"], "text, " + std::to_string(limits::layoutBytes) + " at most");
    EXPECT_EQ(form["settings"], std::to_string(sizeof(InstrumentSettings)) + " bytes");
    EXPECT_THAT(text, HasSubstr('`' + std::string(format::magic, 4) + '`'));
    EXPECT_THAT(text, HasSubstr("int32 | " + std::to_string(format::newestVersion) + " is the newest"));
    EXPECT_THAT(text, HasSubstr("header of " + std::to_string(sizeof(SampleBlockHeader)) + " bytes"));
    for (const auto& [field, offset] :
         {std::pair("bytesPerSample", offsetof(SampleBlockHeader, bytesPerSample)),
          {"sampleRate", offsetof(SampleBlockHeader, sampleRate)},
          {"channels", offsetof(SampleBlockHeader, channels)},
          {"reserved", offsetof(SampleBlockHeader, reserved)},
          {"frames", offsetof(SampleBlockHeader, frames)}})
        EXPECT_THAT(text, HasSubstr("| " + std::to_string(offset) + " | " + field + " |"));
}

TEST(Documents, TheReferenceOfSettingsIsWhatZarnoFieldsPrints) {
    EXPECT_THAT(document("instrument-folder.md"), HasSubstr(fieldReference()));
}

TEST(Documents, TheLayoutsVocabularyIsWhole) {
    const std::string text = document("layout.md");
    std::vector<std::string> tags, attributes;
    for (const Row& row : tableUnder(text, "Controls"))
        tags.push_back(row[0]);
    ASSERT_EQ(tags.size(), std::size(controlTags));
    for (std::size_t i = 0; i < tags.size(); ++i)
        EXPECT_EQ(tags[i], controlTags[i].tag);

    std::map<std::string, Row> rows; // attributes first, then colours
    for (const Row& row : tableUnder(text, "Attributes"))
        rows[row[0]] = row;
    rows.erase("Attribute"); // the second table's title
    EXPECT_EQ(rows.size(), std::size(controlAttributes) + std::size(layoutColours));
    for (const auto name : controlAttributes)
        EXPECT_TRUE(rows.contains(std::string(name))) << name;
    for (const LayoutColour& colour : layoutColours) {
        const Row& row = rows[std::to_string(colour.id + layoutColourOffset)];
        ASSERT_EQ(row.size(), 3u) << colour.what;
        EXPECT_EQ(row[2], colour.what);
    }
}

TEST(Documents, EveryControlIdIsThereWithWhatItDoes) {
    const std::string text = document("layout.md");
    std::map<int, Row> knobs, combos, buttons;
    for (const auto& [heading, rows] :
         {std::pair("Knobs", &knobs), {"Combo boxes", &combos}, {"Buttons", &buttons}})
        for (const Row& row : tableUnder(text, heading))
            (*rows)[std::stoi(row[0])] = row;
    for (int id = 0; id < firstControllerId; ++id) {
        const KnobBinding* knob = findKnob(id);
        ASSERT_EQ(knobs.contains(id), knob != nullptr || id == pitchBendKnobId) << id;
        if (knob) {
            EXPECT_EQ(knobs[id][1], knob->setting);
            std::smatch ends;
            ASSERT_TRUE(std::regex_search(knobs[id][2], ends, std::regex(R"(^(-?[\d.]+) to \+?(-?[\d.]+))")))
                << id;
            EXPECT_NEAR(std::stod(ends[1]), knob->value(0.0), 0.001) << id;
            EXPECT_NEAR(std::stod(ends[2]), knob->value(1.0), 0.001) << id;
        }
        const ComboBinding* combo = findCombo(id);
        ASSERT_EQ(combos.contains(id), combo != nullptr) << id;
        if (combo) {
            std::string items;
            for (const char* item : combo->items)
                items += (items.empty() ? "" : ", ") + std::string(item);
            EXPECT_EQ(combos[id], (Row{std::to_string(id), combo->setting, items}));
        }
        const ButtonBinding* button = findButton(id);
        ASSERT_EQ(buttons.contains(id), button != nullptr) << id;
        if (button) {
            EXPECT_EQ(buttons[id][1], button->setting);
        }
    }
    EXPECT_TRUE(knobs.contains(firstControllerId));
}

} // namespace
} // namespace zarno
