#include "ReelCore/Offload/OffloadTypes.h"

#include "ReelCore/Offload/OffloadError.h"

#include <limits>

#include <gtest/gtest.h>

using namespace ReelCore;

namespace {

using Phase = OffloadProgress::Phase;

DestinationResult copyOn(const char* drive, bool matches) {
    return {drive, URL(drive) / "A001/clip", "00", matches, std::nullopt};
}

FileVerification fileWith(const std::string& path, std::vector<DestinationResult> copies) {
    return {{path, 10, std::nullopt}, "00", std::move(copies)};
}

OffloadResult resultOf(std::vector<FileVerification> files) {
    OffloadResult result;
    result.files = std::move(files);
    return result;
}

}  // namespace

TEST(FileVerification, Verified_OnlyIfEveryDriveMatchesAndThereIsOne) {
    EXPECT_TRUE(fileWith("a", {copyOn("/1", true), copyOn("/2", true)}).verified());
    EXPECT_FALSE(fileWith("a", {copyOn("/1", true), copyOn("/2", false)}).verified());
    EXPECT_FALSE(fileWith("a", {}).verified());
}

TEST(OffloadResult, AllVerified_EmptyCard_ProvesNothing) {
    EXPECT_FALSE(resultOf({}).allVerified());
    EXPECT_TRUE(resultOf({}).failures().empty());
    EXPECT_EQ(resultOf({}).totalBytes(), 0);
}

TEST(OffloadResult, AllVerified_OneMismatchOfThree_IsFalseAndTellsWhich) {
    const auto good = fileWith("a", {copyOn("/1", true)});
    const auto bad = fileWith("b", {copyOn("/1", false)});
    const auto worse = fileWith("c", {copyOn("/1", false)});

    EXPECT_TRUE(resultOf({good}).allVerified());
    EXPECT_FALSE(resultOf({good, bad, worse}).allVerified());
    EXPECT_EQ(resultOf({good, bad, worse}).failures(), (std::vector{bad, worse}));
}

TEST(OffloadResult, TotalBytes_SumsTheFiles) {
    const auto file = fileWith("a", {});
    EXPECT_EQ(resultOf({file, file, file}).totalBytes(), 30);
}

TEST(OffloadResultDeathTest, TotalBytes_Overflow_IsAFatalFault) {
    auto file = fileWith("a", {});
    file.file.size = std::numeric_limits<std::int64_t>::max();

    EXPECT_EQ(resultOf({file}).totalBytes(), std::numeric_limits<std::int64_t>::max());
    EXPECT_DEATH(static_cast<void>(resultOf({file, file}).totalBytes()), "arithmetic overflow");
}

TEST(OffloadProgress, FractionComplete_IsTheShareOfBytes) {
    OffloadProgress progress;
    EXPECT_EQ(progress.fractionComplete(), 0.0);

    progress.totalBytes = 8;
    progress.bytesCompleted = 2;
    EXPECT_EQ(progress.fractionComplete(), 0.25);

    progress.bytesCompleted = 8;
    EXPECT_EQ(progress.fractionComplete(), 1.0);
}

TEST(OffloadProgress, FractionComplete_NoBytesInTotal_IsZero) {
    OffloadProgress progress;
    progress.bytesCompleted = 5;
    EXPECT_EQ(progress.fractionComplete(), 0.0);

    progress.totalBytes = -1;
    EXPECT_EQ(progress.fractionComplete(), 0.0);
}

TEST(OffloadProgressPhase, RawValues_InTheirOrder) {
    std::vector<std::string_view> values;
    for (const Phase phase : allCases<Phase>()) values.push_back(rawValue(phase));

    EXPECT_EQ(values, (std::vector<std::string_view>{"scanning", "copying", "verifying",
                                                     "writingReport", "done"}));
    EXPECT_EQ(fromRawValue<Phase>("verifying"), Phase::verifying);
    EXPECT_EQ(fromRawValue<Phase>("Verifying"), std::nullopt);
}

TEST(OffloadErrorTexts, EveryCase_SaysItWordForWord) {
    const auto textOf = [](const OffloadError& error) { return error.description(); };

    EXPECT_EQ(textOf(OffloadError(OffloadError::SourceNotFound{"/media/CARD"})),
              "Source not found or not a directory: /media/CARD");
    EXPECT_EQ(textOf(OffloadError(OffloadError::DestinationNotWritable{"/media/D1", "why"})),
              "Destination is not writable: /media/D1");
    EXPECT_EQ(textOf(OffloadError(OffloadError::ReadFailed{"A.MOV", "read error"})),
              "Failed reading A.MOV: read error");
    EXPECT_EQ(textOf(OffloadError(OffloadError::WriteFailed{"/media/D1/A.MOV", "no room"})),
              "Failed writing to /media/D1/A.MOV: no room");
    EXPECT_EQ(textOf(OffloadError(OffloadError::NoDestinations{})),
              "At least one destination is required.");
    EXPECT_EQ(textOf(OffloadError(OffloadError::Cancelled{})), "Offload cancelled.");
}

TEST(OffloadErrorTexts, Case_CanBeAskedFor) {
    const OffloadError error(OffloadError::ReadFailed{"A.MOV", "read error"});

    EXPECT_TRUE(error.is<OffloadError::ReadFailed>());
    EXPECT_FALSE(error.is<OffloadError::Cancelled>());
    EXPECT_EQ(error.get<OffloadError::ReadFailed>()->fileName, "A.MOV");
    EXPECT_EQ(error.get<OffloadError::WriteFailed>(), nullptr);
    EXPECT_STREQ(error.what(), "Failed reading A.MOV: read error");
}
