#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Reports/MHLWriter.h"
#include "Require.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include <unistd.h>

using namespace ReelCore;

namespace {

/// Undoes the escapes of XML; any other "&" is a finding.
std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const auto take = [&](std::string_view escape, char c) {
            if (!text.starts_with(escape)) return false;
            text.remove_prefix(escape.size());
            result += c;
            return true;
        };
        if (take("&amp;", '&') || take("&lt;", '<') || take("&gt;", '>')) continue;
        if (take("&#13;", '\r')) continue;
        REQUIRE(text.front() != '&' && text.front() != '<' && text.front() != '>');
        result += text.front();
        text.remove_prefix(1);
    }
    return result;
}

std::string contentOf(const URL& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string name(textOf(data, size));
    OffloadResult result;
    result.request.reelName = "keldo-fuzz-hashlist-" + std::to_string(::getpid());
    result.files.push_back({{name, 1, Date()}, "ef46db3751d8e999", {}});

    const URL list = MHLWriter{name, "1"}.write(result, std::filesystem::temp_directory_path());
    const std::string text = contentOf(list);
    std::filesystem::remove(list);

    REQUIRE(Text::isWellFormed(text));
    REQUIRE(Text::wellFormedXML(text) == text);
    REQUIRE(text.find('\r') == text.npos);
    const auto start = text.find("<file>") + 6;
    const auto end = text.find("</file>");
    REQUIRE(unescaped(text.substr(start, end - start)) == Text::wellFormedXML(name));
    // Twelve elements, each opened and closed, and the declaration.
    REQUIRE(std::ranges::count(text, '<') == 2 * 14 + 1);
    return 0;
}
