#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace ReelCore {

/// What is wrong with a clip, by its structure alone. Byte counts.
struct ClipDiagnosis {
    struct MissingIndex {
        std::int64_t mdatBytes = 0;
        bool operator==(const MissingIndex&) const = default;
    };
    struct Truncated {
        std::int64_t declared = 0;
        std::int64_t actual = 0;
        bool operator==(const Truncated&) const = default;
    };
    struct StaleWAVSizes {
        std::int64_t declaredData = 0;
        std::int64_t actualData = 0;
        bool operator==(const StaleWAVSizes&) const = default;
    };
    struct Unreadable {
        std::string reason;
        bool operator==(const Unreadable&) const = default;
    };
    struct Healthy {
        bool operator==(const Healthy&) const = default;
    };
    using Any = std::variant<MissingIndex, Truncated, StaleWAVSizes, Unreadable, Healthy>;

    Any value;

    bool operator==(const ClipDiagnosis&) const = default;

    /// For people.
    std::string label() const;

    bool isHealthy() const { return is<Healthy>(); }

    /// True for all but healthy and unreadable clips.
    bool isRepairable() const { return !is<Healthy>() && !is<Unreadable>(); }

    template <class Case>
    bool is() const {
        return std::holds_alternative<Case>(value);
    }
};

}  // namespace ReelCore
