#include "ReelCore/Diarize/Diarizer.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/Number.h"
#include "ReelCore/Platform/RunningChild.h"
#include "ReelCore/Platform/Split.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Platform/ToolLog.h"
#include "ReelCore/Transcode/MediaQuery.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>

#include <fmt/format.h>

namespace ReelCore {

namespace {

constexpr std::string_view script =
    R"(import sys, wave, numpy as np, sherpa_onnx
seg, emb, wav = sys.argv[1], sys.argv[2], sys.argv[3]
thr, ncl = float(sys.argv[4]), int(sys.argv[5])
cfg = sherpa_onnx.OfflineSpeakerDiarizationConfig(
    segmentation=sherpa_onnx.OfflineSpeakerSegmentationModelConfig(
        pyannote=sherpa_onnx.OfflineSpeakerSegmentationPyannoteModelConfig(model=seg)),
    embedding=sherpa_onnx.SpeakerEmbeddingExtractorConfig(model=emb),
    clustering=sherpa_onnx.FastClusteringConfig(num_clusters=ncl, threshold=thr),
    min_duration_on=0.3, min_duration_off=0.5)
sd = sherpa_onnx.OfflineSpeakerDiarization(cfg)
w = wave.open(wav)
a = np.frombuffer(w.readframes(w.getnframes()), dtype=np.int16).astype(np.float32) / 32768.0
for s in sd.process(a).sort_by_start_time():
    print('%.3f %.3f %d' % (s.start, s.end, s.speaker)))";

struct Turn {
    double start;
    double end;
    std::int64_t cluster;
};

std::optional<Turn> turnOf(std::string_view line) {
    const auto pieces = piecesOf(line, " ");
    if (pieces.size() != 3) return std::nullopt;
    const auto start = parseDouble(pieces[0]);
    const auto end = parseDouble(pieces[1]);
    const auto cluster = parseInteger(pieces[2]);
    if (!start || !end || !cluster) return std::nullopt;
    if (!std::isfinite(*start) || !std::isfinite(*end)) return std::nullopt;
    return Turn{*start, *end, *cluster};
}

[[noreturn]] void fail(int status, const std::string& complaints) {
    constexpr std::int64_t tailLength = 400;
    const std::string text = Text::wellFormed(complaints);
    if (text.find("ModuleNotFoundError") == text.npos &&
        text.find("No module named") == text.npos) {
        throw DiarizeError(DiarizeError::Failed{status, Text::suffix(text, tailLength)});
    }
    throw DiarizeError(DiarizeError::SherpaNotInstalled{std::string(piecesOf(text, "\n").back())});
}

}  // namespace

std::vector<DiarizedTurn> Diarizer::run(const URL& wav, const DiarizationOptions& options) const {
    const auto python = models.python();
    if (!python) throw DiarizeError(DiarizeError::PythonNotFound{});
    if (!models.modelsPresent()) throw DiarizeError(DiarizeError::ModelsMissing{});
    if (!FileSystem::leadsSomewhere(wav)) throw DiarizeError(DiarizeError::InputNotFound{wav});

    const TemporaryPath program("keldobay-diar-", ".py");
    File::create(program.url()).write(std::as_bytes(std::span(script)));
    const std::vector<std::string> arguments{program.url().native(),
                                             models.segmentation().native(),
                                             models.embedding().native(),
                                             toolPath(wav),
                                             shortestDecimal(options.threshold),
                                             std::to_string(options.numSpeakers.value_or(-1))};
    const ToolLog log("keldobay-diar-");
    // Python would look for packages beside the script first, where anybody may write.
    RunningChild child(*python, arguments,
                       {.output = ChildStream::pipe(), .error = ChildStream::file(log.file())},
                       {.environment = {{"PYTHONSAFEPATH", "1"}}, .yields = true});
    const std::string output = child.readAll();
    const int status = child.wait();
    if (status != 0) fail(status, log.complaints().lastText());
    return Text::isWellFormed(output) ? parseTurns(output) : std::vector<DiarizedTurn>();
}

std::vector<DiarizedTurn> Diarizer::parseTurns(std::string_view text) {
    std::vector<Turn> turns;
    for (const std::string_view line : piecesOf(text, "\r\n")) {
        if (const auto turn = turnOf(line)) turns.push_back(*turn);
    }
    std::ranges::stable_sort(turns, {}, &Turn::start);
    std::map<std::int64_t, std::size_t> numbers;
    std::vector<DiarizedTurn> result;
    for (const Turn& turn : turns) {
        const auto number = numbers.try_emplace(turn.cluster, numbers.size() + 1).first->second;
        result.push_back({turn.start, turn.end, fmt::format("Speaker {}", number)});
    }
    return result;
}

}  // namespace ReelCore
