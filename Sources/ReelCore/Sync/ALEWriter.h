#pragma once

#include "ReelCore/Sync/SyncTypes.h"

#include <string>

namespace ReelCore {

/// Writes groups of picture and sound as an Avid Log Exchange: a text table with a tab between
/// fields, one line a camera clip with the slate of its best sound.
struct ALEWriter {
    /// The document. No field is cleaned: a tab in a scene stays one. Throws OutOfRange where a
    /// time is no number or too large; a timecode at a rate that counts no frames a second is a
    /// fatal fault.
    static std::string ale(const SyncResult& result);

    /// Writes the document to `url`, in place of what is there, and returns `url`. Throws
    /// what `ale` does, before anything is touched, and SystemError where the system fails; what
    /// was written until then stays.
    static URL write(const SyncResult& result, const URL& url);
};

}  // namespace ReelCore
