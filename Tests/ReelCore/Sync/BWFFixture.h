#pragma once

#include "ReelCore/Sync/BWFReader.h"
#include "Support/FolderTree.h"
#include "Support/RIFF.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

/// A folder for the recordings of one test.
class BWFTest : public testing::Test {
protected:
    ReelCore::URL at(const std::string& name) const { return folder_.path() / name; }

    /// What the reader makes of a file with these bytes.
    ReelCore::AudioClip clipOf(std::string_view bytes) const {
        TestSupport::writeFile(at("T001.WAV"), bytes);
        return ReelCore::BWFReader::read(at("T001.WAV"));
    }

    /// What it makes of a RIFF/WAVE file with these chunks.
    ReelCore::AudioClip clipOfChunks(std::string_view chunks) const {
        return clipOf(TestSupport::riffFile(chunks));
    }

    /// A clip of which this is all that is known.
    ReelCore::AudioClip bareClip(double sampleRate, double duration = 0.0) const {
        ReelCore::AudioClip clip;
        clip.url = at("T001.WAV");
        clip.duration = duration;
        clip.sampleRate = sampleRate;
        return clip;
    }

private:
    TestSupport::TemporaryFolder folder_;
};

/// A "fmt " chunk of 48 kHz, mono, 24 bit: three bytes a frame.
inline std::string plainFormat() {
    return TestSupport::riffChunk("fmt ", TestSupport::formatPayload({}));
}

inline std::string broadcastChunk(std::uint64_t timeReference) {
    return TestSupport::riffChunk("bext", TestSupport::broadcastPayload(timeReference));
}
