#pragma once

#include "ReelCore/Platform/HeldCard.h"

#include <optional>

namespace ReelCore {

/// A held card on its way to a program that is to be started. What lies between the two holds the
/// card and what was noted of its medium, so that at no time nobody does.
class CardHandover {
public:
    /// Throws SystemError if the system has no means left for it.
    explicit CardHandover(HeldCard card);
    ~CardHandover();
    CardHandover(const CardHandover&) = delete;
    CardHandover& operator=(const CardHandover&) = delete;

    /// What the other program is to get as its standard input.
    int descriptor() const { return descriptor_; }

    /// The card that whoever started this program has handed to it, once; absent if it was started
    /// otherwise. Throws SystemError if a card was handed over and did not come through.
    static std::optional<HeldCard> received();

private:
    int descriptor_ = -1;
};

}  // namespace ReelCore
