#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ReelCore {

/// Questions about text that need the Unicode tables. Texts are UTF-8; a "character" is a grapheme
/// cluster (UAX #29). Bytes that are not UTF-8 count as U+FFFD each maximal run (Unicode 3.9).
struct Text {
    /// The same text with every malformed sequence replaced by U+FFFD.
    static std::string wellFormed(std::string_view bytes);

    /// The same text as XML 1.0 can hold it: malformed sequences and the characters that XML has no
    /// way to write (the controls but tab, line feed and carriage return, U+FFFE, U+FFFF) become
    /// U+FFFD. Markup characters are left to the caller.
    static std::string wellFormedXML(std::string_view bytes);

    /// The same, with the markup characters & < > " written as references: fit to stand in an
    /// element or between double quotes.
    static std::string escapedXML(std::string_view bytes);

    static bool isWellFormed(std::string_view bytes);

    static std::int64_t characterCount(std::string_view text);

    /// The first `count` characters, or all if there are fewer.
    static std::string prefix(std::string_view text, std::int64_t count);

    /// The last `count` characters, or all if there are fewer.
    static std::string suffix(std::string_view text, std::int64_t count);

    /// The text without white space and line ends (Unicode White_Space) at both ends.
    static std::string trimmed(std::string_view text);

    /// The text without blanks (Unicode category Zs) and tabs at both ends; line ends stay.
    static std::string trimmedOnLine(std::string_view text);

    /// True if every part of the text runs from left to right (UAX #9).
    static bool isLeftToRight(std::string_view text);

    /// A key whose byte order is the order of texts by code points of their canonically composed
    /// form (NFC).
    static std::string orderingKey(std::string_view text);

    /// The text in upper case, by the rules of no particular language.
    static std::string upperCased(std::string_view text);

    /// The text in lower case, by the rules of no particular language.
    static std::string lowerCased(std::string_view text);
};

}  // namespace ReelCore
