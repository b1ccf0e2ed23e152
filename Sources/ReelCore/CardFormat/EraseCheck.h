#pragma once

#include "ReelCore/Platform/HeldCard.h"

#include <optional>
#include <string>

namespace ReelCore {

struct OffloadResult;

/// The last look before a card is erased. Between the proof and the erase a card may have been
/// changed or swapped, and a drive may have been taken away or written to.
struct EraseCheck {
    /// Either is there.
    struct Finding {
        std::optional<std::string> objection;  ///< Why not to erase, as a sentence for people.
        std::optional<HeldCard> card;          ///< The card that was looked at, held since before.
    };

    /// Looks at the copies first, since drives may have to wake up, and at the card last. No
    /// objection means: no folder of the card went unread, when it was copied or now; the card
    /// holds exactly the files that were proved (paths, sizes and dates); and each copy is the very
    /// file that was proved, unchanged since as far as a FileStamp tells, in a place of its own.
    ///
    /// Scans the card and asks for every copy's attributes; reads no content. Throws the scan's
    /// errors. Any thread.
    static Finding look(const OffloadResult& result);
};

}  // namespace ReelCore
