#pragma once

#include "ReelCore/Diarize/DiarizationModels.h"
#include "ReelCore/Diarize/DiarizationTypes.h"
#include "ReelCore/Platform/URL.h"

#include <string_view>
#include <vector>

namespace ReelCore {

/// Tells who speaks when, by voice: runs a python that has sherpa-onnx and numpy. Holds no state of
/// a run.
class Diarizer {
public:
    Diarizer() = default;

    bool isAvailable() const { return models.isAvailable(); }

    /// The turns of a 16-bit mono WAV at the models' sample rate (16 kHz), by their beginnings.
    /// Blocks for as long as the python runs, which yields to other work on this machine; there is
    /// no cancelling.
    ///
    /// Throws DiarizeError: PythonNotFound, ModelsMissing, InputNotFound; SherpaNotInstalled where
    /// the python lacks a package, Failed for any other end, with the last of what it said.
    /// SystemError where a temporary file can't be made or python not be started.
    std::vector<DiarizedTurn> run(const URL& wav, const DiarizationOptions& options) const;

    /// The turns of the script's output, a line each: begin and end in seconds and the number of a
    /// voice, with blanks between. Speakers are numbered in order of first appearance. All other
    /// lines are left out, and so is a turn whose times are not finite.
    static std::vector<DiarizedTurn> parseTurns(std::string_view text);

    DiarizationModels models;
};

}  // namespace ReelCore
