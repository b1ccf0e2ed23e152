#pragma once

#include "ReelCore/Platform/File.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace ReelCore {

/// An image as the walks of one scan see it, and what bounds them. They read a few bytes here and
/// there and pay for it as long as nothing has come of them: no image, however it is made, keeps a
/// scan busy for more than a few times as long as noise would.
///
/// Prices are in bytes of the image that could be searched in the same time. A scan begins with a
/// credit of four times the image's size and 32 MiB, and each byte that it goes on brings in one
/// more. A walk may use half of what is there. Where that does not do it is cut off: it reads no
/// more, and counts as one that came to nothing. A walk's first eight reads within 64 KiB of its
/// beginning are always free, so that no sound clip is lost for what stands around it, and so are
/// all reads of a walk that is sure of a finding, which the scan will step over.
///
/// Takes 2 MiB, whatever the image. One thread.
class CarveGround {
public:
    CarveGround(const File& image, std::int64_t total, std::function<bool()> isCancelled);

    std::int64_t total() const { return total_; }

    /// A walk begins. Beginnings ascend, but for the few bytes that two chunks share.
    void begin(std::int64_t start) {
        constexpr std::int64_t isFree = 8 * readPrice;
        const std::int64_t used = isSettled_ ? used_ : usedSoFar();
        credit_ += start - start_ - std::max<std::int64_t>(used - isFree, 0);
        start_ = start;
        allowed_ = std::max<std::int64_t>(credit_, 0) / 2 + isFree;
        left_ = isCancelled_ ? -1 : allowed_;
        isSettled_ = false;
    }

    /// The walk is sure of a finding. A WAV is by its first bytes: where its chunks could not all
    /// be paid for, it ends by the size that it tells.
    void settle() {
        if (isSettled_ || isCancelled_) return;
        isSettled_ = true;
        used_ = usedSoFar();
        left_ = unlimited;
    }

    /// The walk was cut off, or the scan was cancelled during it: what it came to is nothing.
    bool isCutOff() const { return left_ < 0; }

    /// Asks whether the scan is cancelled. Reading asks as well where the last answer is half a
    /// second old; after a yes nothing can be read any more.
    bool askCancelled();
    bool askCancelledInTime();

    /// What the scan has just read there need not be read again. It must stay until the next call.
    void hold(std::span<const std::byte> piece, std::int64_t offset) {
        held_ = piece;
        heldAt_ = offset;
    }

    /// The bytes at an offset within the image, up to 32: fewer at its end, nothing where they
    /// can't be read. They stay until the next call.
    std::span<const std::byte> read(std::int64_t offset, std::size_t size) {
        const auto within = static_cast<std::uint64_t>(offset - heldAt_);
        if (within + size > held_.size()) return readPaged(offset, size);
        pay(readPrice);
        if (left_ < 0) return {};
        return held_.subspan(static_cast<std::size_t>(within), size);
    }

    /// As many of them as are at hand together.
    std::span<const std::byte> rest(std::int64_t offset, std::size_t size);

    /// For what a walk does beside reading.
    void pay(std::int64_t price) { left_ -= price; }

    /// As many bytes as `into` takes, to be searched.
    std::span<const std::byte> read(std::int64_t offset, std::span<std::byte> into);

private:
    static constexpr std::int64_t pageSize = 4096;
    static constexpr std::size_t pageCount = 512;
    static constexpr std::size_t longestRead = 32;
    static constexpr std::size_t pageRoom = static_cast<std::size_t>(pageSize) + longestRead;
    static constexpr std::int64_t readPrice = 8;
    static constexpr std::int64_t unlimited = INT64_MAX / 2;

    struct Page {
        std::int64_t number = -1;
        std::size_t size = 0;  ///< With what it shares with the next.
    };

    std::int64_t usedSoFar() const { return allowed_ - std::max<std::int64_t>(left_, 0); }

    /// Spreads the pages evenly: those a round number of bytes apart get slots of their own.
    static std::size_t slotOf(std::int64_t offset) {
        const auto number = static_cast<std::uint64_t>(offset / pageSize);
        return static_cast<std::size_t>(number * 0x9E3779B97F4A7C15U >> 55U);
    }

    std::span<const std::byte> readPaged(std::int64_t offset, std::size_t size);
    void load(std::size_t slot, std::int64_t offset);
    std::span<const std::byte> readShort(std::int64_t offset, std::size_t size);

    const File& image_;
    std::int64_t total_;
    std::function<bool()> isCancelledNow_;
    std::chrono::steady_clock::time_point lastAsked_;
    bool isCancelled_ = false;

    std::int64_t credit_;
    std::int64_t start_ = 0;
    std::int64_t allowed_ = 0;  ///< What the walk could use of it, with what is free,
    std::int64_t left_ = 0;     ///< what it still can; below 0 it is cut off,
    std::int64_t used_ = 0;     ///< and what it had used when it was sure of a finding.
    bool isSettled_ = false;

    std::span<const std::byte> held_;  ///< What the scan is searching,
    std::int64_t heldAt_ = 0;          ///< and where it stands.
    std::array<Page, pageCount> pages_;
    std::vector<std::byte> bytes_;  ///< Of the pages, and room for one read.
};

}  // namespace ReelCore
