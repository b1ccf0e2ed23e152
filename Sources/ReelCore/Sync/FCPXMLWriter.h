#pragma once

#include "ReelCore/Sync/SyncTypes.h"

#include <string>
#include <string_view>

namespace ReelCore {

/// Writes groups of picture and sound as a timeline: an FCPXML 1.9 document, the clips end to end
/// in the order of the groups, each with its best sound. Its one format is that of the first clip.
struct FCPXMLWriter {
    /// The document. Throws SystemError where a clip's location is relative and there is no working
    /// folder, OutOfRange where a time is no number or too large.
    static std::string fcpxml(const SyncResult& result, std::string_view project,
                              std::string_view event);

    /// Writes the document to `url`, in place of what is there, and returns `url`. Throws
    /// what `fcpxml` does, before anything is touched, and SystemError where the system fails; what
    /// was written until then stays.
    static URL write(const SyncResult& result, const URL& url, std::string_view project);
};

}  // namespace ReelCore
