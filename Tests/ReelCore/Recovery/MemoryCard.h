#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace TestSupport {

/// A run of bytes on a card.
struct Stretch {
    std::int64_t offset = 0;
    std::int64_t length = 0;

    bool operator==(const Stretch&) const = default;

    std::int64_t end() const { return offset + length; }
};

/// A small card with a real file system. When that dies, only the image is left.
class MemoryCard {
public:
    virtual ~MemoryCard() = default;

    MemoryCard(const MemoryCard&) = delete;
    MemoryCard& operator=(const MemoryCard&) = delete;

    /// The file that the card's bytes are in.
    virtual ReelCore::URL image() const = 0;

    /// Copies a file into the card's only folder. Throws where it has no room.
    virtual void add(const ReelCore::URL& file) = 0;

    virtual void remove(const std::string& name) = 0;

    /// Takes all the room that is left with noise.
    virtual void fill() = 0;

    /// Deletes `victim` and puts a smaller file where it began, on a full card.
    virtual void overwriteHead(const std::string& victim, const ReelCore::URL& by) = 0;

    /// Where a file's bytes lie, by the file system's own account.
    virtual std::vector<Stretch> layoutOf(const std::string& name) const = 0;

    /// Zeroes what the file system keeps for itself to tell what lies where, and no byte of a file.
    virtual void die() = 0;

    /// True as long as a tool of the file system makes sense of it.
    virtual bool isReadable() const = 0;

protected:
    MemoryCard() = default;

    static constexpr std::int64_t mebibytes = 160;

    /// Zeroes a run of the image.
    void wipe(const Stretch& run) const;
};

/// Mounted by the kernel: needs root and loop devices (see LoopMount::isAvailable).
std::unique_ptr<MemoryCard> makeExt4Card();

/// Filled by mtools.
std::unique_ptr<MemoryCard> makeFATCard();

}  // namespace TestSupport
