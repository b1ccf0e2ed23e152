#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Transcribe/SpeechClassifier.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "ReelCore/Transcribe/WhisperTranscriber.h"
#include "Require.h"

#include <cmath>

using namespace ReelCore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        for (const auto& line :
             WhisperTranscriber::parseSegments(std::as_bytes(std::span(data, size)))) {
            REQUIRE(!line.text.empty());
            REQUIRE(Text::isWellFormed(line.text));
            REQUIRE(Text::trimmed(line.text) == line.text);
            REQUIRE(std::isfinite(line.start) && std::isfinite(line.end));
            const auto label = SpeechClassifier::nonSpeechSpeaker(line.text);
            REQUIRE(!label || SpeechClassifier::isNonSpeech(*label));
        }
    } catch (const TranscribeError& error) {
        REQUIRE(error.is<TranscribeError::ParseFailed>());
    } catch (const Error& error) {
        REQUIRE(Text::isWellFormed(error.description()));
    }
    return 0;
}
