#include "ReelCore/Platform/Text.h"

#include "Require.h"

using ReelCore::Text;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = textOf(data, size);

    const std::string text = Text::wellFormed(bytes);
    REQUIRE(Text::isWellFormed(text));
    REQUIRE(Text::isWellFormed(bytes) == (text == bytes));
    REQUIRE(Text::wellFormed(text) == text);

    const std::string xml = Text::wellFormedXML(bytes);
    REQUIRE(Text::isWellFormed(xml));
    REQUIRE(Text::wellFormedXML(xml) == xml);
    for (const char c : xml)
        REQUIRE(static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n' || c == '\r');

    const std::int64_t count = Text::characterCount(bytes);
    REQUIRE(count == Text::characterCount(text));
    REQUIRE(count <= static_cast<std::int64_t>(text.size()));
    REQUIRE(Text::prefix(bytes, count) == text);
    const std::int64_t half = count / 2;
    const std::string start = Text::prefix(bytes, half);
    REQUIRE(text.starts_with(start));
    REQUIRE(Text::characterCount(start) == half);

    const std::string key = Text::orderingKey(bytes);
    REQUIRE(Text::isWellFormed(key));
    REQUIRE(Text::orderingKey(key) == key);

    REQUIRE(Text::isWellFormed(Text::upperCased(bytes)));
    Text::isLeftToRight(bytes);
    return 0;
}
