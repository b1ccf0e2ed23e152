#include "SampleOffload.h"

#include <fmt/format.h>

namespace TestSupport {

using namespace ReelCore;
using namespace std::chrono_literals;

Date sampleDate() {
    return std::chrono::sys_days(2026y / 3 / 1) + 14h + 5min + 9s;
}

FileVerification sampleFile(const std::string& relativePath, std::int64_t size,
                            const std::vector<bool>& matches) {
    FileVerification one{{relativePath, size, sampleDate() - 1h}, "0eab543384f878ad", {}};
    for (const bool same : matches) {
        one.destinations.push_back({"/drive", "/drive/file", one.sourceHash, same, {}, {}});
    }
    return one;
}

OffloadResult sampleOffload(std::vector<FileVerification> files) {
    const OffloadRequest request{
        "/media/CARD", {"/mnt/RAID", "/mnt/SHUTTLE"}, HashAlgorithm::xxhash64, "A001"};
    return {request, CameraFormat::sony, std::move(files), sampleDate(), sampleDate() + 1min, {},
            {}};
}

Report reportWithRows(int count) {
    Report report{"Offload Report", "A001",       {{"Camera", "Sony"}, {"Copies", "2"}},
                  Report::Table{},  sampleDate(), "keldobay 0.1.0"};
    report.table->columns = {"File", "Size", "xxhash64", "Status"};
    for (int i = 0; i < count; ++i) {
        report.table->rows.push_back(
            {fmt::format("CLIP/C{:05}.MXF", i), "1.50 GB", "0eab543384f878ad", "VERIFIED"});
    }
    return report;
}

}  // namespace TestSupport
