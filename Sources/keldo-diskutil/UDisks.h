#pragma once

#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/URL.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

typedef struct _GDBusConnection GDBusConnection;
typedef struct _GVariant GVariant;

namespace keldo_diskutil {

/// What UDisks2 or the bus answered instead of doing it, on one line.
class UDisksError : public ReelCore::Error {
public:
    /// `name` is the error's name on the bus; empty where the bus was not asked.
    UDisksError(const std::string& sentence, std::string name)
        : Error(sentence), name_(std::move(name)) {}

    /// True if the volume could not be let go of because it is in use.
    bool isBusy() const noexcept;

    /// True if the user may not do it or would not give a password. Nothing was done then.
    bool isNotAllowed() const noexcept;

    bool isAlreadyMounted() const noexcept;

    /// True if the service tried and failed, as when a program that it started gives up.
    bool isFailure() const noexcept;

private:
    std::string name_;
};

/// The system's disk service, UDisks2, over the system bus. Every call waits for the answer
/// without a limit, lets the system ask the user for leave, and throws UDisksError, also for an
/// answer of another form than it should have.
class UDisks {
public:
    /// Connects, and makes sure that the service answers.
    UDisks();

    /// The program that is missing to make a file system of this type; absent if none is.
    std::optional<std::string> missingTool(const std::string& type) const;

    /// The service's object for the block device with this node and these numbers, "major:minor".
    std::string blockObject(const ReelCore::URL& node, const std::string& device) const;

    void unmount(const std::string& object) const;

    /// Makes an empty file system, without a label if that is empty. A failure may come after the
    /// old content is gone.
    void format(const std::string& object, const std::string& type, const std::string& label) const;

    /// Mounts where the service finds best, and returns the place; where somebody has mounted it
    /// already, that place.
    ReelCore::URL mount(const std::string& object) const;

    /// The file system on the device as the service sees it, such as "exfat"; may be empty.
    std::string fileSystemType(const std::string& object) const;

    /// The version of the file system on the device as the service sees it, such as "FAT32".
    std::string fileSystemVersion(const std::string& object) const;

    /// The UUID of what is on the device, as the service saw it last; may be empty.
    std::string uuid(const std::string& object) const;

private:
    using Variant = std::unique_ptr<GVariant, void (*)(GVariant*)>;

    Variant call(const std::string& object, const std::string& interface, const char* method,
                 GVariant* parameters, const char* answerType) const;
    Variant property(const std::string& object, const std::string& interface, const char* name,
                     const char* type) const;
    ReelCore::URL firstMountPoint(const std::string& object) const;

    std::unique_ptr<GDBusConnection, void (*)(void*)> bus_;
};

}  // namespace keldo_diskutil
