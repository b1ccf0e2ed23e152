#include "ReelCore/Offload/OffloadTypes.h"

#include "ReelCore/Platform/Fatal.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace ReelCore {

bool FileVerification::verified() const {
    return !destinations.empty() && std::ranges::all_of(destinations, &DestinationResult::matches);
}

std::vector<FileVerification> OffloadResult::failures() const {
    std::vector<FileVerification> failed;
    std::ranges::copy_if(files, std::back_inserter(failed),
                         std::not_fn(&FileVerification::verified));
    return failed;
}

bool OffloadResult::allVerified() const {
    return !files.empty() && std::ranges::all_of(files, &FileVerification::verified);
}

std::int64_t OffloadResult::totalBytes() const {
    std::int64_t total = 0;
    for (const FileVerification& one : files) total = checkedAdd(total, one.file.size);
    return total;
}

double OffloadProgress::fractionComplete() const {
    if (totalBytes < 1) return 0.0;
    return static_cast<double>(bytesCompleted) / static_cast<double>(totalBytes);
}

std::string_view rawValue(OffloadProgress::Phase phase) {
    using Phase = OffloadProgress::Phase;
    switch (phase) {
        case Phase::scanning:
            return "scanning";
        case Phase::copying:
            return "copying";
        case Phase::verifying:
            return "verifying";
        case Phase::writingReport:
            return "writingReport";
        case Phase::done:
            return "done";
    }
    fatal("no such phase");
}

template <>
std::span<const OffloadProgress::Phase> allCases<OffloadProgress::Phase>() {
    using Phase = OffloadProgress::Phase;
    static constexpr std::array cases{Phase::scanning, Phase::copying, Phase::verifying,
                                      Phase::writingReport, Phase::done};
    return cases;
}

}  // namespace ReelCore
