#include "ReelCore/CardFormat/CardFormatter.h"

#include "ReelCore/Offload/OffloadTypes.h"
#include "ReelCore/Platform/EraseTool.h"
#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

#include <fmt/format.h>

namespace ReelCore {

namespace {

std::string quoted(const std::string& value) {
    std::string text = "'";
    for (const char c : value) text += c == '\'' ? "'\\''" : std::string(1, c);
    return text + "'";
}

}  // namespace

std::string FormatErrorCases::NotEligible::description() const {
    return "Refusing to format: " + reason;
}

std::string FormatErrorCases::DiskutilFailed::description() const {
    return fmt::format("diskutil failed ({}): {}", status, output);
}

std::string FormatErrorCases::NotConfirmed::description() const {
    return "Format requires explicit confirmation.";
}

std::string_view rawValue(CardFormatter::FileSystem fileSystem) {
    using enum CardFormatter::FileSystem;
    switch (fileSystem) {
        case exFAT:
            return "ExFAT";
        case fat32:
            return "MS-DOS FAT32";
        case apfs:
            return "APFS";
        case hfs:
            return "JHFS+";
    }
    fatal("no such file system");
}

template <>
std::span<const CardFormatter::FileSystem> allCases<CardFormatter::FileSystem>() {
    using enum CardFormatter::FileSystem;
    static constexpr std::array cases{exFAT, fat32, apfs, hfs};
    return cases;
}

std::string CardFormatter::FormatPlan::command() const {
    return fmt::format("diskutil eraseVolume {} {} {}", rawValue(fileSystem), quoted(newName),
                       quoted(volume.native()));
}

CardFormatter::FormatGate CardFormatter::gate(const OffloadResult& result,
                                              std::int64_t minimumCopies) {
    if (!result.allVerified()) {
        const auto failed =
            std::ranges::count_if(result.files, std::not_fn(&FileVerification::verified));
        return {false, fmt::format("{} file(s) failed verification — DO NOT format.", failed), 0};
    }
    const auto copies = static_cast<std::int64_t>(result.request.destinations.size());
    if (copies < minimumCopies) {
        return {false,
                fmt::format("Only {} copy — need at least {} verified copies before formatting.",
                            copies, minimumCopies),
                copies};
    }
    return {true, fmt::format("All {} files verified on {} drives.", result.files.size(), copies),
            copies};
}

CardFormatter::FormatPlan CardFormatter::plan(const URL& volume, const std::string& newName,
                                              FileSystem fileSystem) {
    return {volume, newName, fileSystem};
}

std::string CardFormatter::execute(const FormatPlan& plan, const FormatGate& gate, bool confirm,
                                   bool dryRun, std::optional<HeldCard> card) {
    if (!gate.eligible) throw FormatError(FormatError::NotEligible{gate.reason});
    if (!confirm) throw FormatError(FormatError::NotConfirmed{});
    if (dryRun) return plan.command();
    const auto outcome = runEraseTool(
        {"eraseVolume", std::string(rawValue(plan.fileSystem)), plan.newName, plan.volume.native()},
        std::move(card));
    const std::string output = Text::isWellFormed(outcome.output) ? outcome.output : "";
    if (outcome.status != 0) {
        throw FormatError(FormatError::DiskutilFailed{outcome.status, output});
    }
    return output;
}

}  // namespace ReelCore
