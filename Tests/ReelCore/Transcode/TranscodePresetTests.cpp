#include "ReelCore/Transcode/TranscodePreset.h"

#include <gtest/gtest.h>

namespace ReelCore {

namespace {

const std::vector<std::string> pcm{"-c:a", "pcm_s16le"};

/// Read before `main`, maybe also before the library's own constants are there.
const auto presetsAtStart = TranscodePreset::all();

TEST(TranscodePreset, ReadBeforeMain_AreWhole) {
    const std::vector<TranscodePreset> presets(presetsAtStart.begin(), presetsAtStart.end());

    EXPECT_EQ(presets, (std::vector<TranscodePreset>{
                           TranscodePreset::proResProxy, TranscodePreset::proRes422,
                           TranscodePreset::proRes422HQ, TranscodePreset::dnxhrLB,
                           TranscodePreset::dnxhrHQ, TranscodePreset::h264Review}));
    for (const TranscodePreset& preset : presetsAtStart) {
        EXPECT_NE(preset.id, "");
        EXPECT_EQ(preset.videoArgs.at(0), "-c:v") << preset.id;
        EXPECT_EQ(preset.audioArgs.at(0), "-c:a") << preset.id;
    }
}

TEST(TranscodePreset, All_AreTheSixInThePickersOrder) {
    std::vector<std::string> ids;
    for (const TranscodePreset& preset : TranscodePreset::all()) ids.push_back(preset.id);

    EXPECT_EQ(ids, (std::vector<std::string>{"prores_proxy", "prores_422", "prores_422hq",
                                             "dnxhr_lb", "dnxhr_hq", "h264_review"}));
}

TEST(TranscodePreset, All_HoldTheConstantsThemselves) {
    const auto all = TranscodePreset::all();
    const std::vector<TranscodePreset> presets(all.begin(), all.end());

    EXPECT_EQ(presets, (std::vector<TranscodePreset>{
                           TranscodePreset::proResProxy, TranscodePreset::proRes422,
                           TranscodePreset::proRes422HQ, TranscodePreset::dnxhrLB,
                           TranscodePreset::dnxhrHQ, TranscodePreset::h264Review}));
}

TEST(TranscodePreset, ProResProxy_IsProfile0At10Bits) {
    const TranscodePreset expected{"prores_proxy",
                                   "ProRes 422 Proxy",
                                   "Resolve / Premiere",
                                   "mov",
                                   {"-c:v", "prores_ks", "-profile:v", "0"},
                                   pcm,
                                   "yuv422p10le"};

    EXPECT_EQ(TranscodePreset::proResProxy, expected);
}

TEST(TranscodePreset, ProRes422_IsProfile2At10Bits) {
    const TranscodePreset expected{"prores_422",
                                   "ProRes 422",
                                   "Resolve / Premiere",
                                   "mov",
                                   {"-c:v", "prores_ks", "-profile:v", "2"},
                                   pcm,
                                   "yuv422p10le"};

    EXPECT_EQ(TranscodePreset::proRes422, expected);
}

TEST(TranscodePreset, ProRes422HQ_IsProfile3At10Bits) {
    const TranscodePreset expected{"prores_422hq",
                                   "ProRes 422 HQ",
                                   "Resolve / Premiere",
                                   "mov",
                                   {"-c:v", "prores_ks", "-profile:v", "3"},
                                   pcm,
                                   "yuv422p10le"};

    EXPECT_EQ(TranscodePreset::proRes422HQ, expected);
}

TEST(TranscodePreset, DNxHRLB_IsAMovieAt8Bits) {
    const TranscodePreset expected{
        "dnxhr_lb", "DNxHR LB", "Avid", "mov", {"-c:v", "dnxhd", "-profile:v", "dnxhr_lb"},
        pcm,        "yuv422p"};

    EXPECT_EQ(TranscodePreset::dnxhrLB, expected);
}

TEST(TranscodePreset, DNxHRHQ_IsAMovieAt8Bits) {
    const TranscodePreset expected{
        "dnxhr_hq", "DNxHR HQ", "Avid", "mov", {"-c:v", "dnxhd", "-profile:v", "dnxhr_hq"},
        pcm,        "yuv422p"};

    EXPECT_EQ(TranscodePreset::dnxhrHQ, expected);
}

TEST(TranscodePreset, H264Review_IsTheOneWithCompressedSound) {
    const TranscodePreset expected{"h264_review",
                                   "H.264 Review",
                                   "Review",
                                   "mp4",
                                   {"-c:v", "libx264", "-crf", "23", "-preset", "medium"},
                                   {"-c:a", "aac", "-b:a", "192k"},
                                   "yuv420p"};

    EXPECT_EQ(TranscodePreset::h264Review, expected);
}

TEST(TranscodePreset, Equality_AsksEveryField) {
    const TranscodePreset& preset = TranscodePreset::proRes422;
    std::vector<TranscodePreset> others(7, preset);
    others[0].id += "x";
    others[1].name += "x";
    others[2].editor += "x";
    others[3].container += "x";
    others[4].videoArgs.pop_back();
    others[5].audioArgs.pop_back();
    others[6].pixelFormat.reset();

    for (const TranscodePreset& other : others) EXPECT_NE(other, preset);
    EXPECT_EQ(TranscodePreset(preset), preset);
}

TEST(TranscodePreset, Editors_OfOneKindStandTogether) {
    std::vector<std::string> editors;
    for (const TranscodePreset& preset : TranscodePreset::all()) {
        if (editors.empty() || editors.back() != preset.editor) editors.push_back(preset.editor);
    }

    EXPECT_EQ(editors, (std::vector<std::string>{"Resolve / Premiere", "Avid", "Review"}));
}

}  // namespace

}  // namespace ReelCore
