#include "ReelCore/Recovery/MP4Scan.h"

#include "ReelCore/Platform/SystemError.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "Support/Boxes.h"
#include "Support/FaultyFileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Snapshot.h"
#include "Support/SparseFile.h"

#include <cerrno>
#include <limits>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Boxes = std::vector<TopLevelBox>;

class MP4ScanTest : public testing::Test {
protected:
    URL at(const std::string& name) const { return folder_.path() / name; }

    MP4Scan::TopLevel topLevelOf(std::string_view bytes) const {
        writeFile(at("clip.mov"), bytes);
        return MP4Scan::topLevel(at("clip.mov"));
    }

    Boxes boxesOf(std::string_view bytes) const { return topLevelOf(bytes).boxes; }

private:
    TemporaryFolder folder_;
};

/// The name of a file on a file system that knows no largest file.
struct FileInMemory {
    const URL path = "/dev/shm/reelcore-test-" + std::to_string(::getpid());

    ~FileInMemory() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
};

std::size_t openDescriptors() {
    using Entries = std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(Entries("/proc/self/fd"), Entries()));
}

const TopLevelBox freeBox{"free", 0, 8, 4, false};

}  // namespace

TEST(TopLevelBox, PayloadOffset_StandsBehindTheHeader) {
    EXPECT_EQ((TopLevelBox{"mdat", 20, 8, 100, false}.payloadOffset()), 28);
    EXPECT_EQ((TopLevelBox{"mdat", 20, 16, 100, false}.payloadOffset()), 36);
}

TEST(TopLevelBox, Equality_LooksAtEachField) {
    const TopLevelBox box{"mdat", 20, 8, 100, false};

    EXPECT_EQ(box, (TopLevelBox{"mdat", 20, 8, 100, false}));
    EXPECT_NE(box, (TopLevelBox{"moov", 20, 8, 100, false}));
    EXPECT_NE(box, (TopLevelBox{"mdat", 21, 8, 100, false}));
    EXPECT_NE(box, (TopLevelBox{"mdat", 20, 16, 100, false}));
    EXPECT_NE(box, (TopLevelBox{"mdat", 20, 8, 101, false}));
    EXPECT_NE(box, (TopLevelBox{"mdat", 20, 8, 100, true}));
}

TEST_F(MP4ScanTest, File_BoxesOfBothForms_AreToldInOrder) {
    const std::string bytes = fileTypeBox() + wideBox("mdat", "12345") + box("moov");

    const MP4Scan::TopLevel found = topLevelOf(bytes);

    EXPECT_EQ(found.boxes,
              (Boxes{{"ftyp", 0, 8, 12, false}, {"mdat", 20, 16, 5, false}, {"moov", 41, 8, 0}}));
    EXPECT_EQ(found.fileSize, 49);
}

TEST_F(MP4ScanTest, File_InsidesOfABox_AreNotWalked) {
    EXPECT_EQ(boxesOf(box("moov", box("trak", box("mdia")))), (Boxes{{"moov", 0, 8, 16, false}}));
}

TEST_F(MP4ScanTest, File_TooShortForABox_HasNone) {
    for (const std::size_t size : {0U, 1U, 7U}) {
        const MP4Scan::TopLevel found = topLevelOf(box("free").substr(0, size));

        EXPECT_EQ(found.boxes, Boxes{}) << size;
        EXPECT_EQ(found.fileSize, static_cast<std::int64_t>(size));
    }
}

TEST_F(MP4ScanTest, File_LessThanAHeaderAtItsEnd_IsLeftOut) {
    EXPECT_EQ(boxesOf(box("free", "1234") + box("moov").substr(0, 7)), Boxes{freeBox});
}

TEST_F(MP4ScanTest, File_OfZeros_IsOneBoxUpToTheEnd) {
    const MP4Scan::TopLevel found = topLevelOf(std::string(1000, '\0'));

    EXPECT_EQ(found.boxes, (Boxes{{std::string(4, '\0'), 0, 8, 992, true}}));
}

TEST_F(MP4ScanTest, Size_Zero_ReachesToTheEndAndIsTheLast) {
    const std::string media = box("moov") + box("free");

    EXPECT_EQ(boxesOf(fileTypeBox() + boxHeader("mdat", 0) + media),
              (Boxes{{"ftyp", 0, 8, 12, false}, {"mdat", 20, 8, 16, true}}));
}

TEST_F(MP4ScanTest, Size_BelowAHeaders_EndsTheWalkBeforeTheBox) {
    for (const std::uint32_t size : {2U, 5U, 7U}) {
        EXPECT_EQ(boxesOf(box("free", "1234") + boxHeader("mdat", size) + box("moov")),
                  Boxes{freeBox})
            << size;
    }
}

TEST_F(MP4ScanTest, Size_BeyondTheEnd_IsToldAsDeclared) {
    EXPECT_EQ(boxesOf(box("free", "1234") + boxHeader("mdat", 0xFFFFFFFF) + "media"),
              (Boxes{freeBox, {"mdat", 12, 8, 0xFFFFFFF7, false}}));
    EXPECT_EQ(boxesOf(box("free", "1234") + wideBoxHeader("mdat", 1'000'000'000'016) + "media"),
              (Boxes{freeBox, {"mdat", 12, 16, 1'000'000'000'000, false}}));
}

TEST_F(MP4ScanTest, Size_UpToTheLastByteOrOneMore_IsToldAlike) {
    EXPECT_EQ(boxesOf(boxHeader("mdat", 13) + "media"), (Boxes{{"mdat", 0, 8, 5, false}}));
    EXPECT_EQ(boxesOf(boxHeader("mdat", 14) + "media"), (Boxes{{"mdat", 0, 8, 6, false}}));
}

TEST_F(MP4ScanTest, WideSize_OfABareHeader_IsAnEmptyBox) {
    EXPECT_EQ(boxesOf(wideBox("wide") + box("free")),
              (Boxes{{"wide", 0, 16, 0, false}, {"free", 16, 8, 0, false}}));
}

TEST_F(MP4ScanTest, WideSize_BelowAHeaders_EndsTheWalkBeforeTheBox) {
    for (const std::uint64_t size : {0U, 1U, 8U, 15U}) {
        EXPECT_EQ(boxesOf(box("free", "1234") + wideBoxHeader("mdat", size) + box("moov")),
                  Boxes{freeBox})
            << size;
    }
}

TEST_F(MP4ScanTest, WideSize_CutOff_EndsTheWalkBeforeTheBox) {
    for (const std::size_t size : {8U, 12U, 15U}) {
        EXPECT_EQ(boxesOf(box("free", "1234") + wideBox("mdat").substr(0, size)), Boxes{freeBox})
            << size;
    }
}

TEST_F(MP4ScanTest, WideSize_WithItsTopBitSet_EndsTheWalkBeforeTheBox) {
    for (const std::uint64_t size : {0x8000000000000000U, 0x8000000000000010U, ~0UL}) {
        EXPECT_EQ(boxesOf(box("free", "1234") + wideBoxHeader("mdat", size) + box("moov")),
                  Boxes{freeBox})
            << size;
    }
}

TEST_F(MP4ScanTest, WideSize_TheLargest_IsToldAndEndsTheWalk) {
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();

    EXPECT_EQ(boxesOf(box("free", "1234") + wideBoxHeader("mdat", largest) + box("moov")),
              (Boxes{freeBox, {"mdat", 12, 16, largest - 16, false}}));
}

// Where two sizes, each within the file, reach beyond the largest offset together.
TEST(MP4ScanLargestFile, WideSizes_ThatReachBeyondTheLargestOffset_EndTheWalk) {
    constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t half = largest / 2 + 1;
    const FileInMemory clip;
    try {
        writeSparse(clip.path,
                    {{0, wideBoxHeader("mdat", half)}, {half, wideBoxHeader("mdat", half)}},
                    largest);
    } catch (const SystemError&) {
        GTEST_SKIP() << "needs a file system for files of 2^63 bytes at /dev/shm";
    }

    EXPECT_EQ(MP4Scan::topLevel(clip.path).boxes,
              (Boxes{{"mdat", 0, 16, half - 16, false}, {"mdat", half, 16, half - 16, false}}));
}

TEST_F(MP4ScanTest, Type_OfAnyASCII_IsABox) {
    const std::string odd("\x01\x7F\0 ", 4);

    EXPECT_EQ(boxesOf(box(odd) + box("free")),
              (Boxes{{odd, 0, 8, 0, false}, {"free", 8, 8, 0, false}}));
}

TEST_F(MP4ScanTest, Type_WithAByteThatIsNotASCII_EndsTheWalk) {
    for (const std::string_view type : {"\xFFree",
                                        "f\x80"
                                        "ee",
                                        "fre\xA9"}) {
        EXPECT_EQ(boxesOf(box("free", "1234") + box(type) + box("moov")), Boxes{freeBox});
        EXPECT_EQ(boxesOf(box("free", "1234") + boxHeader(type, 0)), Boxes{freeBox});
        EXPECT_EQ(boxesOf(box("free", "1234") + wideBox(type)), Boxes{freeBox});
    }
}

TEST_F(MP4ScanTest, First_OfAType_IsTheFirstOfThem) {
    const MP4Scan::TopLevel found = topLevelOf(box("free") + box("mdat", "1") + box("mdat", "12"));

    ASSERT_NE(found.first("mdat"), nullptr);
    EXPECT_EQ(*found.first("mdat"), (TopLevelBox{"mdat", 8, 8, 1, false}));
    EXPECT_EQ(found.first("moov"), nullptr);
}

TEST_F(MP4ScanTest, File_ThatCannotBeOpened_IsNotFound) {
    std::filesystem::create_directory(at("folder"));
    std::filesystem::create_symlink("gone", at("dangling"));
    ASSERT_EQ(::mkfifo(at("pipe").c_str(), 0666), 0);
    for (const std::string name : {"gone", "folder", "dangling", "pipe"}) {
        try {
            MP4Scan::topLevel(at(name));
            FAIL() << name << " is read";
        } catch (const RecoveryError& error) {
            ASSERT_TRUE(error.is<RecoveryError::NotFound>()) << name;
            EXPECT_EQ(error.get<RecoveryError::NotFound>()->url, at(name));
        }
    }
}

TEST_F(MP4ScanTest, File_BehindALink_IsWalked) {
    writeFile(at("clip.mov"), box("free", "1234"));
    std::filesystem::create_symlink("clip.mov", at("link"));

    EXPECT_EQ(MP4Scan::topLevel(at("link")).boxes, Boxes{freeBox});
}

TEST_F(MP4ScanTest, File_AnyEnd_LeavesNoTraceAndNothingOpen) {
    writeTree(at("card"), {{"a.mov", box("free") + wideBox("mdat", "12")}, {"b.mov", "broken"}});
    ageAccessDates(at("card"));
    const Snapshot before = snapshotOf(at("card"));
    const std::size_t open = openDescriptors();

    MP4Scan::topLevel(at("card/a.mov"));
    MP4Scan::topLevel(at("card/b.mov"));
    EXPECT_THROW(MP4Scan::topLevel(at("card")), RecoveryError);

    EXPECT_EQ(openDescriptors(), open);
    EXPECT_EQ(snapshotOf(at("card")), before);
}

TEST_F(MP4ScanTest, Drive_FailsAtAHeader_IsTheSystemsError) {
    if (!FaultyFileSystem::isAvailable()) GTEST_SKIP() << "needs FUSE";
    constexpr std::int64_t moov = 1 << 20U;
    writeFile(at("back/clip.mov"), box("mdat", noise(moov - 8)) + box("moov", noise(10'000)));
    const FaultyFileSystem card(at("back"), at("card"), {.failReadAt = moov});
    const std::size_t open = openDescriptors();

    try {
        MP4Scan::topLevel(card.path() / "clip.mov");
        FAIL() << "no error";
    } catch (const SystemError& error) {
        EXPECT_EQ(error.code(), EIO);
        EXPECT_EQ(error.sentence(), "Input/output error");
    }
    EXPECT_EQ(openDescriptors(), open);
}
