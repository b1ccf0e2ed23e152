#include "Support/ShootingDay.h"

#include "ReelCore/Platform/SystemError.h"
#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"

#include <algorithm>
#include <string>
#include <vector>

#include <sys/stat.h>

namespace TestSupport {

namespace {

namespace fs = std::filesystem;
using ReelCore::URL;

enum class Kind { proRes, mpeg4, mpeg2 };

struct DayClip {
    std::string path;
    Kind kind;
    std::string rate;
    double seconds;
    std::string timecode;
    std::string format;  ///< Where the extension does not tell it to ffmpeg.
};

struct DayRecording {
    std::string path;
    double start;  ///< In seconds since midnight; negative for none.
    double seconds;
    std::uint32_t sampleRate;
    std::string iXML;
};

constexpr const char* film = "24000/1001";
constexpr const char* ntsc = "30000/1001";
constexpr const char* fast = "60000/1001";

const std::vector<DayClip> clips{
    {"A001/CLIPS/A001C001.mov", Kind::proRes, "25", 2, "10:00:00:00", ""},
    {"A001/CLIPS/A001C002.MOV", Kind::proRes, "25", 2, "10:00:10:12", ""},
    {"A001/CLIPS/A001C003 Söhne & Co.mov", Kind::proRes, "25", 2, "10:00:20:00", ""},
    {"A001/.hidden/.A001C004.mov", Kind::proRes, "25", 1, "10:00:30:00", ""},
    {"A001/CLIPS/A001C005\nagain.mov", Kind::proRes, "25", 1, "10:00:40:00", ""},
    {"A001/CLIPS/A001C006 \xFF\xFE.mov", Kind::proRes, "25", 1, "10:00:50:00", ""},
    {"B001/B001C001.mov", Kind::proRes, film, 2, "10:00:00:12", ""},
    {"B001/B001C002.mov", Kind::proRes, film, 2, "10:00:21:00", ""},
    {"C001/C0001.MXF", Kind::mpeg2, ntsc, 2, "10:10:00;00", ""},
    {"C001/C0002.mxf", Kind::mpeg2, "25", 2, "10:10:30:00", ""},
    {"D001/D0001.MP4", Kind::mpeg4, ntsc, 2, "11:01:00;02", ""},
    {"D001/D0002.mp4", Kind::mpeg4, fast, 2, "11:02:00;04", ""},
    {"D001/D0003.mp4", Kind::mpeg4, "50", 2, "11:03:00:25", ""},
    {"E001/E0001.mov", Kind::proRes, "24", 3, "14:00:00:00", ""},
    {"E001/E0002.mov", Kind::proRes, "30", 1, "14:00:02:15", ""},
    {"F001/F0001.avi", Kind::mpeg4, "25", 1, "", ""},
    {"F001/F0002.mts", Kind::mpeg2, "25", 1, "", ""},
    {"F001/F0003.m4v", Kind::mpeg4, "25", 2, "", ""},
    {"F001/F0004.R3D", Kind::proRes, "24", 1, "15:00:00:00", "mov"},
    {"F001/F0005.braw", Kind::proRes, "24", 1, "15:00:10:00", "mov"},
    {"NIGHT/N0001.mov", Kind::proRes, "25", 2, "23:59:59:00", ""},
    {"NIGHT/N0002.mov", Kind::proRes, "25", 2, "00:00:00:12", ""},
};

const std::vector<DayRecording> recordings{
    {"SOUND/T001.WAV", 35995, 20, 48000,
     "<BWFXML><SCENE>12A</SCENE><TAKE>3</TAKE><TRACK><NAME>Boom</NAME></TRACK></BWFXML>"},
    {"SOUND/Mix & Träger/0001.wav", 36000, 12, 96000, ""},
    {"SOUND/T002-1.wav", 36019, 2.25, 48000, ""},
    {"SOUND/T002-2.wav", 36021.25, 2.75, 48000, ""},
    {"SOUND/NEARMISS.BWF", 36601.6, 2, 48000, ""},
    {"SOUND/D.wav", 39660, 122, 8000, ""},
    {"SOUND/LONELY.wav", 43200, 5, 44100, ""},
    {"SOUND/NIGHT.WAV", 86398, 10, 48000, ""},
    {"SOUND/NOTIME.wav", -1, 1.2, 48000, ""},
};

ClipRecipe recipeOf(const DayClip& clip) {
    ClipRecipe recipe;
    recipe.rate = clip.rate;
    recipe.seconds = clip.seconds;
    recipe.timecode = clip.timecode;
    if (clip.kind == Kind::mpeg4) {
        recipe.video = {"-c:v", "mpeg4"};
        recipe.audio = {"-c:a", "aac"};
    }
    if (clip.kind == Kind::mpeg2) {
        recipe.video = {"-c:v", "mpeg2video"};
        recipe.audio = {"-c:a", clip.timecode.empty() ? "mp2" : "pcm_s16le"};
    }
    if (!clip.format.empty()) recipe.more = {"-f", clip.format};
    return recipe;
}

Recording recordingOf(const DayRecording& one) {
    Recording recording;
    recording.sampleRate = one.sampleRate;
    recording.bitsPerSample = 16;
    recording.seconds = one.seconds;
    recording.hasBroadcastExtension = one.start >= 0;
    if (one.start >= 0) {
        recording.timeReference = static_cast<std::uint64_t>(one.start * one.sampleRate + 0.5);
    }
    recording.iXML = one.iXML;
    return recording;
}

template <class Wanted>
void makeWhere(const URL& folder, Wanted isWanted) {
    for (const DayClip& clip : clips) {
        if (!isWanted(clip.path)) continue;
        fs::create_directories((folder / clip.path).parent_path());
        makeClip(folder / clip.path, recipeOf(clip));
    }
    for (const DayRecording& one : recordings) {
        if (isWanted(one.path)) writeFile(folder / one.path, broadcastWAV(recordingOf(one)));
    }
}

void makePipe(const URL& path) {
    if (::mkfifo(path.c_str(), 0666) != 0) ReelCore::throwSystemError(path);
}

}  // namespace

void makeShootingDay(const URL& folder) {
    makeWhere(folder, [](const std::string&) { return true; });
}

void makeShortDay(const URL& folder) {
    static const std::vector<std::string> wanted{"A001/CLIPS/A001C001.mov", "E001/E0002.mov",
                                                 "SOUND/T001.WAV", "SOUND/Mix & Träger/0001.wav",
                                                 "SOUND/LONELY.wav"};
    makeWhere(folder, [](const std::string& path) {
        return std::ranges::find(wanted, path) != wanted.end();
    });
}

void addOddEntries(const URL& folder, std::string_view clip, std::string_view recording) {
    const URL odd = folder / "ODD";
    writeTree(odd, {{"copying.mov.tmp", noise(1000)},
                    {"empty.mov", ""},
                    {"empty.wav", ""},
                    {"folder.mov/readme.txt", "no clip"},
                    {"folder.wav/readme.txt", "no sound"},
                    {"noise.mp4", noise(20'000, 2)},
                    {"noise.wav", noise(20'000, 3)},
                    {"notes.txt", "10:00:00:00"}});
    makePipe(odd / "pipe.mov");
    makePipe(odd / "pipe.wav");
    fs::create_symlink("gone.mov", odd / "broken.mov");
    fs::create_symlink("gone.wav", odd / "broken.wav");
    fs::create_symlink("circle.mov", odd / "circle.mov");
    fs::create_directory_symlink("..", odd / "loop");
    fs::create_symlink("pipe.mov", odd / "to pipe.mov");
    fs::create_symlink(URL("..") / clip, odd / "to clip.mov");
    fs::create_symlink(URL("..") / recording, odd / "to recording.wav");
}

}  // namespace TestSupport
