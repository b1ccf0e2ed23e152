#pragma once

#include "ReelCore/Recovery/CarveGround.h"
#include "ReelCore/Recovery/CarveTypes.h"
#include "ReelCore/Recovery/Shortcuts.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace ReelCore {

// Each of these follows media from where it begins in an image to where it ends; absent where no
// such media begins. What can't be read ends it. What a walk finds that was cut off means nothing.
//
// A walker serves one scan, whose starts ascend and never lie within what it has found.

/// Steps of a walk that are sooner taken than looked up.
inline constexpr std::int64_t shortWay = 2;

/// Follows the boxes of a QuickTime or MP4 file.
class MovieWalker {
public:
    explicit MovieWalker(CarveGround& ground) : ground_(ground), ways_(ground.total(), 4) {}

    std::optional<Finding> walk(std::int64_t start);

private:
    bool endsAt(std::int64_t offset);

    CarveGround& ground_;
    Shortcuts ways_;  ///< Over boxes that are neither index nor media.
};

/// Follows ProRes frames that have no container around them.
class ProResWalker {
public:
    explicit ProResWalker(CarveGround& ground)
        : ground_(ground), frameless_(ground.total(), blockBits) {}

    std::optional<Finding> walk(std::int64_t start);

private:
    static constexpr int blockBits = 14;
    static constexpr std::int64_t blockSize = 1 << blockBits;

    std::int64_t frameAt(std::int64_t offset);
    std::int64_t nextFrame(std::int64_t start, std::int64_t from);
    std::int64_t skipFrameless(std::int64_t start, std::int64_t from, std::int64_t end);
    std::optional<std::int64_t> searchBlock(std::int64_t from);
    std::span<const std::byte> read(std::int64_t from, std::int64_t end);

    CarveGround& ground_;
    Shortcuts frameless_;            ///< Over blocks in which no whole frame begins.
    std::int64_t skippedFrom_ = -1;  ///< The block that frames were last looked for in,
    std::int64_t skippedTo_ = -1;    ///< and how far there is none.
    std::vector<std::byte> buffer_;  ///< What was last searched,
    std::int64_t heldFrom_ = 0;      ///< and where it begins
    std::int64_t heldEnd_ = 0;       ///< and ends.
};

/// Follows the chunks of a WAV file, or its sound where it was never closed.
class WaveWalker {
public:
    explicit WaveWalker(CarveGround& ground) : ground_(ground), chunks_(ground.total(), 4) {}

    std::optional<Finding> walk(std::int64_t start);

private:
    static constexpr std::int64_t pieceSize = 0x40000;

    struct ChunksEnd {
        std::int64_t place = 0;
        std::int64_t soundSize = 0;  ///< Of the sound that begins there.
    };

    ChunksEnd lastChunk(std::int64_t start, std::int64_t limit);
    std::int64_t boundary(std::int64_t from);
    std::optional<std::int64_t> blankRun(std::int64_t from, std::int64_t end);
    std::optional<std::int64_t> signature(std::int64_t from, std::int64_t end);
    std::span<const std::byte> read(std::int64_t from, std::int64_t end);

    CarveGround& ground_;
    Shortcuts chunks_;           ///< Over chunks that are no sound.
    std::int64_t soundEnd_ = 0;  ///< Where the next blank run begins, or how far there is none.
    bool isBlank_ = false;       ///< A blank run begins there.
    std::vector<std::byte> buffer_;
};

/// Follows the triplets of an MXF file.
std::optional<Finding> walkMXF(CarveGround& ground, std::int64_t start);

}  // namespace ReelCore
