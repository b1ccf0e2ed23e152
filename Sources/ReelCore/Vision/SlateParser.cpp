#include "ReelCore/Vision/SlateParser.h"

#include "ReelCore/Platform/Regex.h"
#include "ReelCore/Platform/Text.h"

#include <optional>
#include <string_view>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace ReelCore {

namespace {

struct Patterns {
    Regex roll{R"((?:CAM(?:ERA)?\s*)?ROLL\.?\s*[:#]?\s*([A-Z]{0,4}\d{1,4}[A-Z]?))"};
    Regex scene{R"((?:\bSCENE\b|\bSCN\b|\bSC\b)\.?\s*[:#]?\s*([0-9]+[A-Z]?))"};
    Regex take{R"((?:\bTAKE\b|\bTK\b)\.?\s*[:#]?\s*([0-9]+[A-Z]?))"};
    Regex director{R"((?:\bDIRECTOR\b|\bDIR\b)\.?\s*[:#]?\s*([A-Za-z][A-Za-z .'\-]{1,40}))"};
    Regex camera{
        R"((?:\bCAMERA\b|\bD\.?P\.?\b|\bCINEMATOGRAPHER\b)\.?\s*[:#]?\s*([A-Za-z][A-Za-z .'\-]{1,40}))"};
    Regex production{
        R"((?:\bPRODUCTION\b|\bPROD\b|\bTITLE\b|\bSHOW\b)\.?\s*[:#]?\s*([A-Za-z0-9][A-Za-z0-9 .'\-]{1,40}))"};
    Regex fps{R"((\d{2}(?:\.\d{1,3})?)\s*(?:FPS|P\b))"};
    Regex labelledFPS{R"((?:\bFPS\b|\bFRAME\s*RATE\b)\.?\s*[:#]?\s*(\d{2}(?:\.\d{1,3})?))"};
    Regex labelledDate{R"((?:\bDATE\b)\.?\s*[:#]?\s*([0-9A-Za-z][0-9A-Za-z .,/\-]{4,20}))"};
    Regex date{R"(\b(\d{1,4}[-/.]\d{1,2}[-/.]\d{1,4})\b)"};
    Regex sceneAndTake{
        R"((?:SCENE\s*/\s*TAKE|SC\s*/\s*TK)\D{0,4}([0-9]+[A-Z]?)\s*[/\-]\s*([0-9]+))"};
};

std::string withoutBlanks(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(' ');
    if (begin == text.npos) return {};
    return std::string(text.substr(begin, text.find_last_not_of(' ') + 1 - begin));
}

/// What the first match has in its first `count` groups; absent if there is none.
std::optional<std::vector<std::string>> groups(const Regex& pattern, std::string_view text,
                                               std::size_t count) {
    const auto match = pattern.find(text);
    if (!match || match->groups.size() < count) return std::nullopt;
    std::vector<std::string> found;
    for (std::size_t i = 0; i < count; ++i) {
        if (!match->groups[i]) return std::nullopt;
        found.push_back(withoutBlanks(*match->groups[i]));
    }
    return found;
}

std::optional<std::string> group(const Regex& pattern, std::string_view text) {
    const auto found = groups(pattern, text, 1);
    return found ? std::optional(found->front()) : std::nullopt;
}

/// The text with a stroke in the place of a match: the "TK" of "SC/TK 12-3" labels the 3 and not
/// the 12.
std::string without(std::string text, const Regex::Match& match) {
    return text.replace(match.begin, match.end - match.begin, "/");
}

}  // namespace

SlateInfo SlateParser::parse(const std::vector<std::string>& lines) {
    static const Patterns patterns;
    SlateInfo info;
    for (const std::string& line : lines) {
        if (std::string trimmed = Text::trimmedOnLine(line); !trimmed.empty()) {
            info.rawLines.push_back(std::move(trimmed));
        }
    }
    const std::string text = fmt::format("{}", fmt::join(info.rawLines, "\n"));

    info.roll = group(patterns.roll, text);
    info.scene = group(patterns.scene, text);
    const auto both = patterns.sceneAndTake.find(text);
    info.take = group(patterns.take, both ? without(text, *both) : text);
    info.director = group(patterns.director, text);
    info.camera = group(patterns.camera, text);
    info.production = group(patterns.production, text);
    info.fps = group(patterns.fps, text);
    if (!info.fps) info.fps = group(patterns.labelledFPS, text);
    info.date = group(patterns.labelledDate, text);
    if (!info.date) info.date = group(patterns.date, text);
    if (info.scene && info.take) return info;
    if (const auto pair = groups(patterns.sceneAndTake, text, 2)) {
        if (!info.scene) info.scene = pair->at(0);
        if (!info.take) info.take = pair->at(1);
    }
    return info;
}

}  // namespace ReelCore
