#include "FullDrive.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Reports/ReportRenderer.h"
#include "SampleOffload.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"

#include <cerrno>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

Report plan() {
    return {"Plan", std::nullopt, {}, std::nullopt, Date(), "keldobay 0.1.0"};
}

int codeOfFailure(const URL& folder, const Report& report = plan()) {
    try {
        ReportRenderer::write(report, folder, {"pdf", "csv"});
    } catch (const SystemError& error) {
        return error.code();
    }
    return 0;
}

TEST(ReportWrite, FolderThatCannotBeMade_IsASystemError) {
    const TemporaryFolder folder;
    writeFile(folder.path() / "file", "");

    EXPECT_EQ(codeOfFailure(folder.path() / "file"), ENOTDIR);
    EXPECT_EQ(codeOfFailure(folder.path() / "file/below"), ENOTDIR);
}

TEST(ReportWrite, PDFThatCannotBeWritten_EndsTheCallBeforeTheCSV) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "Plan.pdf");

    EXPECT_EQ(codeOfFailure(folder.path()), EISDIR);
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "Plan.csv"));
}

TEST(ReportWrite, CSVThatCannotBeWritten_LeavesThePDF) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path() / "Plan.csv");

    EXPECT_EQ(codeOfFailure(folder.path()), EISDIR);
    EXPECT_TRUE(std::filesystem::is_regular_file(folder.path() / "Plan.pdf"));
}

TEST(ReportWrite, FullDrive_EndsTheCall) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 8);
    fill(drive.path());

    EXPECT_EQ(codeOfFailure(drive.path()), ENOSPC);

    EXPECT_FALSE(std::filesystem::exists(drive.path() / "Plan.csv"));
}

// A long table whose PDF still finds room: the CSV is what does not.
TEST(ReportWrite, DriveThatFillsUpBehindThePDF_KeepsThePDF) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const TemporaryFolder elsewhere;
    Report report = reportWithRows(0);
    report.summary.clear();
    report.table->rows.push_back({std::string(9'000'000, 'x')});
    const auto expected = ReportRenderer::write(report, elsewhere.path(), {"pdf"});
    const LoopMount drive("ext4", 8);

    EXPECT_EQ(codeOfFailure(drive.path(), report), ENOSPC);

    const URL pdf = drive.path() / expected.at(0).filename();
    EXPECT_EQ(readFile(pdf), readFile(expected.at(0)));
}

// Such as a full drive behind a network: it takes what it is given and refuses it later.
TEST(ReportWrite, DriveThatIsFullOnlyWhenFlushed_EndsTheCall) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(
        backing.path(), mountPoint.path(),
        {.onlyFile = "Plan.csv", .writeError = ENOSPC, .failWriteAt = 0, .writeLate = true});

    EXPECT_EQ(codeOfFailure(drive.path()), ENOSPC);
}

TEST(ReportWrite, ReadOnlyFolder_EndsTheCallAndKeepsTheOldReport) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount drive("ext4", 8);
    const auto old = ReportRenderer::write(plan(), drive.path(), {"pdf", "csv"});
    const FolderTree before = readTree(drive.path());
    Report later = plan();
    later.summary.push_back({"Cameras", "2"});
    drive.makeReadOnly();

    EXPECT_EQ(codeOfFailure(drive.path(), later), EROFS);
    EXPECT_EQ(codeOfFailure(drive.path() / "new folder", later), EROFS);

    EXPECT_EQ(readTree(drive.path()), before);
    EXPECT_EQ(old.size(), 2U);
}

}  // namespace
