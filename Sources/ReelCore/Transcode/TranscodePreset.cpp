#include "ReelCore/Transcode/TranscodePreset.h"

#include <array>

namespace ReelCore {

namespace {

const std::vector<std::string> pcm{"-c:a", "pcm_s16le"};

TranscodePreset proRes(std::string id, std::string name, std::string profile) {
    return {std::move(id),
            std::move(name),
            "Resolve / Premiere",
            "mov",
            {"-c:v", "prores_ks", "-profile:v", std::move(profile)},
            pcm,
            "yuv422p10le"};
}

TranscodePreset dnxhr(std::string id, std::string name) {
    return {id,  std::move(name), "Avid", "mov", {"-c:v", "dnxhd", "-profile:v", id},
            pcm, "yuv422p"};
}

}  // namespace

const TranscodePreset TranscodePreset::proResProxy =
    proRes("prores_proxy", "ProRes 422 Proxy", "0");
const TranscodePreset TranscodePreset::proRes422 = proRes("prores_422", "ProRes 422", "2");
const TranscodePreset TranscodePreset::proRes422HQ = proRes("prores_422hq", "ProRes 422 HQ", "3");
const TranscodePreset TranscodePreset::dnxhrLB = dnxhr("dnxhr_lb", "DNxHR LB");
const TranscodePreset TranscodePreset::dnxhrHQ = dnxhr("dnxhr_hq", "DNxHR HQ");
const TranscodePreset TranscodePreset::h264Review{
    "h264_review",
    "H.264 Review",
    "Review",
    "mp4",
    {"-c:v", "libx264", "-crf", "23", "-preset", "medium"},
    {"-c:a", "aac", "-b:a", "192k"},
    "yuv420p"};

std::span<const TranscodePreset> TranscodePreset::all() {
    static const std::array presets{proResProxy, proRes422, proRes422HQ,
                                    dnxhrLB,     dnxhrHQ,   h264Review};
    return presets;
}

}  // namespace ReelCore
