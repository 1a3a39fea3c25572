// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/import/sfz/SfzText.h"

#include "data/Limits.h"
#include "tools/zarno/MakerError.h"

#include <algorithm>
#include <cctype>

namespace zarno {
namespace {

bool isWordCharacter(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool isSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// Comments become spaces; lines stay where they are.
std::string withoutComments(std::string_view text) {
    std::string out(text);
    enum { Code, ToEndOfLine, Block } state = Code;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::string_view here(out.data() + i, std::min<std::size_t>(2, out.size() - i));
        if (out[i] == '\n') {
            if (state == ToEndOfLine) state = Code;
            continue;
        }
        if (state == Code && here == "//") state = ToEndOfLine;
        if (state == Code && here == "/*") {
            state = Block;
            out[i++] = ' ';
        } else if (state == Block && here == "*/") {
            state = Code;
            out[i++] = ' ';
        } else if (state == Code) {
            continue;
        }
        out[i] = ' ';
    }
    return out;
}

class LineReader {
  public:
    LineReader(const SfzIncludes& includes, ImportReport& report)
        : includes_(includes)
        , report_(report) {}

    void readFile(std::string_view text, const std::string& name, int depth);
    std::vector<SfzLine> takeLines() { return std::move(lines_); }

  private:
    // A line in the making.
    struct Scan {
        std::string_view rest;
        SfzLine line;
        int depth;
    };
    void readLine(Scan& scan);
    void define(Scan& scan);
    void include(Scan& scan);
    void expand(Scan& scan);
    void flush(Scan& scan);
    static std::string_view takeWord(Scan& scan);

    const SfzIncludes& includes_;
    ImportReport& report_;
    std::map<std::string, std::string, std::less<>> definitions_; // without the $
    std::vector<SfzLine> lines_;
    std::size_t bytes_ = 0;
    int includeCount_ = 0;
};

void LineReader::readFile(std::string_view text, const std::string& name, int depth) {
    bytes_ += text.size();
    if (bytes_ > limits::importedTextBytes)
        throw MakerError(name, "the text with all it includes is too long");
    const auto file = std::make_shared<const std::string>(name);
    const std::string code = withoutComments(text);
    int number = 0;
    for (std::size_t at = 0; at < code.size();) {
        const std::size_t end = std::min(code.find('\n', at), code.size());
        Scan scan{std::string_view(code).substr(at, end - at), {{}, file, ++number}, depth};
        if (scan.rest.size() > limits::importedLineBytes)
            throw MakerError(scan.line.place(), "the line is too long");
        readLine(scan);
        at = end + 1;
    }
}

void LineReader::flush(Scan& scan) {
    bytes_ += scan.line.text.size();
    if (bytes_ > limits::importedTextBytes)
        throw MakerError(scan.line.place(), "the text with all its definitions is too long");
    if (std::any_of(scan.line.text.begin(), scan.line.text.end(), [](char c) { return !isSpace(c); }))
        lines_.push_back(scan.line);
    scan.line.text.clear();
}

void LineReader::readLine(Scan& scan) {
    const auto startsWord = [&](std::string_view word) {
        return scan.rest.starts_with(word) && scan.rest.size() > word.size() &&
               isSpace(scan.rest[word.size()]);
    };
    while (!scan.rest.empty()) {
        if (startsWord("#define")) {
            define(scan);
        } else if (startsWord("#include")) {
            include(scan);
        } else if (scan.rest.front() == '$') {
            expand(scan);
        } else {
            scan.line.text += scan.rest.front();
            scan.rest.remove_prefix(1);
        }
        if (scan.line.text.size() > limits::importedLineBytes)
            throw MakerError(scan.line.place(), "the line is too long");
    }
    flush(scan);
}

std::string_view LineReader::takeWord(Scan& scan) {
    while (!scan.rest.empty() && isSpace(scan.rest.front()))
        scan.rest.remove_prefix(1);
    const auto end = std::find_if(scan.rest.begin(), scan.rest.end(), isSpace);
    const auto word = scan.rest.substr(0, static_cast<std::size_t>(end - scan.rest.begin()));
    scan.rest.remove_prefix(word.size());
    return word;
}

void LineReader::define(Scan& scan) {
    takeWord(scan); // the directive
    const std::string_view name = takeWord(scan), value = takeWord(scan);
    if (name.size() < 2 || name.front() != '$') {
        report_.add("#define without a $name", "ignored", scan.line.place());
        return;
    }
    if (definitions_.size() >= limits::importedDefinitions)
        throw MakerError(scan.line.place(), "there are too many definitions");
    definitions_.insert_or_assign(std::string(name.substr(1)), std::string(value));
}

// The longest name that is defined: "$KEYS" is $KEY and an "S" when there is no $KEYS.
void LineReader::expand(Scan& scan) {
    std::size_t length = 1;
    while (length < scan.rest.size() && isWordCharacter(scan.rest[length]))
        ++length;
    for (; length > 1; --length) {
        const auto found = definitions_.find(scan.rest.substr(1, length - 1));
        if (found == definitions_.end()) continue;
        scan.line.text += found->second;
        scan.rest.remove_prefix(length);
        return;
    }
    scan.line.text += '$';
    scan.rest.remove_prefix(1);
}

void LineReader::include(Scan& scan) {
    const std::size_t open = scan.rest.find('"');
    const std::size_t close = open == std::string_view::npos ? open : scan.rest.find('"', open + 1);
    if (close == std::string_view::npos) {
        report_.add("#include without a \"file\"", "ignored", scan.line.place());
        scan.rest = {};
        return;
    }
    // Names of files may be put together from definitions, too.
    Scan name{
        scan.rest.substr(open + 1, close - open - 1), {{}, scan.line.file, scan.line.number}, scan.depth};
    while (!name.rest.empty())
        if (name.rest.front() == '$') {
            expand(name);
        } else {
            name.line.text += name.rest.front();
            name.rest.remove_prefix(1);
        }
    scan.rest.remove_prefix(close + 1);
    flush(scan);
    std::string path = name.line.text;
    std::replace(path.begin(), path.end(), '\\', '/');

    if (scan.depth >= limits::includeDepth || ++includeCount_ > limits::includes)
        throw MakerError(scan.line.place(), "files include each other too deeply or too often");
    if (const auto text = includes_(path))
        readFile(*text, path, scan.depth + 1);
    else
        report_.add("missing include file", "ignored", scan.line.place() + ": " + path);
}

} // namespace

std::vector<SfzLine> readSfzLines(std::string_view text, const std::string& fileName,
                                  const SfzIncludes& includes, ImportReport& report) {
    LineReader reader(includes, report);
    reader.readFile(text, fileName, 0);
    return reader.takeLines();
}

} // namespace zarno
