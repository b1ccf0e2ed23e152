#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace ReelCore {

/// A checksum over a stream of bytes that come in chunks of any size. The result depends on the
/// bytes alone, never on where the chunks were cut. Used by one thread, for one file.
class StreamingHasher {
public:
    virtual ~StreamingHasher() = default;

    /// Adds bytes to the stream. An empty view changes nothing. Allocates nothing.
    virtual void update(std::span<const std::byte> bytes) = 0;

    /// The checksum of all bytes so far as lowercase hexadecimal text. Leaves the state as it is,
    /// so that it may be asked twice and the stream may go on.
    virtual std::string finalizeHex() const = 0;
};

}  // namespace ReelCore
