#include "Tour/SampleCard.h"

#include "ReelCore/Platform/ChildProcess.h"

#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tour {

namespace {

void runFFmpeg(const std::vector<std::string>& arguments) {
    std::vector<std::string> all{"ffmpeg", "-nostdin", "-loglevel", "error", "-y"};
    all.insert(all.end(), arguments.begin(), arguments.end());
    const auto outcome = ReelCore::ChildProcess::run("/usr/bin/env", all);
    if (outcome.status != 0) throw std::runtime_error("ffmpeg failed: " + outcome.output);
}

void makeClip(const ReelCore::URL& path, const std::string& timecode) {
    runFFmpeg({"-f", "lavfi", "-i", "testsrc2=size=1920x1080:rate=25:duration=4", "-f", "lavfi",
               "-i", "sine=frequency=440:sample_rate=48000:duration=4", "-timecode", timecode,
               "-c:v", "prores_ks", "-profile:v", "0", "-c:a", "pcm_s16le", path.native()});
}

void makeWAV(const ReelCore::URL& path) {
    runFFmpeg({"-f", "lavfi", "-i", "sine=frequency=1000:sample_rate=48000:duration=4",
               "-write_bext", "1", "-metadata", "time_reference=1728000000", "-c:a", "pcm_s24le",
               path.native()});
}

void makeSidecar(const ReelCore::URL& media) {
    ReelCore::URL path = media;
    path.replace_extension(".XML");
    std::ofstream(path) << "<Clip name=\"" << media.stem().native() << "\"/>\n";
}

}  // namespace

void makeSampleCard(const ReelCore::URL& folder) {
    const ReelCore::URL clips = folder / "XDROOT" / "Clip";
    const ReelCore::URL sound = folder / "SOUND";
    std::filesystem::create_directories(clips);
    std::filesystem::create_directories(sound);
    for (const int take : {1, 2, 3}) {
        const std::string number = std::to_string(take);
        const ReelCore::URL clip = clips / ("A001C00" + number + "_261121XK.MOV");
        makeClip(clip, "10:0" + number + ":00:00");
        makeSidecar(clip);
    }
    makeWAV(sound / "T001.WAV");
    makeSidecar(sound / "T001.WAV");
}

}  // namespace Tour
