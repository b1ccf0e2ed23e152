#pragma once

#include "ReelCore/Platform/URL.h"

#include <string>
#include <vector>

namespace TestSupport {

/// A clip that ffmpeg makes: a test picture, and in each audio stream a tone for each channel, of
/// 2000 Hz in the first and 1000 Hz more in each other.
struct ClipRecipe {
    std::string rate = "25";  ///< As ffmpeg takes it, such as "30000/1001".
    std::string size = "128x72";
    double seconds = 1.0;
    std::string timecode = {};  ///< Of the first frame; empty for none.
    std::vector<std::string> video{"-c:v", "prores_ks", "-profile:v",
                                   "0",    "-pix_fmt",  "yuv422p10le"};
    std::vector<int> channels{2};  ///< Of each audio stream.
    std::vector<std::string> audio{"-c:a", "pcm_s16le"};
    std::vector<std::string> more = {};  ///< Before the output's path.
};

/// Makes the clip; its extension tells the container. Throws std::runtime_error with what ffmpeg
/// said if it fails.
void makeClip(const ReelCore::URL& url, const ClipRecipe& recipe = {});

/// What ffprobe prints for one entry of a clip, such as "stream=codec_name" of the streams "v:0",
/// or "format=duration" where no streams are named.
std::string probed(const ReelCore::URL& url, const std::string& entry,
                   const std::string& streams = {});

}  // namespace TestSupport
