// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/zarno/JsonPlaces.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <vector>

namespace zarno {
namespace {

// Walks over valid JSON without recursion, since its depth is the writer's choice.
class Walker {
  public:
    Walker(std::string_view text, std::unordered_map<std::string, JsonPlaces::Place>& places)
        : text_(text)
        , places_(places) {}

    void walk() {
        while (at_ < text_.size())
            step();
    }

  private:
    struct Container {
        bool isList = false;
        bool atKey = false; // of an object: a name comes next
        std::size_t index = 0;
        std::string path;
    };

    void step();
    void advance(std::size_t characters);
    std::string takeString();
    void value();
    std::string memberPath(const std::string& key) const {
        const std::string& outer = open_.back().path;
        return outer.empty() ? key : outer + '.' + key;
    }

    const std::string_view text_;
    std::unordered_map<std::string, JsonPlaces::Place>& places_;
    std::size_t at_ = 0;
    JsonPlaces::Place place_;
    std::vector<Container> open_;
    std::string key_; // path of the value that comes next
};

void Walker::advance(std::size_t bytes) {
    for (; bytes > 0; --bytes, ++at_) {
        const auto byte = static_cast<unsigned char>(text_[at_]);
        if (byte == '\n')
            ++place_.line, place_.column = 1;
        else if ((byte & 0xC0) != 0x80) // bytes within a character take no column
            ++place_.column;
    }
}

std::string Walker::takeString() {
    std::size_t end = at_ + 1;
    while (text_[end] != '"')
        end += text_[end] == '\\' ? 2 : 1;
    const std::string_view token = text_.substr(at_, end + 1 - at_);
    advance(token.size());
    return nlohmann::json::parse(token).get<std::string>();
}

// A value begins here.
void Walker::value() {
    if (!open_.empty() && open_.back().isList)
        key_ = open_.back().path + '[' + std::to_string(open_.back().index) + ']';
    places_.try_emplace(key_, place_);
}

void Walker::step() {
    const char c = text_[at_];
    const bool atKey = !open_.empty() && open_.back().atKey;
    if (c == '"' && atKey) {
        const JsonPlaces::Place place = place_;
        key_ = memberPath(takeString());
        places_.try_emplace(key_, place);
        open_.back().atKey = false;
    } else if (c == '{' || c == '[') {
        value();
        open_.push_back({c == '[', c == '{', 0, key_});
        advance(1);
    } else if (c == '}' || c == ']') {
        open_.pop_back();
        advance(1);
    } else if (c == ',') {
        if (open_.back().isList)
            ++open_.back().index;
        else
            open_.back().atKey = true;
        advance(1);
    } else if (c == '"') {
        value();
        takeString();
    } else if (std::string_view(": \t\r\n\xEF\xBB\xBF").find(c) != std::string_view::npos) {
        advance(1);
    } else {
        value();
        advance(std::min(text_.find_first_of(",]} \t\r\n", at_), text_.size()) - at_);
    }
}

} // namespace

JsonPlaces::JsonPlaces(std::string_view text) {
    Walker(text, places_).walk();
}

JsonPlaces::Place JsonPlaces::of(std::string where) const {
    for (;;) {
        if (const auto found = places_.find(where); found != places_.end()) return found->second;
        const auto cut = where.find_last_of(".[");
        if (cut == std::string::npos) break;
        where.resize(cut);
    }
    const auto root = places_.find("");
    return root == places_.end() ? Place() : root->second;
}

} // namespace zarno
