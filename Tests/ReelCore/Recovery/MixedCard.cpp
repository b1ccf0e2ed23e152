#include "MixedCard.h"

#include "DoctorFixture.h"
#include "Support/AwkwardNames.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <stdexcept>

#include <fmt/format.h>
#include <sys/stat.h>

namespace ReelCore {

namespace {

using namespace TestSupport;

/// What stands in a file, what a scan says of it, and what a repair makes of it.
struct Kind {
    std::string content;
    ClipDiagnosis diagnosis;
    std::string method;
    std::string detail;
    std::string ending;
};

Kind hopeless(const std::string& content, const ClipDiagnosis& diagnosis) {
    return {content, diagnosis, "—", "nothing to repair", ""};
}

/// The clips of one camera and one recorder, and what becomes of them.
class Kinds {
public:
    explicit Kinds(const URL& folder)
        : camera_(made(folder / "camera.mov", {.seconds = 0.4})),
          indexed_(
              made(folder / "indexed.mov", {.seconds = 0.4, .more = {"-movflags", "+faststart"}})),
          h264_(made(folder / "h264.mp4", {.seconds = 1.0,
                                           .video = {"-c:v", "libx264", "-g", "5"},
                                           .audio = {"-c:a", "aac"},
                                           .more = {"-movflags", "+faststart"}})),
          mxf_(made(folder / "movie.mxf", {.video = {"-c:v", "mpeg2video", "-q:v", "2"}})) {}

    const std::string& camera() const { return camera_; }

    Kind movie() const { return hopeless(indexed_, healthy); }
    Kind mxf() const { return hopeless(mxf_, healthy); }
    Kind recording() const { return hopeless(broadcastWAV({.seconds = 0.1}), healthy); }

    /// Power went before the index was written; all 10 frames and the sound are there.
    Kind neverClosed() const {
        const std::string media = camera_.substr(0, beginOf(camera_, "moov"));
        const auto bytes = media.size() - beginOf(media, "mdat") - 8;
        return {media, missingIndexOf(static_cast<std::int64_t>(bytes)), "moov rebuild",
                "recovered 10 frames (0.4s video, 0.4s audio)", "_recovered.mov"};
    }

    /// Cut off within the seventh frame; all between the frames is sound.
    Kind cutProRes() const {
        const auto frames = framesOf(indexed_);
        const std::string clip = indexed_.substr(0, frames.at(6).begin + 100);
        std::size_t sound = frames[6].begin - beginOf(clip, "mdat") - 8;
        for (std::size_t i = 0; i < 6; ++i) sound -= frames[i].size;
        const double seconds = static_cast<double>(sound) / 4 / 48000;
        return {clip, cut(indexed_, clip), "index rebuild",
                fmt::format("recovered 6 frames (0.2s video, {:.1f}s audio)", seconds),
                "_repaired.mov"};
    }

    Kind cutH264() const { return remuxed(h264_, h264_.size() / 2); }

    Kind cutMXF() const {
        Kind kind = remuxed(mxf_, mxf_.size() / 2);
        kind.diagnosis = truncatedTo(std::ssize(kind.content), wholeTriplets(kind.content));
        return kind;
    }

    /// Its index leads nowhere, so that neither way brings it back.
    Kind cutBeyondHelp() const {
        const std::string clip = wholeMovie();
        return {clip.substr(0, clip.size() - 1), cut(clip, clip.substr(1)), "repair",
                "I/O failed: remux failed: ", ""};
    }

    static Kind staleWave() {
        const std::string clip = staleRecording(0.5);
        return {clip, staleSizes(0, std::ssize(clip) - 44), "WAV size fix",
                "0.5s of audio recovered", "_repaired.wav"};
    }

private:
    static std::string made(const URL& clip, const ClipRecipe& recipe) {
        makeClip(clip, recipe);
        return readFile(clip);
    }

    static ClipDiagnosis cut(const std::string& whole, const std::string& clip) {
        return truncatedTo(std::ssize(whole), std::ssize(clip));
    }

    static Kind remuxed(const std::string& whole, std::size_t size) {
        const std::string clip = whole.substr(0, size);
        return {clip, cut(whole, clip), "remux", "container rebuilt from intact index",
                "_repaired.mov"};
    }

    /// The length of the triplets that end within the clip.
    static std::int64_t wholeTriplets(const std::string& clip) {
        std::size_t at = 0;
        for (std::size_t end = 0; end <= clip.size();) {
            at = end;
            const std::size_t first = numberIn(clip.substr(at + 16, 1));
            const std::size_t more = first < 0x80 ? 0 : first - 0x80;
            end += 17 + more + (more == 0 ? first : numberIn(clip.substr(at + 17, more)));
        }
        return static_cast<std::int64_t>(at);
    }

    const std::string camera_;
    const std::string indexed_;
    const std::string h264_;
    const std::string mxf_;
};

/// Puts clips on the card, in the order in which a scan must report them.
class Maker {
public:
    explicit Maker(MixedCard& card) : card_(card) {}

    void add(const std::string& path, const Kind& kind) {
        writeTree(card_.path, {{path, kind.content}});
        note(path, kind, std::ssize(kind.content));
    }

    void addFolder(const std::string& path, const std::string& reason) {
        std::filesystem::create_directories(card_.path / path);
        note(path, hopeless("", unreadable(reason)), 0);
    }

    void addLink(const std::string& path, const URL& target, const Kind& kind) {
        std::filesystem::create_symlink(target, card_.path / path);
        note(path, kind, std::ssize(kind.content));
    }

    void addPipe(const std::string& path) {
        if (::mkfifo((card_.path / path).c_str(), 0600) != 0) throw std::runtime_error("no pipe");
        note(path, hopeless("", unreadable("empty file")), 0);
    }

private:
    void note(const std::string& path, const Kind& kind, std::int64_t size) {
        const std::string stem = URL(path).stem().native();
        const std::string output = kind.ending.empty() ? "" : stem + kind.ending;
        card_.clips.push_back({path, size, kind.diagnosis, kind.method, kind.detail, output});
    }

    MixedCard& card_;
};

/// What no scan reports, among and below the clips.
void addNoise(const URL& card, const Kinds& kinds) {
    const std::string clip = kinds.movie().content;
    writeTree(card, {{".DS_Store", "x"},
                     {"A/.DS_Store", "x"},
                     {".Spotlight-V100/a.mov", clip},
                     {".Trashes/501/a.mov", clip},
                     {"A/.Trashes/a.mov", clip},
                     {".fseventsd/a.wav", ""},
                     {".TemporaryItems/a.mxf", ""},
                     {"System Volume Information/a.mov", clip},
                     {".DocumentRevisions-V100/a.mov", clip},
                     {"A/C.txt", clip},
                     {"A/C.mov.xml", clip},
                     {"A/mov", clip},
                     {"A/.mov", clip},
                     {"A/C.mov.", clip}});
}

/// In the order of their first characters.
void addAwkwardNames(Maker& make, const Kinds& kinds) {
    std::vector<std::string> names = awkwardNames;
    std::ranges::sort(names);
    const std::array all{kinds.neverClosed(), kinds.cutH264(), kinds.cutProRes(), kinds.staleWave(),
                         kinds.cutMXF()};
    const std::array<std::string, 5> extensions{".mov", ".mp4", ".MOV", ".wav", ".mxf"};
    for (std::size_t i = 0; i < names.size(); ++i) {
        make.add("AWKWARD/" + names[i] + extensions[i % 5], all[i % 5]);
    }
}

void fill(MixedCard& card, const Kinds& kinds) {
    Maker make(card);
    make.add("-r.MOV", kinds.cutProRes());
    make.add(".hidden.mov", kinds.movie());
    make.add(".hidden/._R1.WAV", Kinds::staleWave());
    make.add("A 1.mov", kinds.movie());
    make.add("A-1.MOV", kinds.neverClosed());
    make.add("A.Mov", hopeless(fileTypeBox(), unreadable("no moov and no mdat")));
    make.add("A/0.mp4", hopeless("", unreadable("empty file")));
    make.add("A/01.wav", hopeless("", unreadable("empty file")));
    make.add("A/02.MXF", hopeless("", unreadable("empty file")));
    make.add("A/1.m4v", hopeless("7 bytes", unreadable("no QuickTime/MP4 structure")));
    make.add("A/2.mov", hopeless(fileTypeBox() + box("mdat"), unreadable("mdat empty")));
    make.addFolder("A/3.mov", "no QuickTime/MP4 structure");
    make.add("A/3.mov/inside.mxf", kinds.mxf());
    make.addFolder("A/4.wav", "not a RIFF/WAVE");
    make.addFolder("A/5.mxf", "no MXF header partition");
    make.add("A/6.bwf", kinds.recording());
    make.addLink("A/7.Wav", "6.bwf", kinds.recording());
    make.addLink("A/8.mxf", "nowhere.mxf", hopeless("", unreadable("empty file")));
    make.addLink("A/9.mov", "3.mov", hopeless("", unreadable("no QuickTime/MP4 structure")));
    make.add("A/C0001.mov", kinds.neverClosed());
    make.add("A/C0010.mov", kinds.movie());
    make.add("A/C009.mov", kinds.movie());
    make.addLink("A/link to the pipe.mov", "pipe.mov", hopeless("", unreadable("empty file")));
    make.addPipe("A/pipe.mov");
    make.add("A0.mp4", kinds.cutH264());
    addAwkwardNames(make, kinds);
    make.add("B/C0001.mov", kinds.neverClosed());
    card.clips.back().output = "C0001_recovered 2.mov";
    make.add("B/M1.mxf", kinds.cutMXF());
    make.add("B/M2.mxf", hopeless(partitionKey(2), unreadable("MXF structure unwalkable")));
    make.add("B/M3.mxf", hopeless(noise(200), unreadable("no MXF header partition")));
    make.add("B/M4.mp4", kinds.cutBeyondHelp());
    make.add("DEEP/1/2/3/4/5/6/7/R.BWF", Kinds::staleWave());
    make.add("DEEP/1/2/3/4/5/6/7/R.wav", hopeless(noise(99), unreadable("not a RIFF/WAVE")));
    make.add("b.mov", kinds.movie());
    // A letter with a ring that is one character for Ångström, and comes before Ø.
    make.add("\u212B.mov", kinds.movie());
    make.add("\u00D8.mov", kinds.movie());
    addNoise(card.path, kinds);
}

}  // namespace

MixedCard::MixedCard(const URL& folder)
    : path(folder / "CARD"), reference(folder / "camera/camera.mov") {
    std::filesystem::create_directories(path);
    std::filesystem::create_directories(folder / "camera");
    fill(*this, Kinds(folder / "camera"));
}

MadeClip withoutReference(MadeClip clip) {
    if (!clip.diagnosis.is<ClipDiagnosis::MissingIndex>()) return clip;
    clip.detail =
        "A healthy reference clip from the same camera is required: pick a healthy clip from the "
        "same camera";
    clip.output = "";
    return clip;
}

}  // namespace ReelCore
