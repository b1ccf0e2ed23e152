#include "ReelCore/Vision/SlateParser.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

using Lines = std::vector<std::string>;
using Field = std::optional<std::string>;

constexpr auto none = std::nullopt;

/// A text of one line and what a field of it is to be.
struct Case {
    const char* line;
    Field expected;
};

void expectField(Field SlateInfo::*field, std::initializer_list<Case> cases) {
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(SlateParser::parse({line}).*field, expected) << line;
    }
}

TEST(SlateParser, SceneTakeAndRoll_AreThreeFields) {
    const SlateInfo slate = SlateParser::parse({"SCENE 12A", "TAKE 3", "ROLL A004"});

    EXPECT_EQ(slate.scene, "12A");
    EXPECT_EQ(slate.take, "3");
    EXPECT_EQ(slate.roll, "A004");
    EXPECT_EQ(slate.fieldCount(), 3);
    EXPECT_EQ(slate.summary(), "Sc 12A · Tk 3 · Roll A004");
}

TEST(SlateParser, NoLines_AreAnEmptySlate) {
    EXPECT_EQ(SlateParser::parse({}), SlateInfo());
    EXPECT_EQ(SlateParser::parse({"", " ", "\t"}), SlateInfo());
}

TEST(SlateParser, Lines_AreTrimmedAndEmptyOnesDropped) {
    EXPECT_EQ(SlateParser::parse({" \tA  b\t ", "", "  ", "\n", "c\xFF"}).rawLines,
              (Lines{"A  b", "\n", "c\uFFFD"}));
}

TEST(SlateParser, LabelAndValue_MayStandOnTwoLines) {
    const SlateInfo slate =
        SlateParser::parse({"SCENE", "12A", "TAKE:", "  3", "DATE", "", "11 MAR 2024"});

    EXPECT_EQ(slate.scene, "12A");
    EXPECT_EQ(slate.take, "3");
    EXPECT_EQ(slate.date, "11 MAR 2024");
}

TEST(SlateParser, Roll_IsUpToFourLettersAndFourDigits) {
    expectField(&SlateInfo::roll, {{"ROLL A004", "A004"},
                                   {"roll: a004", "a004"},
                                   {"ROLL. #12", "12"},
                                   {"CAM ROLL B12C", "B12C"},
                                   {"CAMERAROLL 7", "7"},
                                   {"ROLL ABCD1234E", "ABCD1234E"},
                                   {"ROLL 12345", "1234"},
                                   {"ROLL ABCDE1", none},
                                   {"ROLL", none},
                                   {"ROLL: :1", none},
                                   {"PAYROLL 3", "3"}});
}

TEST(SlateParser, Scene_IsANumberAndALetter) {
    expectField(&SlateInfo::scene, {{"SCENE 12A", "12A"},
                                    {"Scn. 7", "7"},
                                    {"SC:003b", "003b"},
                                    {"SC #9", "9"},
                                    {"SCENE 12AB", "12A"},
                                    {"SCENE A12", none},
                                    {"OBSCENE 3", none},
                                    {"SCENES 3", none},
                                    {"SC3", none}});
}

TEST(SlateParser, Take_IsANumberAndALetter) {
    expectField(&SlateInfo::take, {{"TAKE 3", "3"},
                                   {"take 7", "7"},
                                   {"TK. 12B", "12B"},
                                   {"TK # 4", "4"},
                                   {"TAKEN 3", none},
                                   {"MISTAKE 3", none},
                                   {"TAKE THREE", none}});
}

TEST(SlateParser, Director_EndsBeforeWhatIsNoName) {
    expectField(&SlateInfo::director, {{"DIRECTOR: JANE ROE", "JANE ROE"},
                                       {"DIR. J. O'Neil-Roe ", "J. O'Neil-Roe"},
                                       {"DIRECTOR JANE ROE 2", "JANE ROE"},
                                       {"DIRECTOR J", none},
                                       {"DIRECTOR 3", none},
                                       {"DIRECTORY JANE", none}});
    EXPECT_EQ(SlateParser::parse({"DIRECTOR JANE ROE", "TAKE 3"}).director, "JANE ROE");
    EXPECT_EQ(SlateParser::parse({"DIR " + std::string(60, 'x')}).director, std::string(41, 'x'));
}

TEST(SlateParser, Camera_IsTheCameraOrWhoIsBehindIt) {
    expectField(&SlateInfo::camera, {{"DP: JANE ROE", "JANE ROE"},
                                     {"D.P. JANE ROE", "JANE ROE"},
                                     {"CINEMATOGRAPHER JANE ROE", "JANE ROE"},
                                     {"CAMERA: B", none},
                                     {"CAMERA: BX", "BX"},
                                     {"CAM: BX", none},
                                     {"CAMERAS BX", none}});
}

TEST(SlateParser, CameraRoll_IsARollAndACamera) {
    const SlateInfo slate = SlateParser::parse({"CAMERA ROLL A001"});

    EXPECT_EQ(slate.roll, "A001");
    EXPECT_EQ(slate.camera, "ROLL A");
}

TEST(SlateParser, Production_MayHaveDigits) {
    expectField(&SlateInfo::production, {{"PRODUCTION: NIGHT HARBOR", "NIGHT HARBOR"},
                                         {"PROD. 24 Hours", "24 Hours"},
                                         {"TITLE Roe's", "Roe's"},
                                         {"SHOW #7B", "7B"},
                                         {"PRODUCT X1", none},
                                         {"SHOWER X1", none}});
}

TEST(SlateParser, FPS_StandsBeforeOrBehindItsLabel) {
    expectField(&SlateInfo::fps, {{"23.98 FPS", "23.98"},
                                  {"24P", "24"},
                                  {"24 p", "24"},
                                  {"29.97fps", "29.97"},
                                  {"FRAME RATE: 25", "25"},
                                  {"FRAMERATE 25", "25"},
                                  {"FPS 59.94", "59.94"},
                                  {"FPS: 8", none},
                                  {"24PX", none},
                                  {"24.5678 FPS", "78"},
                                  {"120 FPS", "20"}});
    EXPECT_EQ(SlateParser::parse({"FPS 24", "30 FPS"}).fps, "30")
        << "a value before its label wins";
}

TEST(SlateParser, Date_IsWhatStandsBehindItsLabel) {
    expectField(&SlateInfo::date, {{"DATE: 11 MAR 2024", "11 MAR 2024"},
                                   {"DATE 2024-03-11", "2024-03-11"},
                                   {"DATE 3/11", none},
                                   {"DATE 3/1/24", "3/1/24"},
                                   {"UPDATE 11 MAR 2024", none}});
    EXPECT_EQ(SlateParser::parse({"DATE " + std::string(40, '1')}).date, std::string(21, '1'));
}

TEST(SlateParser, DateWithoutLabel_IsThreeNumbers) {
    expectField(&SlateInfo::date, {{"2024-03-11", "2024-03-11"},
                                   {"11.3.24", "11.3.24"},
                                   {"3/11/2024 x", "3/11/2024"},
                                   {"2024-03", none},
                                   {"12345-03-11", none},
                                   {"2024 03 11", none}});
    EXPECT_EQ(SlateParser::parse({"1.2.03", "DATE 4 MAY 2005"}).date, "4 MAY 2005");
}

TEST(SlateParser, SceneAndTakeInOne_FillWhatIsMissing) {
    for (const char* line : {"SC/TK 12-3", "SCENE / TAKE: 12/3", "sc / tk 12 - 3"}) {
        const SlateInfo slate = SlateParser::parse({line});
        EXPECT_EQ(slate.scene, "12") << line;
        EXPECT_EQ(slate.take, "3") << line;
    }
}

TEST(SlateParser, SceneAndTakeInOne_ReplaceNothing) {
    const SlateInfo slate = SlateParser::parse({"SCENE 12A", "SCENE/TAKE 14-3"});
    EXPECT_EQ(slate.scene, "12A");
    EXPECT_EQ(slate.take, "3");

    const SlateInfo other = SlateParser::parse({"SC/TK 14B-3", "TK 9"});
    EXPECT_EQ(other.scene, "14B");
    EXPECT_EQ(other.take, "9");
}

TEST(SlateParser, FirstOfTwo_Wins) {
    EXPECT_EQ(SlateParser::parse({"TAKE 3", "TAKE 4"}).take, "3");
}

TEST(SlateParser, LongLines_AreReadOrLeftWithinMoments) {
    const std::string label = "ROLL SCENE TAKE DIRECTOR CAMERA TITLE FPS DATE SC/TK FRAME";
    const std::string blanks(1'000'000, ' ');

    EXPECT_EQ(SlateParser::parse({label + blanks + "x"}).fieldCount(), 4);
    EXPECT_EQ(SlateParser::parse({std::string(1'000'000, '1')}).fieldCount(), 0);
    EXPECT_EQ(SlateParser::parse({std::string(1'000'000, 'x') + " TAKE 3"}).take, "3");
}

}  // namespace

}  // namespace ReelCore
