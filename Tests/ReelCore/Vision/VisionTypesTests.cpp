#include "ReelCore/Vision/VisionTypes.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

TEST(SlateInfo, FieldCount_CountsFieldsAndNotLines) {
    SlateInfo slate;
    slate.rawLines = {"a", "b"};
    EXPECT_EQ(slate.fieldCount(), 0);

    std::int64_t known = 0;
    for (auto field :
         {&SlateInfo::production, &SlateInfo::roll, &SlateInfo::scene, &SlateInfo::take,
          &SlateInfo::director, &SlateInfo::camera, &SlateInfo::date, &SlateInfo::fps}) {
        slate.*field = "";
        EXPECT_EQ(slate.fieldCount(), ++known);
    }
}

TEST(SlateInfo, Summary_HasFourFieldsInOrder) {
    SlateInfo slate;
    EXPECT_EQ(slate.summary(), "");
    slate.director = "JANE ROE";
    EXPECT_EQ(slate.summary(), "Dir JANE ROE");
    slate.roll = "A004";
    slate.take = "3";
    EXPECT_EQ(slate.summary(), "Tk 3 · Roll A004 · Dir JANE ROE");
    slate.scene = "12A";
    EXPECT_EQ(slate.summary(), "Sc 12A · Tk 3 · Roll A004 · Dir JANE ROE");
}

TEST(SlateInfo, Summary_LeavesTheOthersOut) {
    SlateInfo slate;
    slate.production = slate.camera = slate.date = slate.fps = "x";

    EXPECT_EQ(slate.summary(), "");
}

struct Note {
    std::int64_t people;
    std::int64_t faces;
    std::optional<std::string> color;
    const char* expected;
};

TEST(AppearanceHint, Note_SaysWhoIsInThePicture) {
    for (const auto& [people, faces, color, expected] :
         {Note{0, 0, std::nullopt, "no person on camera at this moment"},
          Note{0, 0, "blue", "no person on camera at this moment"},
          Note{1, 0, std::nullopt, "person on camera"},
          Note{0, 1, std::nullopt, "person on camera"},
          Note{1, 1, std::nullopt, "person on camera"}, Note{1, 0, "blue", "person in blue"},
          Note{0, 2, std::nullopt, "person on camera (2 faces on camera)"},
          Note{2, 0, std::nullopt, "person on camera (2 on camera)"},
          Note{3, 2, "red", "person in red (2 faces on camera)"},
          Note{3, 1, "red", "person in red (3 on camera)"},
          Note{1, 12, "dark grey", "person in dark grey (12 faces on camera)"}}) {
        EXPECT_EQ((AppearanceHint{"Speaker 1", "01:00:00:00", people, faces, color}.note()),
                  expected);
    }
}

}  // namespace

}  // namespace ReelCore
