#pragma once

#include "ReelCore/Sync/BWFError.h"
#include "ReelCore/Sync/SyncTypes.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ReelCore {

/// Reads what a sound recorder wrote about its own file: a Broadcast WAV (EBU Tech 3285) with slate
/// data in iXML. The sound itself is not read, whatever the file's size; where the recorder gave it
/// no size it is looked through. Any thread.
struct BWFReader {
    struct IXML {
        std::optional<std::string> scene;
        std::optional<std::string> take;
        std::optional<std::string> tape;
        std::optional<std::string> note;
        std::vector<std::string> tracks;

        bool operator==(const IXML&) const = default;
    };

    using BWFError = CaseError<BWFErrorCases>;

    /// Whatever is missing, cut off or broken inside the file is left at its default. Throws
    /// BWFError::NotRIFF for what is no RIFF/WAVE file (also for RF64), SystemError where the file
    /// can't be opened or read.
    static AudioClip read(const URL& url);

    /// Picks four tags and all track names out of a text that need not be XML. Never fails.
    static IXML parseIXML(std::string_view text);
};

}  // namespace ReelCore
