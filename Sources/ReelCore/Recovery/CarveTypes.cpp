#include "ReelCore/Recovery/CarveTypes.h"

#include <array>

#include <fmt/format.h>

namespace ReelCore {

namespace {

double mebibytes(std::int64_t bytes) {
    return static_cast<double>(bytes) / 1'048'576.0;
}

}  // namespace

std::string_view rawValue(FindingKind kind) {
    switch (kind) {
        case FindingKind::movie:
            return "QuickTime/MP4";
        case FindingKind::mxf:
            return "MXF (Sony XAVC etc.)";
        case FindingKind::orphanProRes:
            return "headerless ProRes run";
        case FindingKind::wave:
            return "RIFF/WAVE audio";
    }
    return {};
}

template <>
std::span<const FindingKind> allCases<FindingKind>() {
    static constexpr std::array cases{FindingKind::movie, FindingKind::mxf,
                                      FindingKind::orphanProRes, FindingKind::wave};
    return cases;
}

std::string_view outputExtension(FindingKind kind) {
    switch (kind) {
        case FindingKind::mxf:
            return "mxf";
        case FindingKind::wave:
            return "wav";
        case FindingKind::movie:
        case FindingKind::orphanProRes:
            return "mov";
    }
    return {};
}

std::string Finding::label() const {
    return fmt::format("{} @ {:.1f} MB into image ({:.1f} MB){}", rawValue(kind), mebibytes(offset),
                       mebibytes(length), complete ? "" : " — incomplete");
}

double CarveProgress::fraction() const {
    if (totalBytes < 1) return 0.0;
    return static_cast<double>(bytesScanned) / static_cast<double>(totalBytes);
}

}  // namespace ReelCore
