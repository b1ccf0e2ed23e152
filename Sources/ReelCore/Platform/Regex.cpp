#include "ReelCore/Platform/Regex.h"

#include "ReelCore/Platform/Fatal.h"

#include <cstdint>

#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>

namespace ReelCore {

struct Regex::Compiled {
    std::unique_ptr<icu::RegexPattern> pattern;
};

Regex::Regex(std::string_view expression) {
    UErrorCode status = U_ZERO_ERROR;
    const auto text = icu::UnicodeString::fromUTF8(
        {expression.data(), static_cast<std::int32_t>(expression.size())});
    std::unique_ptr<icu::RegexPattern> pattern(
        icu::RegexPattern::compile(text, UREGEX_CASE_INSENSITIVE | UREGEX_DOTALL, status));
    if (U_FAILURE(status)) fatal("a regular expression does not compile");
    compiled_ = std::make_unique<const Compiled>(Compiled{std::move(pattern)});
}

Regex::~Regex() = default;

std::optional<Regex::Match> Regex::find(std::string_view text, std::size_t from) const {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UText, decltype(&utext_close)> view(
        utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status),
        utext_close);
    const std::unique_ptr<icu::RegexMatcher> matcher(compiled_->pattern->matcher(status));
    if (U_FAILURE(status)) fatal("a text can't be searched");
    matcher->reset(view.get());
    if (!matcher->find(static_cast<std::int64_t>(from), status)) return std::nullopt;
    return Match{static_cast<std::size_t>(matcher->start64(status)),
                 static_cast<std::size_t>(matcher->end64(status))};
}

}  // namespace ReelCore
