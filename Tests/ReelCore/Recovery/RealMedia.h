#pragma once

#include "MemoryCard.h"
#include "ReelCore/Recovery/CarveTypes.h"

#include <string>
#include <vector>

namespace TestSupport {

/// What real tools say of clips.

/// Where the pictures of a clip stand in it (ffprobe).
std::vector<Stretch> picturesOf(const ReelCore::URL& clip);

/// A checksum of each decoded picture (ffmpeg).
std::vector<std::string> pictureSums(const ReelCore::URL& clip);

/// The first 10 s of a clip's first audio stream, decoded to 16 bits (ffmpeg).
std::string samplesOf(const ReelCore::URL& clip);

/// sha256sum
std::string sha256Of(const ReelCore::URL& file);

/// True if these bytes stand in an image at an offset.
bool standsAt(const ReelCore::URL& image, std::int64_t offset, std::string_view bytes);

/// A run of bytes.
std::string_view cut(std::string_view bytes, const Stretch& run);

/// The length of an MXF clip's triplets from the first to the one that passes `offset`.
std::int64_t tripletsBeyond(std::string_view clip, std::int64_t offset);

/// What a carve must find of a clip that lies whole at an offset.
ReelCore::Finding wholeFinding(const ReelCore::URL& clip, std::int64_t offset);

}  // namespace TestSupport
