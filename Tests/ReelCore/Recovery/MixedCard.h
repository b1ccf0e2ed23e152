#pragma once

#include "ReelCore/Recovery/ClipDiagnosis.h"
#include "ReelCore/Recovery/RecoveryTypes.h"

#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

/// A clip of the made card, and all that is to be said of it.
struct MadeClip {
    std::string path;  ///< Below the card.
    std::int64_t size;
    ClipDiagnosis diagnosis;
    std::string method;  ///< Of its repair, with a reference.
    std::string detail;  ///< Likewise; of failures that ffmpeg words, the beginning.
    std::string output;  ///< The name of what the repair writes; empty where it fails.
};

/// A card on which a bit of everything went wrong: clips of all kinds, healthy and damaged, folders
/// and links in between, and what no scan looks at.
struct MixedCard {
    /// Makes it in a folder, with ffmpeg. Takes a second.
    explicit MixedCard(const URL& folder);

    URL path;
    URL reference;  ///< A healthy clip of the same camera, elsewhere.

    /// What a scan must report, in the order in which it must.
    std::vector<MadeClip> clips;
};

/// The same clip's fate where no reference is at hand.
MadeClip withoutReference(MadeClip clip);

}  // namespace ReelCore
