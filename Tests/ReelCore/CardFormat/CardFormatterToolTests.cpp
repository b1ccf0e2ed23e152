#include "ReelCore/CardFormat/CardFormatter.h"
#include "ReelCore/Platform/EraseTool.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/FolderTree.h"

#include <cerrno>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <unistd.h>

namespace ReelCore {

namespace {

using FileSystem = CardFormatter::FileSystem;
using FormatError = CardFormatter::FormatError;
using FormatGate = CardFormatter::FormatGate;
using TestSupport::readFile;
using TestSupport::TemporaryFolder;

const FormatGate openGate{true, "All 1 files verified on 2 drives.", 2};
const FormatGate closedGate{false, "Only 1 copy.", 1};

/// Stands where this program looks for the tool, and first of all records its arguments, each
/// between brackets.
class FakeTool {
public:
    explicit FakeTool(const std::string& script) {
        TestSupport::writeFile(path_,
                               "#!/bin/sh\nfor one in \"$@\"; do printf '[%s]' \"$one\"; "
                               "done > '" +
                                   record().native() + "'\n" + script);
        std::filesystem::permissions(path_, std::filesystem::perms(0755));
    }
    ~FakeTool() { std::filesystem::remove(path_); }
    FakeTool(const FakeTool&) = delete;
    FakeTool& operator=(const FakeTool&) = delete;

    bool wasStarted() const { return std::filesystem::exists(record()); }
    std::string arguments() const { return readFile(record()); }

private:
    URL record() const { return folder_.path() / "arguments"; }

    TemporaryFolder folder_;
    URL path_ = eraseTool();
};

/// The place of the tool is the same for all runs of this program: one at a time may use it.
class ToolPlaceLock {
public:
    ToolPlaceLock() {
        const URL folder = std::filesystem::canonical("/proc/self/exe").parent_path();
        descriptor_ = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (::flock(descriptor_, LOCK_EX) != 0) throwSystemError(folder);
    }
    ~ToolPlaceLock() { ::close(descriptor_); }
    ToolPlaceLock(const ToolPlaceLock&) = delete;
    ToolPlaceLock& operator=(const ToolPlaceLock&) = delete;

private:
    int descriptor_ = -1;
};

class CardFormatterExecute : public testing::Test {
protected:
    void SetUp() override {
        const URL program = std::filesystem::read_symlink("/proc/self/exe");
        const URL beside = program.parent_path().parent_path() / "libexec/keldobay/diskutil";
        if (eraseTool() != beside) GTEST_SKIP() << "this system has a diskutil of its own";
    }

    const ToolPlaceLock lock;
    const CardFormatter::FormatPlan plan =
        CardFormatter::plan("/media/card one", "o'clock $HOME", FileSystem::fat32);
};

TEST_F(CardFormatterExecute, OpenGateAndConfirmed_PassesExactlyFourArguments) {
    const FakeTool tool("echo erased\n");

    const std::string said = CardFormatter::execute(plan, openGate, true, false);

    EXPECT_EQ(tool.arguments(), "[eraseVolume][MS-DOS FAT32][o'clock $HOME][/media/card one]");
    EXPECT_EQ(said, "erased\n");
}

TEST_F(CardFormatterExecute, CardThatIsHeld_ComesOnTheToolsInputBesideTheFourArguments) {
    const FakeTool tool("readlink /proc/$$/fd/0\n");
    const TemporaryFolder card;

    const std::string with =
        CardFormatter::execute(plan, openGate, true, false, HeldCard(card.path()));
    const std::string without = CardFormatter::execute(plan, openGate, true, false);

    EXPECT_EQ(with.substr(0, 8), "socket:[");
    EXPECT_EQ(without, "/dev/null\n");
    EXPECT_EQ(tool.arguments(), "[eraseVolume][MS-DOS FAT32][o'clock $HOME][/media/card one]");
}

TEST_F(CardFormatterExecute, NameAndPathThatAreNoUTF8_ArePassedAsTheyStand) {
    const FakeTool tool("");
    const auto odd = CardFormatter::plan("/media/\xFF", "", FileSystem::exFAT);

    CardFormatter::execute(odd, openGate, true, false);

    EXPECT_EQ(tool.arguments(), "[eraseVolume][ExFAT][][/media/\xFF]");
}

TEST_F(CardFormatterExecute, BothStreams_ComeAsOneTextInTheOrderWritten) {
    const FakeTool tool("echo one\necho two >&2\necho three\n");

    EXPECT_EQ(CardFormatter::execute(plan, openGate, true, false), "one\ntwo\nthree\n");
}

TEST_F(CardFormatterExecute, ToolThatFails_IsReportedWithStatusAndBothStreams) {
    const FakeTool tool("echo started\necho 'Disk is in use — “A001”' >&2\nexit 77\n");

    try {
        CardFormatter::execute(plan, openGate, true, false);
        FAIL() << "no failure";
    } catch (const FormatError& error) {
        ASSERT_TRUE(error.is<FormatError::DiskutilFailed>());
        EXPECT_EQ(error.get<FormatError::DiskutilFailed>()->status, 77);
        EXPECT_EQ(error.get<FormatError::DiskutilFailed>()->output,
                  "started\nDisk is in use — “A001”\n");
        EXPECT_EQ(error.description(), "diskutil failed (77): started\nDisk is in use — “A001”\n");
    }
}

TEST_F(CardFormatterExecute, OutputThatIsNoUTF8_BecomesEmptyOnSuccess) {
    const FakeTool tool("printf 'erased \\377'\n");

    EXPECT_EQ(CardFormatter::execute(plan, openGate, true, false), "");
}

TEST_F(CardFormatterExecute, OutputThatIsNoUTF8_BecomesEmptyOnFailure) {
    const FakeTool tool("printf 'failed \\377'\nexit 1\n");

    try {
        CardFormatter::execute(plan, openGate, true, false);
        FAIL() << "no failure";
    } catch (const FormatError& error) {
        EXPECT_EQ(error.description(), "diskutil failed (1): ");
    }
}

TEST_F(CardFormatterExecute, LongOutput_IsReadToItsEnd) {
    const FakeTool tool("head -c 1000000 /dev/zero | tr '\\0' x\n");

    EXPECT_EQ(CardFormatter::execute(plan, openGate, true, false), std::string(1'000'000, 'x'));
}

TEST_F(CardFormatterExecute, MissingTool_FailsWithTheSystemsError) {
    ASSERT_FALSE(std::filesystem::exists(eraseTool()));

    try {
        CardFormatter::execute(plan, openGate, true, false);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), ENOENT);
        EXPECT_EQ(error.description(), "No such file or directory: " + eraseTool().native());
    }
}

TEST_F(CardFormatterExecute, ToolThatIsNoProgram_FailsWithTheSystemsError) {
    const FakeTool tool("");
    std::filesystem::permissions(eraseTool(), std::filesystem::perms(0644));

    try {
        CardFormatter::execute(plan, openGate, true, false);
        FAIL() << "no failure";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EACCES);
    }
}

class Refusals : public CardFormatterExecute,
                 public testing::WithParamInterface<std::tuple<bool, bool>> {};

TEST_P(Refusals, ClosedGate_IsReportedWhateverElseIsMissing) {
    const FakeTool tool("");
    const auto& [confirm, dryRun] = GetParam();

    try {
        CardFormatter::execute(plan, closedGate, confirm, dryRun);
        FAIL() << "no failure";
    } catch (const FormatError& error) {
        ASSERT_TRUE(error.is<FormatError::NotEligible>());
        EXPECT_EQ(error.description(), "Refusing to format: Only 1 copy.");
    }
    EXPECT_FALSE(tool.wasStarted());
}

INSTANTIATE_TEST_SUITE_P(CardFormatterExecute, Refusals,
                         testing::Combine(testing::Bool(), testing::Bool()));

TEST_F(CardFormatterExecute, UnconfirmedErase_IsRefusedAlsoAsADryRun) {
    const FakeTool tool("");

    for (const bool dryRun : {false, true}) {
        try {
            CardFormatter::execute(plan, openGate, false, dryRun);
            FAIL() << "no failure";
        } catch (const FormatError& error) {
            EXPECT_TRUE(error.is<FormatError::NotConfirmed>());
        }
    }
    EXPECT_FALSE(tool.wasStarted());
}

TEST_F(CardFormatterExecute, DryRun_ReturnsTheCommandAndStartsNothing) {
    const FakeTool tool("");

    EXPECT_EQ(CardFormatter::execute(plan, openGate, true, true), plan.command());
    EXPECT_EQ(plan.command(),
              "diskutil eraseVolume MS-DOS FAT32 'o'\\''clock $HOME' '/media/card one'");
    EXPECT_FALSE(tool.wasStarted());
}

TEST_F(CardFormatterExecute, HandedInGate_IsBelieved) {
    const FakeTool tool("");
    const FormatGate withoutCopies{true, "", 0};

    EXPECT_NO_THROW(CardFormatter::execute(plan, withoutCopies, true, false));
    EXPECT_TRUE(tool.wasStarted());
}

}  // namespace

}  // namespace ReelCore
