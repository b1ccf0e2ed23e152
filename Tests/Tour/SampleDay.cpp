#include "Tour/SampleDay.h"

#include "Support/Clip.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"

#include <string>

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

}  // namespace

SampleDay::SampleDay(const URL& folder)
    : card(folder / "A001"),
      image(folder / "card.img"),
      look(folder / "warm.cube"),
      folder_(folder) {
    makeCard(card);
    makeImage(image, card);
    writeFile(look,
              "LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 0.9 0\n1 0.9 0\n0 0 0.7\n1 0 0.7\n0 0.9 0.7\n"
              "1 0.9 0.7\n");
}

URL SampleDay::operator/(const char* name) const {
    std::filesystem::create_directories(folder_ / name);
    return folder_ / name;
}

}  // namespace Tour
