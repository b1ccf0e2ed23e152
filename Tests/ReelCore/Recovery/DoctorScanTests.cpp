#include "DoctorFixture.h"
#include "MixedCard.h"
#include "ReelCore/Platform/FileSystem.h"
#include "Support/FaultyFileSystem.h"
#include "Support/LoopMount.h"
#include "Support/Snapshot.h"

#include <algorithm>
#include <set>

namespace ReelCore {

namespace {

using namespace TestSupport;

std::vector<ClipReport> expectedReports(const MixedCard& card) {
    std::vector<ClipReport> reports;
    for (const MadeClip& clip : card.clips) {
        reports.push_back({card.path / clip.path, clip.size, clip.diagnosis});
    }
    return reports;
}

void expectScanOf(const MixedCard& card) {
    const RecoveryScan scan = ClipDoctor::scan(card.path);
    const auto& found = scan.reports;
    const auto expected = expectedReports(card);
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(found[i].url, expected[i].url) << i;
        EXPECT_EQ(found[i].size, expected[i].size) << found[i].url;
        EXPECT_EQ(found[i].diagnosis, expected[i].diagnosis)
            << found[i].url << ": " << found[i].diagnosis.label();
    }
    const auto count = [&](auto isWanted) { return std::ranges::count_if(card.clips, isWanted); };
    EXPECT_EQ(std::ssize(scan.healthy()),
              count([](const MadeClip& one) { return one.diagnosis == healthy; }));
    EXPECT_EQ(std::ssize(scan.damaged()),
              count([](const MadeClip& one) { return one.method != "—"; }));
}

/// Repairs every clip of a scan and compares each outcome, and all that was written.
void expectRepairsOf(const MixedCard& card, const std::optional<URL>& reference,
                     const URL& output) {
    const auto reports = expectedReports(card);
    std::set<std::string> names;
    for (std::size_t i = 0; i < reports.size(); ++i) {
        const MadeClip clip = reference ? card.clips[i] : withoutReference(card.clips[i]);
        const RepairOutcome outcome = ClipDoctor::repair(reports[i], reference, output);

        EXPECT_EQ(outcome.source, reports[i].url);
        EXPECT_EQ(outcome.method, clip.method) << clip.path << outcome.detail;
        EXPECT_EQ(outcome.succeeded, !clip.output.empty()) << clip.path << outcome.detail;
        EXPECT_EQ(outcome.output.value_or(""), clip.output.empty() ? "" : output / clip.output);
        if (clip.method == "repair") {
            EXPECT_TRUE(outcome.detail.starts_with(clip.detail)) << outcome.detail;
        } else {
            EXPECT_EQ(outcome.detail, clip.detail) << clip.path;
        }
        if (!outcome.succeeded) continue;
        names.insert(clip.output);
        EXPECT_EQ(ClipDoctor::diagnose(*outcome.output), healthy) << clip.output;
    }
    const auto written = FileSystem::names(output);
    EXPECT_EQ(std::set(written.begin(), written.end()), names);
}

/// Without the access dates of the files that ffmpeg itself opened.
Snapshot withoutWhatFFmpegReads(Snapshot snapshot, const MixedCard& card) {
    for (const MadeClip& clip : card.clips) {
        const bool isRemuxed = clip.method == "remux" || clip.method == "repair";
        if (isRemuxed) snapshot.at(clip.path).accessed = {};
    }
    return snapshot;
}

class DoctorScan : public DoctorFixture {
protected:
    std::vector<std::string> namesIn(const URL& directory) const {
        std::vector<std::string> names;
        for (const ClipReport& report : ClipDoctor::scan(directory).reports) {
            names.push_back(report.url.lexically_relative(directory).native());
        }
        return names;
    }
};

TEST_F(DoctorScan, MixedCard_IsReportedInPathOrderAndRepairedWithAReference) {
    const MixedCard card(folder());
    ASSERT_GE(card.clips.size(), 40U);
    ageAccessDates(card.path);
    const Snapshot before = snapshotOf(card.path);

    expectScanOf(card);

    EXPECT_EQ(snapshotOf(card.path), before) << "a scan leaves no trace";
    expectRepairsOf(card, card.reference, output());
    EXPECT_EQ(withoutWhatFFmpegReads(snapshotOf(card.path), card),
              withoutWhatFFmpegReads(before, card));
}

TEST_F(DoctorScan, MixedCard_IsRepairedAsFarAsItGoesWithoutAReference) {
    const MixedCard card(folder());
    const Snapshot reference = snapshotOf(card.reference);

    expectRepairsOf(card, std::nullopt, output());

    EXPECT_EQ(snapshotOf(card.reference), reference);
}

TEST_F(DoctorScan, MixedCardOnAReadOnlyDrive_IsReportedAndRepairedAllTheSame) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount drive("ext4", 16);
    const MixedCard card(drive.path());
    drive.makeReadOnly();
    const Snapshot before = snapshotOf(card.path);

    expectScanOf(card);
    expectRepairsOf(card, card.reference, output());

    EXPECT_EQ(snapshotOf(card.path), before);
}

TEST_F(DoctorScan, EmptyFolder_HasNoReports) {
    EXPECT_EQ(ClipDoctor::scan(folder()), RecoveryScan());
}

TEST_F(DoctorScan, MissingFolder_HasNoReports) {
    EXPECT_EQ(ClipDoctor::scan(folder() / "missing"), RecoveryScan());
}

TEST_F(DoctorScan, FileInPlaceOfAFolder_HasNoReports) {
    EXPECT_EQ(ClipDoctor::scan(file("a.mov", wholeMovie())), RecoveryScan());
}

TEST_F(DoctorScan, LinkToAFolder_IsScannedAsThatFolder) {
    file("card/a.mov", wholeMovie());
    std::filesystem::create_symlink("card", folder() / "link");

    EXPECT_EQ(namesIn(folder() / "link"), std::vector<std::string>{"a.mov"});
}

TEST_F(DoctorScan, IgnoredNames_ReportNothingAtAnyDepthInWhateverForm) {
    for (const std::string name :
         {".DS_Store", ".Spotlight-V100", ".Trashes", ".fseventsd", ".TemporaryItems",
          "System Volume Information", ".DocumentRevisions-V100"}) {
        file(name + "/a.mov", wholeMovie());
        file("B/C/" + name + "/D/a.mov", wholeMovie());
        file("FILES/" + name, wholeMovie());
    }
    file("B/.trashes/a.mov", wholeMovie());

    EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"B/.trashes/a.mov"});
}

TEST_F(DoctorScan, NamesThatDifferInCompositionOnly_AreBothReported) {
    file("e\u0301.mov", wholeMovie());
    file("\u00E9.mov", wholeMovie());

    EXPECT_EQ(ClipDoctor::scan(folder()).reports.size(), 2U);
}

TEST_F(DoctorScan, FolderThatCannotBeListed_HasNoReports) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    file("card/LOCKED/a.mov", wholeMovie());
    const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                {.failListingOf = "LOCKED"});

    EXPECT_EQ(ClipDoctor::scan(card.path() / "LOCKED"), RecoveryScan());
}

TEST_F(DoctorScan, FolderBelowThatCannotBeListed_LeavesTheRest) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    writeTree(folder() / "card", {{"A/1.mov", wholeMovie()},
                                  {"B/2.mov", wholeMovie()},
                                  {"B/BELOW/3.mov", wholeMovie()},
                                  {"C/4.mov", wholeMovie()}});
    const FaultyFileSystem card(folder() / "card", folder() / "mounted", {.failListingOf = "B"});

    EXPECT_EQ(namesIn(card.path()), (std::vector<std::string>{"A/1.mov", "C/4.mov"}));
}

TEST_F(DoctorScan, ListingThatBreaksOffBelow_LeavesTheRest) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    writeTree(folder() / "card",
              {{"A/1.mov", wholeMovie()}, {"B/2.mov", wholeMovie()}, {"C/3.mov", wholeMovie()}});
    const FaultyFileSystem card(folder() / "card", folder() / "mounted", {.breakListingOf = "B"});

    EXPECT_EQ(namesIn(card.path()), (std::vector<std::string>{"A/1.mov", "C/3.mov"}));
}

TEST_F(DoctorScan, ClipWhoseAttributesCannotBeRead_IsReportedAsEmptyAmongTheRest) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    writeTree(folder() / "card", {{"1.mov", wholeMovie()}, {"2.mov", wholeMovie()}});
    const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                {.failAttributesOf = "1.mov"});

    const RecoveryScan scan = ClipDoctor::scan(card.path());

    const ClipReport first{card.path() / "1.mov", 0, unreadable("empty file")};
    const ClipReport second{card.path() / "2.mov", std::ssize(wholeMovie()), healthy};
    EXPECT_EQ(scan.reports, (std::vector{first, second}));
}

TEST_F(DoctorScan, OneClipThatCannotBeRead_IsReportedAsUnreadableAmongTheRest) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE and the right to mount";
    writeTree(folder() / "card", {{"1.mov", wholeMovie()}, {"2.mov", wholeMovie()}});
    const FaultyFileSystem card(folder() / "card", folder() / "mounted",
                                {.onlyFile = "1.mov", .failReadAt = 0});

    const auto reports = ClipDoctor::scan(card.path()).reports;

    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].diagnosis, unreadable("no QuickTime/MP4 structure"));
    EXPECT_EQ(reports[0].size, std::ssize(wholeMovie()));
    EXPECT_EQ(reports[1].diagnosis, healthy);
}

}  // namespace

}  // namespace ReelCore
