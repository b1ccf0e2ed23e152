#pragma once

#include <optional>
#include <string>

namespace ReelCore {

struct OffloadResult;

/// The last look before a card is erased. Between the proof and the erase a card may have been
/// changed or swapped, and a drive may have been taken away.
struct EraseCheck {
    /// Why the card of `result` is not to be erased now, as a sentence for people; nothing if the
    /// card holds exactly the files that were proved (paths, sizes and dates) and each copy still
    /// stands in a place of its own with its size. Scans the card and asks for every copy's
    /// attributes; reads no content. Throws the scan's errors. Any thread.
    static std::optional<std::string> objection(const OffloadResult& result);
};

}  // namespace ReelCore
