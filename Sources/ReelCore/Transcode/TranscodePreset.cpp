#include "ReelCore/Transcode/TranscodePreset.h"

#include <array>
#include <utility>

namespace ReelCore {

namespace {

TranscodePreset proRes(std::string id, std::string name, std::string profile) {
    return {std::move(id),
            std::move(name),
            "Resolve / Premiere",
            "mov",
            {"-c:v", "prores_ks", "-profile:v", std::move(profile)},
            {"-c:a", "pcm_s16le"},
            "yuv422p10le"};
}

TranscodePreset dnxhr(const std::string& id, std::string name) {
    return {id,
            std::move(name),
            "Avid",
            "mov",
            {"-c:v", "dnxhd", "-profile:v", id},
            {"-c:a", "pcm_s16le"},
            "yuv422p"};
}

TranscodePreset h264(std::string id, std::string name) {
    return {std::move(id),
            std::move(name),
            "Review",
            "mp4",
            {"-c:v", "libx264", "-crf", "23", "-preset", "medium"},
            {"-c:a", "aac", "-b:a", "192k"},
            "yuv420p"};
}

}  // namespace

std::span<const TranscodePreset> TranscodePreset::all() {
    static const std::array presets{
        proRes("prores_proxy", "ProRes 422 Proxy", "0"),
        proRes("prores_422", "ProRes 422", "2"),
        proRes("prores_422hq", "ProRes 422 HQ", "3"),
        dnxhr("dnxhr_lb", "DNxHR LB"),
        dnxhr("dnxhr_hq", "DNxHR HQ"),
        h264("h264_review", "H.264 Review"),
    };
    return presets;
}

const TranscodePreset TranscodePreset::proResProxy = all()[0];
const TranscodePreset TranscodePreset::proRes422 = all()[1];
const TranscodePreset TranscodePreset::proRes422HQ = all()[2];
const TranscodePreset TranscodePreset::dnxhrLB = all()[3];
const TranscodePreset TranscodePreset::dnxhrHQ = all()[4];
const TranscodePreset TranscodePreset::h264Review = all()[5];

}  // namespace ReelCore
