#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <string>

namespace ReelCore {

/// What the kernel knows of the medium in a drive. A drive keeps its numbers when one card is taken
/// out and the next put in; this changes then.
struct Medium {
    std::string device;    ///< "major:minor" of the file system, or of the partition it is on.
    std::string size;      ///< In the kernel's sectors; empty for what is no block device.
    std::string sequence;  ///< Counts the media of all drives; empty on kernels before 5.15.

    bool operator==(const Medium&) const = default;

    /// The medium that the device lies on now. `deviceTree` is where the kernel shows its devices.
    static Medium of(const std::string& device, const URL& deviceTree = "/sys");

    /// The same for the device of a FileIdentity.
    static Medium of(std::uint64_t device);
};

/// A card that is held on to while it is looked at, to tell it from whatever may stand in its place
/// later. The medium is noted before the card is opened. While it is held the card can't be
/// unmounted the ordinary way; it may still be pulled out. Movable; any thread.
class HeldCard {
public:
    /// Holds the folder that stands at `path`, whether it can be read or not. Throws SystemError if
    /// there is none.
    explicit HeldCard(const URL& path);

    /// Takes over a descriptor of a card that was held elsewhere.
    HeldCard(int descriptor, Medium medium);

    HeldCard(HeldCard&& other) noexcept;
    HeldCard& operator=(HeldCard&& other) noexcept;
    ~HeldCard();

    /// True if `path` leads to the folder that is held, and the medium is the one that was noted.
    bool isAt(const URL& path) const;

    const Medium& medium() const { return medium_; }

    int descriptor() const { return descriptor_; }

private:
    Medium medium_;
    int descriptor_;
};

}  // namespace ReelCore
