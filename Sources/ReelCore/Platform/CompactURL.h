#pragma once

#include "ReelCore/Platform/URL.h"

#include <concepts>
#include <string>

namespace ReelCore {

/// A location kept as its text alone, made from whatever makes a URL. A URL keeps each of its parts
/// a second time, several times the text's own size: too much where one stands for each file of a
/// card.
class CompactURL {
public:
    CompactURL() = default;
    CompactURL(const std::convertible_to<URL> auto& url) : text_(URL(url).native()) {}

    operator URL() const { return text_; }
    const std::string& native() const { return text_; }

    bool operator==(const CompactURL&) const = default;

private:
    std::string text_;
};

}  // namespace ReelCore
