// document-run LINES DOCUMENT: writes a Word document of a transcript of as many lines, eight
// speakers with a hint each, seven times, and says: the seconds that took (the median), the seconds
// of its text alone, the document's size in KiB, the most memory in MiB that this program has had.

#include "PeakMemory.h"
#include "ReelCore/Transcribe/DocxTranscriptWriter.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>

#include <fmt/format.h>

using namespace ReelCore;

namespace {

Transcript transcriptOf(int lines) {
    constexpr std::array said{
        "And so my fellow Americans, ask not what your country can do for you.",
        "We'll take that once more from the top, please, and quiet on the set.",
        "He said \"no\" & left.", "(door slams)"};
    Transcript transcript;
    transcript.sourceName = "A001C002_251121_R1AB.mov";
    transcript.startTimecode = Timecode(10, 0, 0, 0, FrameRate::fps29_97df);
    for (int i = 0; i < lines; ++i) {
        const std::string speaker = fmt::format("Speaker {}", i % 8 + 1);
        transcript.segments.push_back({speaker, i * 2.5, i * 2.5 + 2.0, said[i % said.size()]});
        transcript.appearances[speaker] = {speaker, "10:00:00;00", 2, 1, "blue"};
    }
    return transcript;
}

/// Of seven times, the middle one.
double secondsOf(const std::function<void()>& work) {
    std::array<double, 7> seconds{};
    for (double& one : seconds) {
        const auto start = std::chrono::steady_clock::now();
        work();
        one = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    std::ranges::sort(seconds);
    return seconds[seconds.size() / 2];
}

}  // namespace

int main(int count, char* arguments[]) {
    const int lines = count == 3 ? std::atoi(arguments[1]) : 0;
    if (lines < 1) {
        fmt::print(stderr, "usage: document-run LINES DOCUMENT\n");
        return 2;
    }
    const URL document = arguments[2];
    const Transcript transcript = transcriptOf(lines);
    const double whole = secondsOf([&] { DocxTranscriptWriter().write(transcript, document); });
    const double text = secondsOf([&] { DocxTranscriptWriter::documentXML(transcript); });
    fmt::print("{:.4f} {:.4f} {} {}\n", whole, text, std::filesystem::file_size(document) / 1024,
               peakMemoryInKiB() / 1024);
}
