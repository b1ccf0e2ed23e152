#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/CarveTypes.h"
#include "ReelCore/Recovery/ImagePages.h"
#include "ReelCore/Recovery/PlaceSet.h"
#include "ReelCore/Recovery/Stretches.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace ReelCore {

// Each of these follows media from where it begins in an image of `total` bytes to where it ends;
// absent where no such media begins. What can't be read ends it.
//
// A walker serves one scan, whose starts ascend and never lie within what it has found. It
// remembers what its walks that came to nothing have seen, so that an image made of nothing but
// beginnings is not gone over anew from each of them.

/// Follows the boxes of a QuickTime or MP4 file.
class MovieWalker {
public:
    MovieWalker(const File& image, std::int64_t total) : pages_(image), total_(total) {}

    std::optional<Finding> walk(std::int64_t start);

private:
    bool endsAt(std::int64_t offset);

    ImagePages pages_;
    std::int64_t total_;
    PlaceSet deadEnds_;  ///< Boxes from which neither index nor media is reached.
};

/// Follows ProRes frames that have no container around them.
class ProResWalker {
public:
    ProResWalker(const File& image, std::int64_t total)
        : image_(image), pages_(image), total_(total) {}

    std::optional<Finding> walk(std::int64_t start);

private:
    std::optional<std::int64_t> frameAt(std::int64_t offset);
    std::optional<std::int64_t> nextFrame(std::int64_t from);
    bool isFrameSize(std::optional<std::int64_t> size, std::int64_t offset) const;

    const File& image_;
    ImagePages pages_;
    std::int64_t total_;
    Stretches frameless_;  ///< Where no valid frame begins.
    std::vector<std::byte> buffer_;
};

/// Follows the chunks of a WAV file, or its sound where it was never closed.
class WaveWalker {
public:
    WaveWalker(const File& image, std::int64_t total)
        : image_(image), pages_(image), total_(total) {}

    std::optional<Finding> walk(std::int64_t start);

private:
    std::int64_t lastChunk(std::int64_t start, std::int64_t limit);
    std::int64_t boundary(std::int64_t from);
    std::optional<std::int64_t> blankRun(std::int64_t from, std::int64_t end);
    std::optional<std::int64_t> signature(std::int64_t from, std::int64_t end);

    const File& image_;
    ImagePages pages_;
    std::int64_t total_;
    std::unordered_map<std::int64_t, std::int64_t> shortcuts_;  ///< From chunks to later ones.
    Stretches written_;                                         ///< Where no blank run begins.
    std::vector<std::byte> buffer_;
};

/// Follows the triplets of an MXF file.
std::optional<Finding> walkMXF(const File& image, std::int64_t start, std::int64_t total);

}  // namespace ReelCore
