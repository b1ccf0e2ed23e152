#include "ReelCore/Platform/Regex.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Sync/BWFReader.h"
#include "Require.h"

#include <algorithm>

using namespace ReelCore;

namespace {

/// All elements of one name, empty ones too, by one expression for the whole element.
std::vector<std::string> elementsOf(const std::string& text, const std::string& name) {
    const Regex element("<" + name + ">\\s*(.*?)\\s*</" + name + ">");
    std::vector<std::string> contents;
    std::size_t from = 0;
    while (const auto match = element.find(text, from)) {
        const std::string whole = text.substr(match->begin, match->end - match->begin);
        const std::size_t begin = whole.find('>') + 1;
        contents.push_back(Text::trimmed(whole.substr(begin, whole.rfind("</") - begin)));
        from = match->end;
    }
    return contents;
}

std::optional<std::string> firstOf(const std::string& text, const std::string& name) {
    const auto all = elementsOf(text, name);
    if (all.empty() || all.front().empty()) return std::nullopt;
    return all.front();
}

/// The input with its bytes 1 to 10 as tags, which chance would take long to spell.
std::string spelled(std::string_view text) {
    static const std::vector<std::string> tags{"<SCENE>", "</SCENE>", "<take>", "</Take>",
                                               "<TAPE>",  "</TAPE>",  "<NOTE>", "</NOTE>",
                                               "<NAME>",  "</name>"};
    std::string result;
    for (const char c : text) {
        const auto number = static_cast<unsigned char>(c);
        const bool isTag = number >= 1 && number <= tags.size();
        result += isTag ? tags[number - 1] : std::string(1, c);
    }
    return result;
}

void requireModel(const std::string& bytes) {
    const std::string text = Text::wellFormed(bytes);
    auto tracks = elementsOf(text, "NAME");
    std::erase(tracks, "");

    const auto slate = BWFReader::parseIXML(bytes);

    REQUIRE(slate.scene == firstOf(text, "SCENE"));
    REQUIRE(slate.take == firstOf(text, "TAKE"));
    REQUIRE(slate.tape == firstOf(text, "TAPE"));
    REQUIRE(slate.note == firstOf(text, "NOTE"));
    REQUIRE(slate.tracks == tracks);
    REQUIRE(std::ranges::all_of(slate.tracks, Text::isWellFormed));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    requireModel(std::string(textOf(data, size)));
    requireModel(spelled(textOf(data, size)));
    return 0;
}
