#pragma once

#include "ReelCore/Planning/StorageCalculator.h"
#include "ReelCore/Platform/Date.h"
#include "ReelCore/Platform/URL.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ReelCore {

struct OffloadResult;
struct SyncResult;
struct TranscodePreset;

/// The neutral document that every job ends in: a title, a few labelled facts, maybe a table.
/// ReportRenderer puts it on paper. All texts are UTF-8; what is not shows as U+FFFD there.
struct Report {
    struct Field {
        std::string label;
        std::string value;

        /// Where `value` is several names, joined by ", ": each of them, so that on paper none
        /// draws its neighbours into its own writing direction.
        std::vector<std::string> names = {};

        bool operator==(const Field&) const = default;
    };

    struct Table {
        std::vector<std::string> columns;
        std::vector<std::vector<std::string>> rows;  ///< Shorter or longer than `columns` at will.

        bool operator==(const Table&) const = default;
    };

    /// A clip that could not be rendered.
    struct Failure {
        std::string name;
        std::string message;

        bool operator==(const Failure&) const = default;
    };

    /// The camera cards of a storage plan.
    struct PlannedCards {
        std::string familyName;
        std::int64_t capacityGB = 0;
        StorageCalculator::CardPlan plan;
        std::optional<std::int64_t> overrideCount;  ///< Cards to buy, where the user knows better.

        bool operator==(const PlannedCards&) const = default;
    };

    std::string title;                    ///< The kind of document.
    std::optional<std::string> subtitle;  ///< What it is about, such as the reel.
    std::vector<Field> summary;           ///< The facts, in order.
    std::optional<Table> table;           ///< The detail.
    Date generatedAt;
    std::string tool;  ///< Name and version of the tool.

    bool operator==(const Report&) const = default;

    /// The name of the report's files without an extension.
    std::string fileBase() const;

    /// The report on an offload, made now. Without an operator's name it is the full name of the
    /// logged-in user.
    static Report offload(const OffloadResult& result, const std::optional<std::string>& project,
                          const std::optional<std::string>& operatorName);

    /// The report on a batch of renders, made now: `lut` is the LUT's name, `scaleLongEdge` is in
    /// pixels. Without an operator's name it is the full name of the logged-in user.
    static Report transcode(const TranscodePreset& preset, const std::optional<std::string>& lut,
                            std::optional<std::int64_t> scaleLongEdge, std::span<const URL> outputs,
                            std::span<const Failure> failures,
                            const std::optional<std::string>& operatorName);

    /// The report on what a shoot will need, made now. `estimate` is that of `plan`.
    static Report storagePlan(const std::optional<std::string>& production,
                              const StorageCalculator::Plan& plan,
                              const StorageCalculator::Estimate& estimate,
                              const std::optional<PlannedCards>& card);

    /// The report on a day's sync, made now.
    static Report sync(const SyncResult& result, const std::optional<std::string>& day);
};

}  // namespace ReelCore
