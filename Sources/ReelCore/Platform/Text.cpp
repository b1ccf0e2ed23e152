#include "ReelCore/Platform/Text.h"

#include "ReelCore/Platform/Fatal.h"

#include <algorithm>
#include <memory>

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/ubidi.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

namespace ReelCore {

namespace {

/// Looks at all bytes before it answers, which lets the compiler take many at a time.
bool isASCII(std::string_view text) {
    unsigned char bits = 0;
    for (const char c : text) bits |= static_cast<unsigned char>(c);
    return bits < 0x80;
}

icu::UnicodeString decode(std::string_view text) {
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string encode(const icu::UnicodeString& text) {
    std::string bytes;
    text.toUTF8String(bytes);
    return bytes;
}

void require(UErrorCode status, const char* what) {
    if (U_FAILURE(status)) fatal(what);
}

icu::UnicodeString composed(const icu::UnicodeString& text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* normaliser = icu::Normalizer2::getNFCInstance(status);
    require(status, "no Unicode normalisation tables");
    const icu::UnicodeString result = normaliser->normalize(text, status);
    require(status, "text can't be normalised");
    return result;
}

/// Walks the ends of the grapheme clusters of `text` (already well formed): `visit` gets the byte
/// position behind each and returns whether to go on.
template <class Visit>
void forEachCharacterEnd(std::string_view text, Visit visit) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    require(status, "no Unicode break rules");
    UText* view = utext_openUTF8(nullptr, text.data(), static_cast<int64_t>(text.size()), &status);
    characters->setText(view, status);
    require(status, "text can't be walked");
    while (characters->next() != icu::BreakIterator::DONE && visit(characters->current())) {
    }
    utext_close(view);
}

/// The text without what `goes` at both ends.
std::string withoutEnds(std::string_view bytes, UBool (*goes)(UChar32)) {
    const std::string text = Text::wellFormed(bytes);
    const auto* units = reinterpret_cast<const std::uint8_t*>(text.data());
    auto end = static_cast<std::int32_t>(text.size());
    std::int32_t begin = 0;
    UChar32 point = 0;
    for (std::int32_t at = 0; at < end; begin = at) {
        U8_NEXT(units, at, end, point);
        if (!goes(point)) break;
    }
    for (std::int32_t at = end; at > begin; end = at) {
        U8_PREV(units, begin, at, point);
        if (!goes(point)) break;
    }
    return text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

}  // namespace

bool Text::isWellFormed(std::string_view bytes) {
    if (isASCII(bytes)) return true;
    const auto* units = reinterpret_cast<const std::uint8_t*>(bytes.data());
    const auto length = static_cast<std::int64_t>(bytes.size());
    for (std::int64_t at = 0; at < length;) {
        UChar32 point = 0;
        U8_NEXT(units, at, length, point);
        if (point < 0) return false;
    }
    return true;
}

std::string Text::wellFormed(std::string_view bytes) {
    if (isWellFormed(bytes)) return std::string(bytes);
    return encode(decode(bytes));
}

std::string Text::wellFormedXML(std::string_view bytes) {
    const auto isXML = [](UChar32 point) {
        return point == '\t' || point == '\n' || point == '\r' ||
               (point >= 0x20 && point != 0xFFFE && point != 0xFFFF);
    };
    icu::UnicodeString text = decode(bytes);
    for (std::int32_t at = 0; at < text.length(); at = text.moveIndex32(at, 1)) {
        if (!isXML(text.char32At(at))) text.setCharAt(at, 0xFFFD);
    }
    return encode(text);
}

std::string Text::escapedXML(std::string_view bytes) {
    std::string result;
    for (const char c : wellFormedXML(bytes)) {
        switch (c) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += c;
        }
    }
    return result;
}

std::int64_t Text::characterCount(std::string_view text) {
    if (isASCII(text) && text.find('\r') == text.npos) {
        return static_cast<std::int64_t>(text.size());
    }
    std::int64_t count = 0;
    forEachCharacterEnd(wellFormed(text), [&](std::int32_t) { return ++count > 0; });
    return count;
}

std::string Text::prefix(std::string_view text, std::int64_t count) {
    if (count <= 0) return {};
    const std::string whole = wellFormed(text);
    std::size_t end = 0;
    forEachCharacterEnd(whole, [&](std::int32_t position) {
        end = static_cast<std::size_t>(position);
        return --count > 0;
    });
    return whole.substr(0, end);
}

std::string Text::suffix(std::string_view text, std::int64_t count) {
    std::string whole = wellFormed(text);
    const std::int64_t passedOver = characterCount(whole) - std::max<std::int64_t>(count, 0);
    return whole.erase(0, prefix(whole, passedOver).size());
}

std::string Text::trimmed(std::string_view text) {
    return withoutEnds(text, u_isUWhiteSpace);
}

std::string Text::trimmedOnLine(std::string_view text) {
    return withoutEnds(text, u_isblank);
}

bool Text::isLeftToRight(std::string_view text) {
    if (isASCII(text)) return true;
    const icu::UnicodeString units = decode(text);
    const std::unique_ptr<UBiDi, decltype(&ubidi_close)> order(ubidi_open(), ubidi_close);
    UErrorCode status = U_ZERO_ERROR;
    ubidi_setPara(order.get(), units.getBuffer(), units.length(), 0, nullptr, &status);
    require(status, "text has no direction");
    return ubidi_getDirection(order.get()) == UBIDI_LTR;
}

std::string Text::orderingKey(std::string_view text) {
    if (isASCII(text)) return std::string(text);
    return encode(composed(decode(text)));
}

std::string Text::upperCased(std::string_view text) {
    return encode(decode(text).toUpper(icu::Locale::getRoot()));
}

std::string Text::lowerCased(std::string_view text) {
    return encode(decode(text).toLower(icu::Locale::getRoot()));
}

}  // namespace ReelCore
