#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TestSupport {

/// What a take is recorded as.
struct TakeKind {
    std::string name;
    std::string profile;  ///< As ffmpeg's encoder names it.
    std::string codec;    ///< Four characters.
    std::string rate = "25";
    int frames = 20;
    int channels = 2;  ///< 0 for no sound.
    int bits = 16;     ///< Of a sample of sound.
    std::string size = "128x72";

    double framesASecond() const;
    std::int64_t bytesPerAudioFrame() const { return std::int64_t{channels} * bits / 8; }
};

enum class TakeContent { shot, reference };
enum class IndexPlace { end, front };

/// Records a take with ffmpeg. The reference of a kind has other pictures, another sound and
/// another length than the shot.
void recordTake(const ReelCore::URL& url, const TakeKind& kind, TakeContent content,
                IndexPlace index = IndexPlace::end);

/// Bytes of a file.
struct Piece {
    std::int64_t offset = 0;
    std::int64_t size = 0;

    std::int64_t end() const { return offset + size; }
};

/// Where ffprobe finds the packets of a take, in the file's order.
struct TakeLayout {
    std::vector<Piece> frames;
    std::vector<Piece> sound;
};
TakeLayout layoutOf(const ReelCore::URL& take);

/// What ffmpeg decodes.
struct DecodedTake {
    std::vector<std::string> frames;  ///< One line each: times, size and hash of the picture.
    std::string sound;                ///< Samples of 32 bits, channel by channel.
    std::string complaints;           ///< All that it said.
};
DecodedTake decoded(const ReelCore::URL& take, const TakeKind& kind);

/// What mediainfo says of a take; durations are milliseconds.
struct MediaInfo {
    std::string truncated;  ///< Empty where nothing is missing.
    std::string codec;
    std::string frames;
    double duration = 0.0;
    std::string sound;  ///< "2 x 16" for stereo of 16 bits, empty for none.
    double soundDuration = 0.0;
};
MediaInfo mediaInfo(const ReelCore::URL& take);

}  // namespace TestSupport
