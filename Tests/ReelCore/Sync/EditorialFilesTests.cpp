// Where timelines and logs are written, and what a failure leaves behind.

#include "EditorialSamples.h"
#include "ReelCore/Platform/Arithmetic.h"
#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Sync/ALEWriter.h"
#include "ReelCore/Sync/FCPXMLWriter.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/LoopMount.h"
#include "Support/Snapshot.h"
#include "Support/Tool.h"

#include <cerrno>
#include <fstream>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

struct Document {
    const char* name;
    std::string (*text)(const SyncResult&);
    URL (*write)(const SyncResult&, const URL&);
};

const Document timeline{
    "timeline", [](const SyncResult& day) { return FCPXMLWriter::fcpxml(day, "Day", "keldobay"); },
    [](const SyncResult& day, const URL& url) { return FCPXMLWriter::write(day, url, "Day"); }};
const Document editLog{"editLog", ALEWriter::ale, ALEWriter::write};

const SyncResult day{{pair(picture("/day/C1.mov", 10), sound("/day/T1.wav", 60))}, {}};

/// A day whose documents are longer than 5 MB.
SyncResult longDay() {
    const URL clip = "/day/" + std::string(250, 'C') + ".mov";
    return {std::vector(20'000, pair(picture(clip, 10), sound("/day/T1.wav", 60))), {}};
}

/// Leaves no room for a single byte: what a large file does not take, many small ones do.
void fill(const URL& drive) {
    std::ofstream large(drive / "large", std::ios::binary);
    while (large << noise(4096) << std::flush) {
    }
    large.close();
    outputOf("sync", {"-f", drive.native()});
    for (int number = 0;; ++number) {
        std::ofstream small(drive / std::to_string(number), std::ios::binary);
        if (!(small << "x" << std::flush)) return;
    }
}

class EditorialFile : public testing::TestWithParam<Document> {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

    static std::string text() { return GetParam().text(day); }
    static URL write(const URL& url) { return GetParam().write(day, url); }

    /// The code and the text of the failure; 0 where there is none.
    static std::pair<int, std::string> failureOf(const URL& url, const SyncResult& result = day) {
        try {
            GetParam().write(result, url);
            return {0, ""};
        } catch (const SystemError& error) {
            return {error.code(), error.description()};
        }
    }

private:
    TemporaryFolder folder_;
};

INSTANTIATE_TEST_SUITE_P(Both, EditorialFile, testing::Values(timeline, editLog),
                         [](const auto& which) { return which.param.name; });

TEST_P(EditorialFile, Written_HoldsTheTextAndIsReturned) {
    const URL written = write(at("Day 1"));

    EXPECT_EQ(written, at("Day 1"));
    EXPECT_EQ(readFile(written), text());
}

TEST_P(EditorialFile, OlderFile_IsReplacedAlsoWhereItWasLonger) {
    writeFile(at("out"), noise(100'000));

    write(at("out"));

    EXPECT_EQ(readFile(at("out")), text());
}

TEST_P(EditorialFile, LinkToAClip_IsReplacedAndTheClipStays) {
    writeFile(at("clip.mov"), noise(1000));
    std::filesystem::create_symlink("clip.mov", at("out"));
    const Trace clip = snapshotOf(at("")).at("clip.mov");

    write(at("out"));

    EXPECT_EQ(snapshotOf(at("")).at("clip.mov"), clip);
    EXPECT_FALSE(std::filesystem::is_symlink(at("out")));
    EXPECT_EQ(readFile(at("out")), text());
}

TEST_P(EditorialFile, SecondNameOfAClip_IsReplacedAndTheClipStays) {
    writeFile(at("clip.mov"), noise(1000));
    std::filesystem::create_hard_link(at("clip.mov"), at("out"));

    write(at("out"));

    EXPECT_EQ(readFile(at("clip.mov")), noise(1000));
    EXPECT_EQ(readFile(at("out")), text());
}

TEST_P(EditorialFile, FolderOfThatName_StaysAndIsTheSystemsError) {
    writeTree(at("out"), {{"clip.mov", "picture"}});

    const auto [code, description] = failureOf(at("out"));

    EXPECT_EQ(code, EISDIR);
    EXPECT_EQ(readTree(at("out")), (FolderTree{{"clip.mov", "picture"}}));
}

TEST_P(EditorialFile, MissingFolder_IsTheSystemsErrorWithThePath) {
    const auto [code, description] = failureOf(at("gone/out"));

    EXPECT_EQ(code, ENOENT);
    EXPECT_EQ(description, "No such file or directory: " + at("gone/out").native());
    EXPECT_FALSE(std::filesystem::exists(at("gone")));
}

TEST_P(EditorialFile, ReadOnlyDrive_IsTheSystemsErrorAndTheOlderFileStays) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    LoopMount drive("ext4", 8);
    writeFile(drive.path() / "out", "older");
    drive.makeReadOnly();

    const auto [code, description] = failureOf(drive.path() / "out");

    EXPECT_EQ(code, EROFS);
    EXPECT_EQ(description, "Read-only file system: " + (drive.path() / "out").native());
    EXPECT_EQ(readFile(drive.path() / "out"), "older");
}

TEST_P(EditorialFile, FullDrive_IsTheSystemsErrorAndNeverTakenForWritten) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 8);
    fill(drive.path());

    const auto [code, description] = failureOf(drive.path() / "out");

    EXPECT_EQ(code, ENOSPC);
    EXPECT_TRUE(description.starts_with("No space left on device")) << description;
}

TEST_P(EditorialFile, DriveThatRefusesLate_IsTheSystemsError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    const TemporaryFolder backing;
    const TemporaryFolder mountPoint;
    const FaultyFileSystem drive(backing.path(), mountPoint.path(),
                                 {.writeError = ENOSPC, .failWriteAt = 0, .writeLate = true});

    EXPECT_EQ(failureOf(drive.path() / "out").first, ENOSPC);
}

TEST_P(EditorialFile, DriveSmallerThanTheDocument_KeepsItsBeginningAndIsTheSystemsError) {
    if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    const LoopMount drive("ext4", 4);

    const auto [code, description] = failureOf(drive.path() / "out", longDay());

    EXPECT_EQ(code, ENOSPC) << description;
    const std::string whole = GetParam().text(longDay());
    const std::string written = readFile(drive.path() / "out");
    EXPECT_GT(written.size(), 0U);
    EXPECT_LT(written.size(), whole.size());
    EXPECT_TRUE(whole.starts_with(written)) << written.size();
}

TEST_P(EditorialFile, TimeThatIsNoNumber_LeavesTheOlderFileAlone) {
    writeFile(at("out"), "older");
    const double none = std::numeric_limits<double>::quiet_NaN();
    const SyncResult broken{{{picture("/day/C1.mov", none), {}}}, {}};

    EXPECT_THROW(GetParam().write(broken, at("out")), OutOfRange);

    EXPECT_EQ(readFile(at("out")), "older");
}

}  // namespace
