#include "ReelCore/Models/MediaFile.h"

#include <unordered_set>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace std::chrono_literals;

const Date noon = std::chrono::sys_days(2026y / 3 / 1) + 12h;

std::string filenameOf(const std::string& relativePath) {
    return MediaFile{relativePath, 0, std::nullopt}.filename();
}

TEST(MediaFile, Filename_IsTheLastPartOfThePath) {
    EXPECT_EQ(filenameOf("CLIPS001/A001/C001.MOV"), "C001.MOV");
    EXPECT_EQ(filenameOf("C001.MOV"), "C001.MOV");
    EXPECT_EQ(filenameOf("DCIM/.hidden"), ".hidden");
    EXPECT_EQ(filenameOf("caf\xFF/b\xFE"), "b\xFE");
}

TEST(MediaFile, Equality_TakesAllThreeFields) {
    const MediaFile file{"A/B.MOV", 7, noon};

    EXPECT_EQ(file, (MediaFile{"A/B.MOV", 7, noon}));
    EXPECT_NE(file, (MediaFile{"A/b.MOV", 7, noon}));
    EXPECT_NE(file, (MediaFile{"A/B.MOV", 8, noon}));
    EXPECT_NE(file, (MediaFile{"A/B.MOV", 7, noon + 1ns}));
    EXPECT_NE(file, (MediaFile{"A/B.MOV", 7, std::nullopt}));
}

TEST(MediaFile, Hash_IsTheSameForEqualsAndLooksAtEveryField) {
    const std::hash<MediaFile> hash;
    const MediaFile file{"A/B.MOV", 7, noon};

    EXPECT_EQ(hash(file), hash(MediaFile{"A/B.MOV", 7, noon}));
    EXPECT_NE(hash(file), hash(MediaFile{"A/b.MOV", 7, noon}));
    EXPECT_NE(hash(file), hash(MediaFile{"A/B.MOV", 8, noon}));
    EXPECT_NE(hash(file), hash(MediaFile{"A/B.MOV", 7, noon + 1ns}));
    EXPECT_NE(hash(file), hash(MediaFile{"A/B.MOV", 7, std::nullopt}));
}

TEST(MediaFile, Set_HoldsEqualFilesOnce) {
    const std::unordered_set<MediaFile> files{
        {"A.MOV", 1, noon}, {"A.MOV", 1, noon}, {"A.MOV", 2, noon}, {"A.MOV", 1, std::nullopt}};

    EXPECT_EQ(files.size(), 3U);
}

}  // namespace
