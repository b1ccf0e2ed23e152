#pragma once

#include "ReelCore/Platform/URL.h"
#include "ReelCore/Transcribe/Transcript.h"

#include <string>

namespace ReelCore {

/// Writes a transcript as a Word document (ECMA-376, WordprocessingML): a heading, the slate, and a
/// table of timecode and speaker beside the dialogue. Text that XML can't hold becomes U+FFFD.
struct DocxTranscriptWriter {
    /// Writes the document, replacing what stands at `url`, and returns `url`. Runs zip and blocks
    /// until that has ended. Throws TranscribeError::ParseFailed with zip's status, as where the
    /// folder is missing; SystemError where the temporary files can't be made or zip not be
    /// started. Any thread, also several at once for different documents.
    URL write(const Transcript& transcript, const URL& url) const;

    /// The text of word/document.xml.
    static std::string documentXML(const Transcript& transcript);

    /// "Scene 12A  ·  Take 3  ·  …" of the fields that are known.
    static std::string slateLine(const SlateInfo& slate);
};

}  // namespace ReelCore
