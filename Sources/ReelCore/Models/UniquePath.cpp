#include "ReelCore/Models/UniquePath.h"

#include "ReelCore/Platform/ProcessCleanup.h"
#include "ReelCore/Platform/SystemError.h"

#include <string>
#include <system_error>

namespace ReelCore {

namespace {

/// 1 is the name itself.
URL numbered(const URL& url, int number) {
    if (number == 1) return url;
    const std::string name = url.stem().native() + " " + std::to_string(number);
    return url.parent_path() / (name + url.extension().native());
}

bool isFree(const URL& url) {
    std::error_code failure;
    const auto status = std::filesystem::symlink_status(url, failure);
    if (status.type() == std::filesystem::file_type::not_found) return true;
    if (failure) throw SystemError(failure.value(), url);
    return false;
}

}  // namespace

URL uniqueOutputURL(const URL& url) {
    int number = 1;
    while (!isFree(numbered(url, number))) ++number;
    return numbered(url, number);
}

ReservedOutput::ReservedOutput(const URL& wanted) {
    for (int number = 1; !file_; ++number) {
        url_ = numbered(wanted, number);
        file_ = File::createExclusively(url_);
    }
    identity_ = FileSystem::identity(url_);
    if (!identity_) return;
    try {
        ProcessCleanup::shared().addReservation(url_, *identity_);
    } catch (...) {
        FileSystem::removeIfEmpty(url_, *identity_);
        throw;
    }
}

ReservedOutput::~ReservedOutput() {
    if (!identity_) return;
    FileSystem::removeIfEmpty(url_, *identity_);
    ProcessCleanup::shared().removeReservation(url_);
}

}  // namespace ReelCore
