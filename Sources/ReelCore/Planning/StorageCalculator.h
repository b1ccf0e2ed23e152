#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ReelCore {

/// How much a shoot will record, and how many drives and camera cards that takes. Storage is
/// decimal: 1 TB is 1,000 GB. Everything here is pure and may be called from any thread; a result
/// that no whole number of 64 bits can hold is a fatal fault.
struct StorageCalculator {
    struct Resolution {
        std::string id;
        std::string name;         ///< For people.
        std::int64_t width = 0;   ///< In pixels.
        std::int64_t height = 0;  ///< In pixels.

        bool operator==(const Resolution&) const = default;

        static const Resolution hd;
        static const Resolution uhd;
        static const Resolution dci4k;
        static const Resolution uhd8k;

        /// The four, in the order in which a picker shows them. At any time; the constants are for
        /// the time after the start of `main`.
        static std::span<const Resolution> all();
    };

    /// How a codec's bitrate follows from the settings of a camera. All rates are in Mbps.
    struct RateModel {
        /// The bitrate grows with the pixels of a second.
        struct Scaled {
            double baseMbpsAt1080p24 = 0.0;  ///< Strictly: at 1920×1080 and 23.976 frames a second.

            bool operator==(const Scaled&) const = default;
        };

        /// One bitrate up to 31 frames a second, another above.
        struct Tiered {
            double upTo30 = 0.0;
            double above30 = 0.0;

            bool operator==(const Tiered&) const = default;
        };

        /// The user's own number.
        struct Custom {
            double defaultMbps = 0.0;

            bool operator==(const Custom&) const = default;
        };

        std::variant<Scaled, Tiered, Custom> value;

        bool operator==(const RateModel&) const = default;
    };

    struct Codec {
        std::string id;
        std::string name;  ///< For people.
        RateModel model;
        bool usesResolution = false;  ///< Whether the resolution is worth asking for.
        std::string note;             ///< For people; may be empty.

        bool operator==(const Codec&) const = default;
    };

    /// What a production means to do.
    struct Plan {
        std::string codecID;
        std::string resolutionID;
        double fps = 0.0;                  ///< Frames per second.
        std::optional<double> customMbps;  ///< The bitrate of a custom codec.
        double hoursPerDay = 0.0;          ///< Recorded by each camera.
        std::int64_t cameras = 0;
        std::int64_t days = 0;
        std::int64_t copies = 0;
        std::int64_t audioChannels = 0;  ///< Of the one sound recorder.
        double marginPercent = 0.0;      ///< Kept free on top of what is recorded.

        bool operator==(const Plan&) const = default;
    };

    /// Drives of one size.
    struct DrivePlan {
        std::int64_t count = 0;
        std::int64_t sizeTB = 0;

        bool operator==(const DrivePlan&) const = default;
    };

    /// What a plan makes.
    struct Estimate {
        double videoMbps = 0.0;            ///< Of one camera.
        double gbPerHour = 0.0;            ///< Of one camera, without sound.
        double gbPerDay = 0.0;             ///< All cameras and the sound.
        double shootGB = 0.0;              ///< The whole shoot once, without margin.
        double perCopyWithMarginGB = 0.0;  ///< The whole shoot once.
        double totalAllCopiesGB = 0.0;     ///< With margin.
        DrivePlan drivesPerCopy;

        bool operator==(const Estimate&) const = default;
    };

    /// A family of camera cards.
    struct CardType {
        std::string id;
        std::string name;  ///< For people.
        std::vector<std::int64_t> capacitiesGB;

        bool operator==(const CardType&) const = default;
    };

    /// The camera cards that a shoot takes.
    struct CardPlan {
        double usableGB = 0.0;        ///< What counts on one card.
        double minutesPerCard = 0.0;  ///< Of one camera.
        std::int64_t cardsPerCameraPerDay = 0;
        std::int64_t effectiveHoldDays = 0;  ///< Days that a card stays unerased.
        std::int64_t rotationCards = 0;
        std::int64_t spares = 0;

        bool operator==(const CardPlan&) const = default;

        std::int64_t totalToBuy() const;
    };

    /// The share of a card's capacity that counts.
    static constexpr double cardUsableFactor = 0.95;

    /// The sizes of drives that can be bought, smallest first.
    static std::span<const std::int64_t> driveSizesTB();

    /// The tables, in the order in which pickers show them.
    static std::span<const Codec> codecs();
    static std::span<const CardType> cardTypes();

    /// Absent for an id that is not in the table.
    static std::optional<Codec> codec(std::string_view id);
    static std::optional<CardType> cardType(std::string_view id);
    static std::optional<Resolution> resolution(std::string_view id);

    /// The bitrate of one camera. `customMbps` counts for a custom codec only.
    static double mbps(const Codec& codec, const Resolution& resolution, double fps,
                       std::optional<double> customMbps);

    /// Absent where the codec or the resolution is unknown, also for a codec that does not use its
    /// resolution. Cameras, days and copies count as at least 1.
    static std::optional<Estimate> estimate(const Plan& plan);

    /// The fewest drives of one size that hold so much, and of those the smallest: at least one.
    static DrivePlan drivePlan(double gb);

    /// Absent for a card without capacity or a camera that records nothing. A card is held for
    /// `holdDays`, but at least for 1 and at most for the days of the shoot. Cameras and days count
    /// as at least 1.
    static std::optional<CardPlan> cardPlan(double gbPerHourPerCamera, double hoursPerDay,
                                            std::int64_t cameras, std::int64_t days,
                                            std::int64_t holdDays, std::int64_t cardCapacityGB);
};

}  // namespace ReelCore

template <>
struct std::hash<ReelCore::StorageCalculator::Resolution> {
    std::size_t operator()(const ReelCore::StorageCalculator::Resolution& one) const noexcept {
        return std::hash<std::string>{}(one.id);
    }
};
