#include "Support/FaultyFileSystem.h"

#include "Support/Tool.h"

#include <filesystem>
#include <vector>

#include <unistd.h>

namespace TestSupport {

namespace {

using Arguments = std::vector<std::string>;

void add(Arguments& arguments, const std::string& key, const std::string& value) {
    if (!value.empty()) arguments.push_back(key + "=" + value);
}

void add(Arguments& arguments, const std::string& key, std::optional<std::int64_t> value) {
    if (value) arguments.push_back(key + "=" + std::to_string(*value));
}

void add(Arguments& arguments, const std::string& key, bool value) {
    if (value) arguments.push_back(key + "=1");
}

}  // namespace

FaultyFileSystem::FaultyFileSystem(const ReelCore::URL& backing, const ReelCore::URL& mountPoint,
                                   const Faults& faults)
    : mountPoint_(mountPoint) {
    std::filesystem::create_directories(backing);
    std::filesystem::create_directories(mountPoint);
    Arguments arguments{backing.native(), mountPoint.native()};
    add(arguments, "only-file", faults.onlyFile);
    add(arguments, "write-error", std::optional<std::int64_t>(faults.writeError));
    add(arguments, "fail-write-at", faults.failWriteAt);
    add(arguments, "fail-write-after", faults.failWriteAfter);
    add(arguments, "read-error", std::optional<std::int64_t>(faults.readError));
    add(arguments, "fail-read-at", faults.failReadAt);
    add(arguments, "fail-open-for-reading", faults.failOpenForReading);
    add(arguments, "flip-bit-at", faults.flipBitAt);
    add(arguments, "vanish-after-writing", faults.vanishAfterWriting);
    add(arguments, "vanish-after-reading", faults.vanishAfterReading);
    add(arguments, "delay", std::optional<std::int64_t>(faults.delay));
    add(arguments, "refuse-direct-reads", faults.refuseDirectReads);
    add(arguments, "keep-cache", faults.keepCache);
    add(arguments, "hide-types", faults.hideTypes);
    add(arguments, "ignore-case", faults.ignoreCase);
    add(arguments, "fail-attributes-of", faults.failAttributesOf);
    add(arguments, "fail-listing-of", faults.failListingOf);
    add(arguments, "break-listing-of", faults.breakListingOf);
    add(arguments, "listing-error", std::optional<std::int64_t>(faults.listingError));
    add(arguments, "listed-before-that", faults.listedBeforeThat);
    add(arguments, "vanish-at-listing-of", faults.vanishAtListingOf);
    add(arguments, "fail-flush", faults.failFlush);
    add(arguments, "folder-flush-error", std::optional<std::int64_t>(faults.folderFlushError));
    add(arguments, "fail-dates", faults.failDates);
    add(arguments, "write-late", faults.writeLate);
    outputOf(KELDO_FAULTYFS, arguments);
}

FaultyFileSystem::~FaultyFileSystem() {
    runTool("fusermount3", {"-u", "-z", mountPoint_.native()});
}

bool FaultyFileSystem::isAvailable() {
    return ::access("/dev/fuse", R_OK | W_OK) == 0 && hasTool("fusermount3");
}

}  // namespace TestSupport
