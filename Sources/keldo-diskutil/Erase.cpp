#include "keldo-diskutil/Erase.h"

#include "ReelCore/Platform/CardHandover.h"
#include "ReelCore/Platform/FileSystem.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Platform/Text.h"
#include "keldo-diskutil/Label.h"
#include "keldo-diskutil/UDisks.h"
#include "keldo-diskutil/Volume.h"

#include <array>
#include <fstream>
#include <string_view>

#include <fmt/format.h>

namespace keldo_diskutil {

namespace {

using ReelCore::HeldCard;
using ReelCore::Medium;
using ReelCore::URL;

struct Target {
    std::string_view name;     ///< As the caller names it.
    std::string_view type;     ///< As the kernel and UDisks name it.
    std::string_view package;  ///< What brings the program that makes it.
    TargetFileSystem fileSystem;
};

constexpr std::array targets{
    Target{"ExFAT", "exfat", "exfatprogs", TargetFileSystem::exFAT},
    Target{"MS-DOS FAT32", "vfat", "dosfstools", TargetFileSystem::fat32},
};

struct Order {
    Target target;
    std::string newName;
    URL path;
};

Order parse(const std::vector<std::string>& arguments) {
    if (arguments.size() != 4 || arguments[0] != "eraseVolume") {
        throw Refusal(
            "the arguments are: eraseVolume <ExFAT | \"MS-DOS FAT32\"> <new name> <mount point>.");
    }
    for (const Target& target : targets) {
        if (target.name == arguments[1]) return {target, arguments[2], arguments[3]};
    }
    throw Refusal(fmt::format(
        "this computer cannot make the file system {}; it can make ExFAT and MS-DOS FAT32.",
        ReelCore::Text::wellFormed(arguments[1])));
}

/// The volume as the disk service knows it, and the card that it is on.
struct ServedVolume {
    const UDisks& disks;
    std::string object;
    URL node;
    URL mountPoint;
    std::string uuid;
    Medium medium;
};

/// The card that was looked at before this program was started. Where nobody has handed one over
/// it is the one that stands there now.
HeldCard hold(const URL& path) {
    try {
        if (auto handed = ReelCore::CardHandover::received()) return *std::move(handed);
        return HeldCard(path);
    } catch (const ReelCore::SystemError& error) {
        throw Refusal(fmt::format("{}: {}.", path.native(), error.sentence()));
    }
}

[[noreturn]] void refuseChangedCard() {
    throw Refusal(
        "the card was taken out or changed before its erase began. What is in the reader now was "
        "left alone.");
}

void refuseUnlessAt(const URL& mountPoint, const HeldCard& card) {
    if (!card.isAt(mountPoint)) refuseChangedCard();
}

UDisks connect() {
    try {
        return UDisks();
    } catch (const UDisksError& error) {
        throw Refusal(
            fmt::format("the disk service UDisks2 can't be reached ({}).", error.description()));
    }
}

void refuseUnknownFileSystem(const Volume& volume, const UDisks& disks, const std::string& object) {
    if (volume.fileSystem) return;
    const std::string type = disks.fileSystemType(object);
    if (!isOfACard(type)) throw unknownFileSystem(volume.mountPoint, type);
}

ServedVolume prepare(const UDisks& disks, const Volume& volume, const Target& target,
                     const Medium& medium) {
    try {
        if (const auto tool = disks.missingTool(std::string(target.type))) {
            throw Refusal(fmt::format("{} is missing, which makes {}. Install the package {}.",
                                      *tool, target.name, target.package));
        }
        const std::string object = disks.blockObject(volume.node, volume.device);
        refuseUnknownFileSystem(volume, disks, object);
        return {disks, object, volume.node, volume.mountPoint, disks.uuid(object), medium};
    } catch (const UDisksError& error) {
        throw Refusal(fmt::format("UDisks2 can't erase {}: {}.", volume.mountPoint.native(),
                                  error.description()));
    }
}

void unmount(const ServedVolume& volume) {
    try {
        volume.disks.unmount(volume.object);
    } catch (const UDisksError& error) {
        const std::string place = volume.mountPoint.native();
        if (error.isBusy()) {
            throw Refusal(fmt::format(
                "a program still uses {}. Close what is open there and try again.", place));
        }
        throw Refusal(fmt::format("{} can't be unmounted: {}.", place, error.description()));
    }
}

bool isMediumStillThere(const ServedVolume& volume) {
    return Medium::of(volume.medium.device) == volume.medium;
}

/// An erase that failed may have taken the card's UUID away, but gives no other.
bool isCardStillThere(const ServedVolume& volume, bool mayHaveLostItsUUID) {
    try {
        const std::string uuid = volume.disks.uuid(volume.object);
        const bool same = uuid == volume.uuid || (mayHaveLostItsUUID && uuid.empty());
        return same && isMediumStillThere(volume);
    } catch (const UDisksError&) {
        return false;
    }
}

/// Returns where it is mounted. The desktop may have been first, before the service knew.
URL mountAgain(const ServedVolume& volume) {
    try {
        return volume.disks.mount(volume.object);
    } catch (const UDisksError& error) {
        if (!error.isFailure()) throw;
        for (const ReelCore::Mount& mount : ReelCore::mountTable()) {
            if (mount.source == volume.node) return mount.mountPoint;
        }
        throw;
    }
}

std::string mountedAgain(const ServedVolume& volume) {
    if (!isMediumStillThere(volume)) return "is no longer in its reader";
    try {
        return "is mounted at " + mountAgain(volume).native();
    } catch (const UDisksError&) {
        return "can't be mounted again";
    }
}

[[noreturn]] void fail(const ServedVolume& volume, const std::string& reason) {
    throw ReelCore::Error(
        fmt::format("The erase failed. The state of the volume is unknown; it {}. ({})",
                    mountedAgain(volume), reason));
}

/// Returns the label that the volume got. A disk service that runs without a UTF-8 locale can't
/// write a label beyond ASCII and fails: the second try needs none.
std::string format(const ServedVolume& volume, const Order& order) {
    const std::string type(order.target.type);
    std::string label = labelFor(order.newName, order.target.fileSystem);
    std::string plain = plainLabel(label);
    if (!isCardStillThere(volume, false)) refuseChangedCard();
    try {
        volume.disks.format(volume.object, type, label);
        return label;
    } catch (const UDisksError& error) {
        if (error.isNotAllowed()) {
            throw Refusal(fmt::format("erasing {} is not allowed ({}); it {}.",
                                      volume.mountPoint.native(), error.description(),
                                      mountedAgain(volume)));
        }
        if (!error.isFailure() || label == plain || !isCardStillThere(volume, true)) {
            fail(volume, error.description());
        }
    }
    try {
        volume.disks.format(volume.object, type, plain);
        return plain;
    } catch (const UDisksError& error) {
        fail(volume, error.description());
    }
}

bool canMount(std::string_view type) {
    std::ifstream list("/proc/filesystems");
    for (std::string word; list >> word;) {
        if (word == type) return true;
    }
    return ReelCore::FileSystem::exists(fmt::format("/sbin/mount.{}", type));
}

void mount(const ServedVolume& volume, const Target& target, std::ostream& lines) {
    try {
        const URL place = mountAgain(volume);
        lines << "It is mounted at " << place.native() << ".\n";
    } catch (const UDisksError& error) {
        if (!error.isFailure() || canMount(target.type)) {
            throw ReelCore::Error(
                fmt::format("The volume is erased, but it can't be mounted again: {}. Check it "
                            "before you use it.",
                            error.description()));
        }
        lines << "The card is erased. This computer can't mount " << target.name
              << ", so it stays unmounted.\n";
    }
}

/// Says so where the card is too small for FAT32, if the service can tell.
void tellVersion(const ServedVolume& volume, std::ostream& lines) {
    try {
        const std::string version = volume.disks.fileSystemVersion(volume.object);
        if (version != "FAT32")
            lines << "It is too small for FAT32 and became " << version << ".\n";
    } catch (const UDisksError&) {
    }
}

}  // namespace

void erase(const std::vector<std::string>& arguments, std::ostream& lines) {
    const Order order = parse(arguments);
    std::optional<HeldCard> card = hold(order.path);
    const Volume chosen = volumeToErase(order.path, Machine::current());
    refuseUnlessAt(chosen.mountPoint, *card);
    const UDisks disks = connect();
    const ServedVolume volume = prepare(disks, chosen, order.target, card->medium());
    refuseUnlessAt(chosen.mountPoint, *card);
    card.reset();
    unmount(volume);
    const std::string label = format(volume, order);
    lines << fmt::format("{} is erased as {}, named \"{}\".\n", chosen.node.native(),
                         order.target.name, label);
    if (label != order.newName) {
        lines << fmt::format("The name \"{}\" does not fit {}: it became \"{}\".\n",
                             ReelCore::Text::wellFormed(order.newName), order.target.name, label);
    }
    if (order.target.fileSystem == TargetFileSystem::fat32) tellVersion(volume, lines);
    mount(volume, order.target, lines);
}

}  // namespace keldo_diskutil
