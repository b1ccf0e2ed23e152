#pragma once

#include "ReelCore/Transcode/TranscodeTypes.h"
#include "Support/Clip.h"
#include "Support/ToolFixture.h"

#include <filesystem>
#include <string>

namespace ReelCore {

/// A LUT that makes every colour this one, red, green and blue from 0 to 1.
inline std::string flatCube(const std::string& colour) {
    std::string text = "LUT_3D_SIZE 2\n";
    for (int i = 0; i < 8; ++i) text += colour + "\n";
    return text;
}

class TranscodeFixture : public TestSupport::ToolFixture {
protected:
    URL clip(const std::string& name, const TestSupport::ClipRecipe& recipe = {}) const {
        std::filesystem::create_directories((folder() / name).parent_path());
        TestSupport::makeClip(folder() / name, recipe);
        return folder() / name;
    }

    /// A job that needs no real clip, for a fake ffmpeg.
    TranscodeRequest anyJob() const {
        TestSupport::writeFile(folder() / "in/A001.mov", "picture");
        return {folder() / "in/A001.mov", folder() / "out", TranscodePreset::proRes422, {}, {}};
    }
};

inline void ignoreProgress(const TranscodeProgress&) {}

}  // namespace ReelCore
