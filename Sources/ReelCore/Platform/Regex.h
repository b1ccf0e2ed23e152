#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace ReelCore {

/// A regular expression in ICU's syntax over UTF-8 text, indifferent to case, its dot matching line
/// ends too. Immutable once made: any thread may search with it at once.
class Regex {
public:
    /// A matched piece of the text, in bytes, and the pieces of it that the expression's groups
    /// took, the first group's first; one that took no part is absent. They view the text.
    struct Match {
        std::size_t begin;
        std::size_t end;
        std::vector<std::optional<std::string_view>> groups;
    };

    /// An expression that does not compile is a fatal fault: all are constants of the program.
    explicit Regex(std::string_view expression);
    ~Regex();
    Regex(const Regex&) = delete;
    Regex& operator=(const Regex&) = delete;

    /// The first match in well-formed `text` that begins at byte `from` or behind it. A search that
    /// goes back and forth in the text too often ends without one; how often is too often does not
    /// hang on the machine.
    std::optional<Match> find(std::string_view text, std::size_t from = 0) const;

private:
    struct Compiled;
    std::unique_ptr<const Compiled> compiled_;
};

}  // namespace ReelCore
