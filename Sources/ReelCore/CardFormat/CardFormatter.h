#pragma once

#include "ReelCore/Models/Enumeration.h"
#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/HeldCard.h"
#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace ReelCore {

struct OffloadResult;

struct FormatErrorCases {
    struct NotEligible {
        std::string reason;
        std::string description() const;
    };
    struct DiskutilFailed {
        std::int32_t status = 0;
        std::string output;
        std::string description() const;
    };
    struct NotConfirmed {
        std::string description() const;
    };
    using Any = std::variant<NotEligible, DiskutilFailed, NotConfirmed>;
};

/// Erases a card, in three steps that can't be confused: a gate that says from the proof whether
/// that is allowed, a plan that a person can read, and an execution behind both.
struct CardFormatter {
    /// The raw value is the name that the erase tool knows.
    enum class FileSystem { exFAT, fat32, apfs, hfs };

    /// The verdict.
    struct FormatGate {
        bool eligible = false;
        std::string reason;               ///< A sentence for the user, in both cases.
        std::int64_t verifiedCopies = 0;  ///< Whole copies proved; 0 if any file failed.

        bool operator==(const FormatGate&) const = default;
    };

    /// What is to be done.
    struct FormatPlan {
        URL volume;           ///< The mounted volume to erase.
        std::string newName;  ///< Its name after erasing.
        FileSystem fileSystem = FileSystem::exFAT;

        bool operator==(const FormatPlan&) const = default;

        /// The plan as a shell would take it, to be shown to a person. It is never executed.
        std::string command() const;
    };

    using FormatError = CaseError<FormatErrorCases>;

    /// Whether the card of `result` may be erased: only if every file is verified on every
    /// destination, and there are at least `minimumCopies` of these.
    static FormatGate gate(const OffloadResult& result, std::int64_t minimumCopies);

    static FormatPlan plan(const URL& volume, const std::string& newName, FileSystem fileSystem);

    /// Erases the plan's volume with the system's erase tool and returns what the tool said; with
    /// `dryRun` returns the plan's command and starts nothing. The gate is the one handed in, and
    /// that the volume is the card that was proved is the caller's duty: who has looked at the card
    /// hands over what was held over the look as `card`, and no other is erased then. A system's
    /// own tool does not know of that.
    ///
    /// Throws FormatError::NotEligible, then NotConfirmed, both before anything has happened;
    /// SystemError if the tool can't be started; FormatError::DiskutilFailed if it fails, after
    /// which the volume is as the tool left it. Blocks until the tool has ended, without a limit.
    static std::string execute(const FormatPlan& plan, const FormatGate& gate, bool confirm,
                               bool dryRun, std::optional<HeldCard> card = std::nullopt);
};

std::string_view rawValue(CardFormatter::FileSystem fileSystem);

template <>
std::span<const CardFormatter::FileSystem> allCases<CardFormatter::FileSystem>();

}  // namespace ReelCore
