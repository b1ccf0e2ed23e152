// Writes down who says what in a clip, as a Word document:
//
//     example-transcript CLIP OUTPUT [SPEAKERS]
//
// OUTPUT, made if need be, gets CLIP_transcript.docx, which replaces an earlier one; CLIP is only
// read. SPEAKERS is how many people speak; without it, as many as are seen in the picture. What it
// is at goes to standard error, the lines to standard output. The exit status is 0, or 2 on a
// failure.

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Transcribe/TranscriptBuilder.h"

#include <iostream>

using namespace ReelCore;

namespace {

void transcribe(const URL& clip, const URL& output, std::optional<std::int64_t> speakers) {
    const TranscribeRequest request{.input = clip,
                                    .outputDirectory = output,
                                    .diarize = DiarizationOptions{.numSpeakers = speakers}};
    const auto [transcript, document] =
        TranscriptBuilder().run(request, [](const TranscribeProgress& progress) {
            std::cerr << rawValue(progress.phase) << " " << progress.speaker.value_or("") << "\n";
        });
    if (transcript.slate) std::cout << "slate: " << transcript.slate->summary() << "\n";
    for (const auto& [speaker, hint] : transcript.appearances) {
        std::cout << speaker << ": " << hint.note() << "\n";
    }
    for (const TranscriptSegment& line : transcript.segments) {
        std::cout << transcript.timecode(line).formatted() << "  " << line.speaker << "  "
                  << line.text << "\n";
    }
    std::cout << "document: " << document.native() << "\n";
}

}  // namespace

int main(int count, char* arguments[]) {
    const auto speakers = count == 4 ? parseInteger(arguments[3]) : std::nullopt;
    if (count < 3 || count > 4 || (count == 4 && !speakers)) {
        std::cerr << "usage: example-transcript CLIP OUTPUT [SPEAKERS]\n";
        return 2;
    }
    try {
        transcribe(arguments[1], arguments[2], speakers);
        return 0;
    } catch (const Error& error) {
        std::cerr << error.description() << "\n";
        return 2;
    }
}
