#include "ReelCore/Models/CameraFormat.h"

#include "ReelCore/Platform/Fatal.h"
#include "ReelCore/Platform/Text.h"

#include <algorithm>
#include <array>
#include <set>

namespace ReelCore {

std::string_view rawValue(CameraFormat format) {
    switch (format) {
        case CameraFormat::red:
            return "RED";
        case CameraFormat::arri:
            return "ARRI";
        case CameraFormat::sony:
            return "Sony";
        case CameraFormat::blackmagic:
            return "Blackmagic";
        case CameraFormat::canon:
            return "Canon";
        case CameraFormat::panasonic:
            return "Panasonic";
        case CameraFormat::generic:
            return "Generic";
    }
    fatal("no such camera format");
}

template <>
std::span<const CameraFormat> allCases<CameraFormat>() {
    static constexpr std::array cases{CameraFormat::red,    CameraFormat::arri,
                                      CameraFormat::sony,   CameraFormat::blackmagic,
                                      CameraFormat::canon,  CameraFormat::panasonic,
                                      CameraFormat::generic};
    return cases;
}

CameraFormat detect(const std::vector<std::string>& topLevelNames) {
    std::set<std::string> names;
    for (const std::string& name : topLevelNames) names.insert(Text::upperCased(name));
    const auto holds = [&](const char* name) { return names.contains(name); };
    const auto anyEndsIn = [&](const char* ending) {
        return std::any_of(names.begin(), names.end(),
                           [&](const std::string& name) { return name.ends_with(ending); });
    };
    // The order decides: Canon and Blackmagic cards both hold "DCIM".
    if (anyEndsIn(".RDC") || holds("RDC")) return CameraFormat::red;
    if (holds("AVID_MEDIAFILES") || anyEndsIn(".ARI")) return CameraFormat::arri;
    if (holds("PRIVATE") && holds("AVF_INFO")) return CameraFormat::sony;
    if (holds("XDROOT")) return CameraFormat::sony;
    if (holds("CLIP") && holds("SUB")) return CameraFormat::sony;
    if (holds("DCIM") && holds("CLIPS001")) return CameraFormat::blackmagic;
    if (holds("CONTENTS") && holds("AVCHD")) return CameraFormat::panasonic;
    if (holds("DCIM") && holds("MISC")) return CameraFormat::canon;
    return CameraFormat::generic;
}

}  // namespace ReelCore
