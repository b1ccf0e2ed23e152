#pragma once

#include "ReelCore/Platform/URL.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace ReelCore {

/// Where the tests' nets stand.
inline URL detectorModels() {
    return URL(std::getenv("HOME")) / ".cache/keldobay-transcript/keldobay/models/vision";
}

/// Why there are none; empty where there are.
inline std::string detectorModelsMissing() {
    for (const char* name : {"blazeface.onnx", "nanodet.onnx"}) {
        if (!std::filesystem::exists(detectorModels() / name)) return std::string("needs ") + name;
    }
    return {};
}

}  // namespace ReelCore
