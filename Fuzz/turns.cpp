#include "ReelCore/Diarize/Diarizer.h"
#include "Require.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

#include <fmt/format.h>

using namespace ReelCore;

namespace {

std::string printed(const std::vector<DiarizedTurn>& turns) {
    std::string text;
    for (const DiarizedTurn& turn : turns) {
        const std::string number = turn.speaker.substr(std::string_view("Speaker ").size());
        text += fmt::format("{} {} {}\n", turn.startSeconds, turn.endSeconds, number);
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = textOf(data, size);
    const auto turns = Diarizer::parseTurns(text);

    REQUIRE(std::ranges::is_sorted(turns, {}, &DiarizedTurn::startSeconds));
    REQUIRE(static_cast<std::ptrdiff_t>(turns.size()) <=
            1 + std::ranges::count(text, '\n') + std::ranges::count(text, '\r'));
    std::set<std::string> speakers;
    for (const DiarizedTurn& turn : turns) {
        REQUIRE(std::isfinite(turn.startSeconds) && std::isfinite(turn.endSeconds));
        const bool isNew = speakers.insert(turn.speaker).second;
        REQUIRE(!isNew || turn.speaker == fmt::format("Speaker {}", speakers.size()));
    }
    REQUIRE(Diarizer::parseTurns(printed(turns)) == turns);
    return 0;
}
