#pragma once

#include "ReelCore/Platform/Date.h"

#include <optional>
#include <string>
#include <vector>

namespace ReelCore {

struct OffloadResult;

/// The neutral document that every job ends in: a title, a few labelled facts, maybe a table.
/// ReportRenderer puts it on paper. All texts are UTF-8; what is not shows as U+FFFD there.
struct Report {
    struct Field {
        std::string label;
        std::string value;

        bool operator==(const Field&) const = default;
    };

    struct Table {
        std::vector<std::string> columns;
        std::vector<std::vector<std::string>> rows;  ///< Shorter or longer than `columns` at will.

        bool operator==(const Table&) const = default;
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
};

}  // namespace ReelCore
