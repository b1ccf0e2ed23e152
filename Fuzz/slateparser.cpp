#include "ReelCore/Vision/SlateParser.h"

#include "ReelCore/Platform/Text.h"
#include "Require.h"

#include <algorithm>

using namespace ReelCore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(textOf(data, size));
    std::vector<std::string> lines;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        lines.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    const SlateInfo slate = SlateParser::parse(lines);

    std::string whole;
    for (const std::string& line : slate.rawLines) {
        REQUIRE(!line.empty());
        REQUIRE(Text::isWellFormed(line));
        REQUIRE(Text::trimmedOnLine(line) == line);
        whole += line + "\n";
    }
    REQUIRE(slate.rawLines.size() <= lines.size());
    for (const auto* field : {&slate.production, &slate.roll, &slate.scene, &slate.take,
                              &slate.director, &slate.camera, &slate.date, &slate.fps}) {
        if (!*field) continue;
        REQUIRE(whole.find(**field) != whole.npos);
        REQUIRE((*field)->size() <= 4 * 42 || *field == slate.scene || *field == slate.take);
    }
    REQUIRE(SlateParser::parse(slate.rawLines) == slate);
    return 0;
}
