#include "ReelCore/Platform/Regex.h"

#include "ReelCore/Platform/Fatal.h"

#include <cstdint>

#include <unicode/regex.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>

namespace ReelCore {

namespace {

/// In ICU's units of 10,000 steps, each of some tenths of a millisecond.
constexpr std::int32_t mostSteps = 1000;

}  // namespace

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
    matcher->setTimeLimit(mostSteps, status);
    matcher->reset(view.get());
    if (!matcher->find(static_cast<std::int64_t>(from), status)) return std::nullopt;
    const auto begin = [&](int group) { return matcher->start64(group, status); };
    const auto end = [&](int group) {
        return static_cast<std::size_t>(matcher->end64(group, status));
    };
    Match match{static_cast<std::size_t>(begin(0)), end(0), {}};
    for (std::int32_t group = 1; group <= matcher->groupCount(); ++group) {
        match.groups.emplace_back();
        if (begin(group) < 0) continue;
        const auto at = static_cast<std::size_t>(begin(group));
        match.groups.back() = text.substr(at, end(group) - at);
    }
    return match;
}

}  // namespace ReelCore
