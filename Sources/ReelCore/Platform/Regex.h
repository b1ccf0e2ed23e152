#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace ReelCore {

/// A regular expression in ICU's syntax over UTF-8 text, indifferent to case, its dot matching line
/// ends too. Immutable once made: any thread may search with it at once.
class Regex {
public:
    /// A matched piece of the text, in bytes.
    struct Match {
        std::size_t begin;
        std::size_t end;
    };

    /// An expression that does not compile is a fatal fault: all are constants of the program.
    explicit Regex(std::string_view expression);
    ~Regex();
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;

    /// The first match in well-formed `text` that begins at byte `from` or behind it.
    std::optional<Match> find(std::string_view text, std::size_t from = 0) const;

private:
    struct Compiled;
    std::unique_ptr<const Compiled> compiled_;
};

}  // namespace ReelCore
