#include "ReelCore/Recovery/CarveGround.h"

#include "ReelCore/Recovery/ImagePiece.h"

#include <utility>

namespace ReelCore {

namespace {

constexpr std::int64_t firstCredit(std::int64_t total) {
    return 4 * std::min<std::int64_t>(total, INT64_MAX / 16) + 0x2000000;
}

/// Of reading what lies elsewhere, beside what is read.
constexpr std::int64_t jumpPrice = 2048;

}  // namespace

CarveGround::CarveGround(const File& image, std::int64_t total, std::function<bool()> isCancelled)
    : image_(image),
      total_(total),
      isCancelledNow_(std::move(isCancelled)),
      lastAsked_(std::chrono::steady_clock::now()),
      credit_(firstCredit(total)),
      bytes_(pageCount * pageRoom + longestRead) {
    begin(0);
}

bool CarveGround::askCancelled() {
    lastAsked_ = std::chrono::steady_clock::now();
    isCancelled_ = isCancelled_ || isCancelledNow_();
    if (isCancelled_) left_ = -1;
    return isCancelled_;
}

bool CarveGround::askCancelledInTime() {
    constexpr std::chrono::milliseconds longEnough(500);
    if (std::chrono::steady_clock::now() - lastAsked_ < longEnough) return isCancelled_;
    return askCancelled();
}

/// Pages near a walk's beginning are free: the scan comes by them in any case.
void CarveGround::load(std::size_t slot, std::int64_t offset) {
    constexpr std::int64_t nearness = 0x10000;
    if (offset < start_ || offset - start_ >= nearness) left_ -= jumpPrice;
    if (left_ < 0 || askCancelledInTime()) return;
    const auto room = std::span(bytes_).subspan(slot * pageRoom, pageRoom);
    const std::int64_t number = offset / pageSize;
    pages_[slot] = {number, readPiece(image_, number * pageSize, room).size()};
}

std::span<const std::byte> CarveGround::rest(std::int64_t offset, std::size_t size) {
    const std::size_t slot = slotOf(offset);
    if (pages_[slot].number != offset / pageSize) load(slot, offset);
    pay(readPrice);
    if (left_ < 0) return {};
    const auto within = static_cast<std::size_t>(offset % pageSize);
    const std::size_t end = std::min(within + size, pages_[slot].size);
    if (end <= within) return {};
    return std::span(bytes_).subspan(slot * pageRoom + within, end - within);
}

std::span<const std::byte> CarveGround::readPaged(std::int64_t offset, std::size_t size) {
    const auto wanted =
        static_cast<std::size_t>(std::min(static_cast<std::int64_t>(size), total_ - offset));
    const auto bytes = rest(offset, wanted);
    return bytes.size() >= wanted ? bytes : readShort(offset, wanted);
}

/// Where a page can't be read, or not whole, the few bytes may be.
std::span<const std::byte> CarveGround::readShort(std::int64_t offset, std::size_t size) {
    if (isCutOff()) return {};
    return readPiece(image_, offset, std::span(bytes_).last(longestRead).first(size));
}

std::span<const std::byte> CarveGround::read(std::int64_t offset, std::span<std::byte> into) {
    left_ -= jumpPrice + std::ssize(into);
    if (left_ < 0 || askCancelledInTime()) return {};
    return readPiece(image_, offset, into);
}

}  // namespace ReelCore
