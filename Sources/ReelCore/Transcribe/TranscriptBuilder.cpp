#include "ReelCore/Transcribe/TranscriptBuilder.h"

#include "ReelCore/Diarize/Diarizer.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/TemporaryPath.h"
#include "ReelCore/Platform/Text.h"
#include "ReelCore/Transcribe/AudioExtractor.h"
#include "ReelCore/Transcribe/DocxTranscriptWriter.h"
#include "ReelCore/Transcribe/SpeechClassifier.h"
#include "ReelCore/Transcribe/TranscribeError.h"
#include "ReelCore/Transcribe/WhisperTranscriber.h"
#include "ReelCore/Vision/AppearanceAnalyzer.h"
#include "ReelCore/Vision/PeopleCounter.h"
#include "ReelCore/Vision/SlateReader.h"
#include "ReelCore/Vision/VisionAnalyzer.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <limits>
#include <optional>
#include <ranges>

namespace ReelCore {

namespace {

using Phase = TranscribeProgress::Phase;
using Lines = std::vector<TranscriptSegment>;

/// What was said, and who could have said it, in the order in which they are told of.
struct Dialogue {
    Lines lines;
    std::vector<std::string> speakers;
};

/// One run of the pipeline.
class Run {
public:
    Run(const TranscribeRequest& request, const std::function<bool()>& isCancelled,
        const std::function<void(const TranscribeProgress&)>& progress)
        : request_(request), isCancelled_(isCancelled), progress_(progress) {}

    std::pair<Transcript, URL> transcript() {
        check();
        const std::int64_t tracks = std::ssize(request_.speakers);
        report(Phase::probing, {}, 0, tracks);
        const AudioExtractor::ClipInfo clip = extractor_.probe(request_.input);
        const TemporaryPath work("keldo-transcribe-", "");
        FileSystem::createFolders(work.url());
        Dialogue dialogue = request_.diarize ? byVoice(work.url()) : byTrack(work.url());

        const std::int64_t speakers = std::ssize(dialogue.speakers);
        report(Phase::merging, {}, speakers, speakers);
        Transcript transcript{.segments = SpeechClassifier::relabel(std::move(dialogue.lines)),
                              .startTimecode = startTimecode(clip),
                              .frameRate = clip.frameRate,
                              .sourceName = lastPathComponent(request_.input)};
        if (request_.readSlate) {
            report(Phase::slate, {}, speakers, speakers);
            transcript.slate = slate();
        }
        if (request_.appearanceHints) addHints(transcript, dialogue.speakers);
        report(Phase::writing, {}, speakers, speakers);
        const URL document = write(transcript);
        report(Phase::done, {}, speakers, speakers);
        return {std::move(transcript), document};
    }

private:
    void check() const {
        if (request_.speakers.empty() && !request_.diarize) {
            throw TranscribeError(TranscribeError::NoSpeakers{});
        }
        if (!FileSystem::leadsSomewhere(request_.input)) {
            throw TranscribeError(TranscribeError::InputNotFound{request_.input});
        }
        const WhisperLocator whisper;
        if (!whisper.whisperCLI()) throw TranscribeError(TranscribeError::WhisperNotFound{});
        if (!whisper.model()) throw TranscribeError(TranscribeError::ModelNotFound{});
    }

    void report(Phase phase, std::optional<std::string> speaker, std::int64_t done,
                std::int64_t total) const {
        progress_({phase, std::move(speaker), done, total});
    }

    void endIfCancelled() const {
        if (isCancelled_()) throw TranscribeError(TranscribeError::Cancelled{});
    }

    /// A clip's rate that counts no frames has no labels either; seconds are then counted at 24.
    Timecode startTimecode(const AudioExtractor::ClipInfo& clip) const {
        if (request_.startTimecodeOverride) return *request_.startTimecodeOverride;
        if (clip.startTimecode) return *clip.startTimecode;
        return {0, clip.frameRate.isCountable() ? clip.frameRate : FrameRate::fps24};
    }

    Lines linesOf(const URL& wav, const std::string& speaker) const {
        const WhisperTranscriber transcriber(request_.modelOverride);
        return transcriber.transcribe(wav, speaker, isCancelled_);
    }

    Dialogue byTrack(const URL& work) const {
        const std::int64_t total = std::ssize(request_.speakers);
        std::vector<Lines> perTrack;
        Dialogue dialogue;
        for (const SpeakerTrack& track : request_.speakers) {
            const std::int64_t done = std::ssize(perTrack);
            endIfCancelled();
            report(Phase::extracting, track.name, done, total);
            const URL wav = extractor_.extract(track, request_.input, work);
            report(Phase::transcribing, track.name, done, total);
            perTrack.push_back(linesOf(wav, track.name));
            dialogue.speakers.push_back(track.name);
        }
        dialogue.lines = TranscriptBuilder::merge(perTrack);
        return dialogue;
    }

    Dialogue byVoice(const URL& work) const {
        DiarizationOptions options = *request_.diarize;
        if (!options.numSpeakers && FFmpegLocator().isAvailable()) {
            report(Phase::countingPeople, {}, 0, 0);
            options.numSpeakers = peopleOnCamera();
        }
        report(Phase::diarizing, {}, 0, 0);
        const URL mix = extractor_.extractMix(request_.input, work);
        const std::vector<DiarizedTurn> turns = Diarizer().run(mix, options);
        endIfCancelled();
        report(Phase::transcribing, {}, 0, 0);
        return {TranscriptBuilder::assign(linesOf(mix, ""), turns),
                TranscriptBuilder::orderedSpeakers(turns)};
    }

    std::optional<std::int64_t> peopleOnCamera() const {
        constexpr std::int64_t samples = 40;
        constexpr std::int64_t minFrames = 2;
        const auto estimate =
            PeopleCounter{{}, vision_}.estimate(request_.input, samples, minFrames, isCancelled_);
        if (!estimate || estimate->count < 1) return std::nullopt;
        return estimate->count;
    }

    std::optional<SlateInfo> slate() const {
        constexpr double headSeconds = 10.0;
        constexpr std::int64_t samples = 8;
        try {
            return SlateReader{{}, vision_}.read(request_.input, headSeconds, samples,
                                                 isCancelled_);
        } catch (const std::exception&) {
            return std::nullopt;
        }
    }

    void addHints(Transcript& transcript, const std::vector<std::string>& speakers) const {
        const std::int64_t total = std::ssize(speakers);
        const AppearanceAnalyzer analyzer{{}, vision_};
        for (const std::string& speaker : speakers) {
            if (isCancelled_()) return;
            report(Phase::appearance, speaker, total, total);
            auto hint = analyzer.analyze(request_.input, speaker, transcript.segments,
                                         transcript.startTimecode, isCancelled_);
            if (hint) transcript.appearances[speaker] = std::move(*hint);
        }
    }

    URL write(const Transcript& transcript) const {
        FileSystem::createFolders(request_.outputDirectory);
        return DocxTranscriptWriter().write(transcript, request_.documentURL());
    }

    const TranscribeRequest& request_;
    const std::function<bool()>& isCancelled_;
    const std::function<void(const TranscribeProgress&)>& progress_;
    AudioExtractor extractor_;
    VisionAnalyzer vision_;  // One for all, since its detectors take time to load.
};

/// How long a line and a turn are at the same time; negative where there is time between them.
double overlapOf(const TranscriptSegment& line, const DiarizedTurn& turn) {
    return std::min(turn.endSeconds, line.endSeconds) -
           std::max(turn.startSeconds, line.startSeconds);
}

double distanceOf(double moment, const DiarizedTurn& turn) {
    if (moment < turn.startSeconds) return turn.startSeconds - moment;
    if (moment > turn.endSeconds) return moment - turn.endSeconds;
    return 0.0;
}

const std::string& speakerOf(const TranscriptSegment& line,
                             const std::vector<DiarizedTurn>& turns) {
    const double middle = (line.startSeconds + line.endSeconds) * 0.5;
    double bestOverlap = 0.0;
    double bestDistance = std::numeric_limits<double>::max();
    const std::string* speaker = &turns.front().speaker;
    for (const DiarizedTurn& turn : turns) {
        const double overlap = overlapOf(line, turn);
        const double distance = distanceOf(middle, turn);
        if (overlap > bestOverlap) {
            bestOverlap = overlap;
            speaker = &turn.speaker;
        } else if (bestOverlap <= 0.0 && distance < bestDistance) {
            bestDistance = distance;
            speaker = &turn.speaker;
        }
    }
    return *speaker;
}

}  // namespace

TranscriptBuilder::TranscriptBuilder(std::function<bool()> cancelled)
    : isCancelled(std::move(cancelled)) {}

std::pair<Transcript, URL> TranscriptBuilder::run(
    const TranscribeRequest& request,
    const std::function<void(const TranscribeProgress&)>& progress) const {
    return Run(request, isCancelled, progress).transcript();
}

std::vector<TranscriptSegment> TranscriptBuilder::merge(
    const std::vector<std::vector<TranscriptSegment>>& perTrack) {
    Lines lines;
    for (const Lines& track : perTrack) lines.insert(lines.end(), track.begin(), track.end());
    std::ranges::stable_sort(lines, [](const auto& left, const auto& right) {
        if (left.startSeconds != right.startSeconds) return left.startSeconds < right.startSeconds;
        return Text::orderingKey(left.speaker) < Text::orderingKey(right.speaker);
    });
    return lines;
}

std::vector<TranscriptSegment> TranscriptBuilder::assign(std::vector<TranscriptSegment> segments,
                                                         const std::vector<DiarizedTurn>& turns) {
    if (turns.empty()) return segments;
    for (TranscriptSegment& line : segments) line.speaker = speakerOf(line, turns);
    return segments;
}

std::vector<std::string> TranscriptBuilder::orderedSpeakers(
    const std::vector<DiarizedTurn>& turns) {
    std::vector<std::string> speakers;
    for (const DiarizedTurn& turn : turns) {
        if (std::ranges::find(speakers, turn.speaker) == speakers.end()) {
            speakers.push_back(turn.speaker);
        }
    }
    return speakers;
}

}  // namespace ReelCore
