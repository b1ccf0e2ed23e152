#include "ReelCore/CardFormat/CardFormatter.h"

#include "ReelCore/Offload/OffloadTypes.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using FileSystem = CardFormatter::FileSystem;
using FormatError = CardFormatter::FormatError;
using FormatGate = CardFormatter::FormatGate;

/// A run of `files` files to `drives` drives on which every copy matches.
OffloadResult provenRun(std::size_t files, std::size_t drives) {
    OffloadResult result;
    for (std::size_t drive = 0; drive < drives; ++drive) {
        result.request.destinations.push_back("/drive" + std::to_string(drive));
    }
    for (std::size_t file = 0; file < files; ++file) {
        FileVerification verification;
        for (const URL& drive : result.request.destinations) {
            verification.destinations.push_back({drive, drive / "A.MOV", "ab", true, {}});
        }
        result.files.push_back(verification);
    }
    return result;
}

TEST(CardFormatterGate, TwoDrivesAllMatching_IsOpen) {
    const FormatGate gate = CardFormatter::gate(provenRun(3, 2), 2);

    EXPECT_EQ(gate, (FormatGate{true, "All 3 files verified on 2 drives.", 2}));
}

TEST(CardFormatterGate, MoreDrivesThanNeeded_IsOpenAndCountsThemAll) {
    const FormatGate gate = CardFormatter::gate(provenRun(1, 3), 2);

    EXPECT_EQ(gate, (FormatGate{true, "All 1 files verified on 3 drives.", 3}));
}

TEST(CardFormatterGate, OneDriveAllMatching_StaysClosedWithOneCopy) {
    const FormatGate gate = CardFormatter::gate(provenRun(3, 1), 2);

    EXPECT_EQ(
        gate,
        (FormatGate{false, "Only 1 copy — need at least 2 verified copies before formatting.", 1}));
}

TEST(CardFormatterGate, ThreeDrivesOfFour_ReadsTheSame) {
    const FormatGate gate = CardFormatter::gate(provenRun(3, 3), 4);

    EXPECT_EQ(
        gate,
        (FormatGate{false, "Only 3 copy — need at least 4 verified copies before formatting.", 3}));
}

TEST(CardFormatterGate, ThreeDrivesOneMismatch_StaysClosedAndCountsFiles) {
    OffloadResult result = provenRun(5, 3);
    result.files[2].destinations[1].matches = false;

    const FormatGate gate = CardFormatter::gate(result, 2);

    EXPECT_EQ(gate, (FormatGate{false, "1 file(s) failed verification — DO NOT format.", 0}));
}

TEST(CardFormatterGate, OneFileMismatchingEverywhere_IsOneFailedFile) {
    OffloadResult result = provenRun(5, 3);
    for (DestinationResult& copy : result.files[0].destinations) copy.matches = false;

    const FormatGate gate = CardFormatter::gate(result, 2);

    EXPECT_EQ(gate, (FormatGate{false, "1 file(s) failed verification — DO NOT format.", 0}));
}

TEST(CardFormatterGate, TwoFailedFiles_AreBothCounted) {
    OffloadResult result = provenRun(5, 2);
    result.files[0].destinations[0].matches = false;
    result.files[4].destinations[1].matches = false;

    EXPECT_EQ(CardFormatter::gate(result, 2).reason,
              "2 file(s) failed verification — DO NOT format.");
}

TEST(CardFormatterGate, ReadBackThatFailed_CountsLikeAMismatch) {
    OffloadResult result = provenRun(2, 2);
    result.files[1].destinations[0] = {"/drive0", "/drive0/A.MOV", {}, false, "Input/output error"};

    const FormatGate gate = CardFormatter::gate(result, 2);

    EXPECT_EQ(gate, (FormatGate{false, "1 file(s) failed verification — DO NOT format.", 0}));
}

TEST(CardFormatterGate, EmptyCard_StaysClosedWithACountOfNought) {
    const FormatGate gate = CardFormatter::gate(provenRun(0, 2), 2);

    EXPECT_EQ(gate, (FormatGate{false, "0 file(s) failed verification — DO NOT format.", 0}));
}

TEST(CardFormatterGate, FileWithoutACopy_IsAFailedFile) {
    OffloadResult result = provenRun(2, 2);
    result.files[0].destinations.clear();

    const FormatGate gate = CardFormatter::gate(result, 2);

    EXPECT_EQ(gate, (FormatGate{false, "1 file(s) failed verification — DO NOT format.", 0}));
}

TEST(CardFormatterGate, Drives_AreThoseOfTheRequest) {
    OffloadResult result = provenRun(2, 2);
    result.request.destinations.pop_back();

    EXPECT_EQ(CardFormatter::gate(result, 2).verifiedCopies, 1);
    EXPECT_FALSE(CardFormatter::gate(result, 2).eligible);
}

TEST(CardFormatterFileSystem, Cases_AreListedInOrderWithTheToolsNames) {
    const std::vector<std::pair<FileSystem, std::string_view>> expected{
        {FileSystem::exFAT, "ExFAT"},
        {FileSystem::fat32, "MS-DOS FAT32"},
        {FileSystem::apfs, "APFS"},
        {FileSystem::hfs, "JHFS+"}};

    std::vector<std::pair<FileSystem, std::string_view>> listed;
    for (const FileSystem one : allCases<FileSystem>()) listed.emplace_back(one, rawValue(one));

    EXPECT_EQ(listed, expected);
    EXPECT_EQ(fromRawValue<FileSystem>("MS-DOS FAT32"), FileSystem::fat32);
    EXPECT_EQ(fromRawValue<FileSystem>("exFAT"), std::nullopt);
}

TEST(CardFormatterPlan, HoldsWhatItWasGiven_Unchecked) {
    const auto plan = CardFormatter::plan("", "", FileSystem::hfs);

    EXPECT_EQ(plan, (CardFormatter::FormatPlan{"", "", FileSystem::hfs}));
}

TEST(CardFormatterCommand, NameAndPath_AreQuoted) {
    EXPECT_EQ(CardFormatter::plan("/media/A 001", "A001_2026-06-06", FileSystem::exFAT).command(),
              "diskutil eraseVolume ExFAT 'A001_2026-06-06' '/media/A 001'");
}

TEST(CardFormatterCommand, FileSystem_IsNeverQuoted) {
    EXPECT_EQ(CardFormatter::plan("/media/card", "A001", FileSystem::fat32).command(),
              "diskutil eraseVolume MS-DOS FAT32 'A001' '/media/card'");
}

TEST(CardFormatterCommand, Apostrophes_LeaveTheQuotes) {
    EXPECT_EQ(CardFormatter::plan("/media/'card'", "o'clock", FileSystem::apfs).command(),
              R"(diskutil eraseVolume APFS 'o'\''clock' '/media/'\''card'\''')");
}

TEST(CardFormatterCommand, EverythingElse_StandsAsItIs) {
    EXPECT_EQ(CardFormatter::plan("/media/$(rm)", "`\"\\\n", FileSystem::hfs).command(),
              "diskutil eraseVolume JHFS+ '`\"\\\n' '/media/$(rm)'");
}

TEST(CardFormatterCommand, EmptyName_IsAnEmptyWord) {
    EXPECT_EQ(CardFormatter::plan("/media/card", "", FileSystem::exFAT).command(),
              "diskutil eraseVolume ExFAT '' '/media/card'");
}

TEST(CardFormatterError, Texts_AreExact) {
    EXPECT_EQ(FormatError(FormatError::NotEligible{"Only 1 copy."}).description(),
              "Refusing to format: Only 1 copy.");
    EXPECT_EQ(FormatError(FormatError::DiskutilFailed{-3, "no\nway\n"}).description(),
              "diskutil failed (-3): no\nway\n");
    EXPECT_EQ(FormatError(FormatError::NotConfirmed{}).description(),
              "Format requires explicit confirmation.");
}

}  // namespace

}  // namespace ReelCore
