#include "Tour/SampleDay.h"

#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"
#include "Support/Tool.h"

#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <fmt/format.h>

namespace Tour {

using namespace TestSupport;
using ReelCore::URL;

namespace {

/// With its slate in front of the sound: what stands behind it counts as damage.
std::string recording(std::uint64_t secondOfDay, std::size_t seconds, std::string_view slate) {
    const Recording sound;
    const std::size_t bytes = seconds * sound.sampleRate * sound.bitsPerSample / 8U;
    return riffFile(riffChunk("fmt ", formatPayload(sound)) +
                    riffChunk("bext", broadcastPayload(secondOfDay * sound.sampleRate)) +
                    riffChunk("iXML", slate) + riffChunk("data", std::string(bytes, '\0')));
}

/// As a recorder leaves it that lost its power: the sizes were to be filled in at the end.
std::string unclosed(std::string wave) {
    wave.replace(4, 4, 4, '\0');
    wave.replace(wave.find("data") + 4, 4, 4, '\0');
    return wave;
}

std::string withoutIndex(const std::string& clip) {
    return clip.substr(0, clip.rfind("moov") - 4);
}

void makeCard(const URL& card) {
    const URL clips = card / "XDROOT" / "Clip";
    std::filesystem::create_directories(clips);
    for (const auto& [name, timecode] : {std::pair("A001C001_261121XK", "10:00:00:00"),
                                         {"A001C002_261121XK", "10:00:10:12"},
                                         {"A001C003_261121XK", "10:30:00:00"}}) {
        makeClip(clips / (std::string(name) + ".MOV"),
                 {.size = "640x360", .seconds = 4, .timecode = timecode});
        writeFile(clips / (std::string(name) + ".XML"), "<Clip/>\n");
    }
    const std::string whole = readFile(clips / "A001C002_261121XK.MOV");
    writeFile(clips / "A001C004_261121XK.MOV", withoutIndex(whole));
    constexpr std::uint64_t hour = 3600;
    writeTree(card / "SOUND",
              {{"T001.WAV", recording(10 * hour - 5, 400,
                                      "<BWFXML><SCENE>12A</SCENE><TAKE>3</TAKE><TRACK>"
                                      "<NAME>Boom</NAME></TRACK></BWFXML>")},
               {"T002.WAV", recording(12 * hour, 5, "")},
               {"T003.WAV", unclosed(recording(13 * hour, 5, ""))}});
}

void makeImage(const URL& image, const URL& card) {
    constexpr std::size_t gap = 1 << 20;
    const std::string clip = readFile(card / "XDROOT/Clip/A001C001_261121XK.MOV");
    writeFile(image, noise(gap) + clip + noise(gap, 2) + withoutIndex(clip));
}

/// A white board of ruled lines, as an ffmpeg filter.
std::string slate() {
    std::string filter =
        "color=0x303840:s=1280x720:r=25:d=3,drawbox=x=140:y=60:w=1000:h=600:color=white:t=fill";
    for (const auto& [x, y, text] : {std::tuple(180, 90, "PROD NIGHT SHIFT"),
                                     {180, 210, "SCENE 12A"},
                                     {660, 210, "TAKE 3"},
                                     {180, 330, "ROLL A004"},
                                     {660, 330, "25 FPS"},
                                     {180, 450, "DIR JANE ROE"},
                                     {180, 570, "DATE 22 NOV 2026"}}) {
        filter +=
            fmt::format(",drawtext=font='DejaVu Sans':fontsize=54:x={}:y={}:text='{}'", x, y, text);
    }
    for (const int y : {175, 295, 415, 535}) {
        filter += fmt::format(",drawbox=x=140:y={}:w=1000:h=4:color=black:t=fill", y);
    }
    return filter;
}

/// Somebody to look at, where this machine has a portrait; else a grey wall.
std::vector<std::string> person() {
    const URL portrait = "/usr/lib/python3/dist-packages/skimage/data/astronaut.png";
    if (!std::filesystem::exists(portrait))
        return {"-f", "lavfi", "-i", "color=gray:s=720x720:r=25:d=12"};
    return {"-loop", "1", "-framerate", "25", "-t", "12", "-i", portrait.native()};
}

void makeInterview(const URL& url) {
    std::vector<std::string> arguments{"-y", "-v", "error", "-f", "lavfi", "-i", slate()};
    for (const std::string& one : person()) arguments.push_back(one);
    for (const auto& [voice, text] :
         {std::pair("slt", "Good morning. The generator is running and the lights are ready."),
          {"rms", "Then we can start with the first shot before the sun comes up."},
          {"awb", "Please wait for me. I still have to change the battery of the camera."}}) {
        arguments.insert(arguments.end(), {"-f", "lavfi", "-i",
                                           fmt::format("flite=text='{}':voice={}", text, voice)});
    }
    const std::string filter =
        "[0]setsar=1[slate];[1]scale=720:720,pad=1280:720:280:0:0x303840,setsar=1[person];"
        "[slate][person]concat=n=2:v=1[v];"
        "[2]apad=pad_dur=0.7[a];[3]apad=pad_dur=0.7[b];[4]apad=pad_dur=0.7[c];"
        "[a][b][c]concat=n=3:v=0:a=1,aresample=48000,adelay=2500[s]";
    arguments.insert(arguments.end(), {"-filter_complex", filter, "-map", "[v]", "-map", "[s]",
                                       "-shortest", "-timecode", "10:45:00:00", "-c:v", "mpeg4",
                                       "-q:v", "3", "-c:a", "pcm_s16le", url.native()});
    outputOf("ffmpeg", arguments);
}

}  // namespace

SampleDay::SampleDay(const URL& folder)
    : card(folder / "A001"),
      image(folder / "card.img"),
      look(folder / "warm.cube"),
      interview(folder / "Interview.mov"),
      folder_(folder) {
    makeCard(card);
    makeImage(image, card);
    makeInterview(interview);
    writeFile(look,
              "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 0.9 0\n1 0.9 0\n0 0 0.7\n1 0 0.7\n0 0.9 0.7\n"
              "1 0.9 0.7\n");
}

URL SampleDay::operator/(const char* name) const {
    std::filesystem::create_directories(folder_ / name);
    return folder_ / name;
}

}  // namespace Tour
