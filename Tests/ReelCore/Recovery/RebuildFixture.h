#pragma once

#include "ReelCore/Recovery/MoovRebuilder.h"
#include "ReelCore/Recovery/RecoveryError.h"
#include "ReferenceMovie.h"
#include "Support/Boxes.h"
#include "Support/FolderTree.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace ReelCore {

/// Bytes in which nothing looks like a frame.
inline std::string sound(std::size_t size) {
    return std::string(size, 's');
}

/// Two frames with sound behind each.
inline std::string someMedia() {
    return TestSupport::proResFrame(100, 1) + sound(400) + TestSupport::proResFrame(60, 2) +
           sound(400);
}

inline std::size_t bigEndianNumber(std::string_view bytes) {
    std::size_t number = 0;
    for (const char c : bytes) number = number << 8U | static_cast<unsigned char>(c);
    return number;
}

/// A folder with a damaged clip and its reference, and the output beside it.
class MoovRebuilderFiles : public testing::Test {
protected:
    URL damaged(const std::string& content) const { return written("card/A001.MOV", content); }
    URL reference(const std::string& content) const { return written("card/A000.MOV", content); }

    /// A reference with these tracks.
    URL referenceOf(const std::vector<TestSupport::TrackRecipe>& tracks) const {
        return reference(TestSupport::fileTypeBox() + TestSupport::moovBox(tracks));
    }

    URL output() const { return folder_.path() / "A001_rebuilt.mov"; }
    const URL& folder() const { return folder_.path(); }

    /// The output of a rebuild, box by box at its top level.
    std::vector<std::string> rebuilt(const URL& damaged, const URL& reference) const {
        MoovRebuilder::rebuild(damaged, reference, output());
        return boxesIn(TestSupport::readFile(output()));
    }

    std::string failureOf(const URL& damaged, const URL& reference) const {
        try {
            MoovRebuilder::rebuild(damaged, reference, output());
        } catch (const RecoveryError& error) {
            return error.description();
        }
        return "no failure";
    }

private:
    URL written(const std::string& name, const std::string& content) const {
        TestSupport::writeFile(folder_.path() / name, content);
        return folder_.path() / name;
    }

    static std::vector<std::string> boxesIn(const std::string& file) {
        std::vector<std::string> boxes;
        for (std::size_t at = 0; at + 8 <= file.size();) {
            std::size_t size = bigEndianNumber(file.substr(at, 4));
            if (size == 1) size = bigEndianNumber(file.substr(at + 8, 8));
            boxes.push_back(file.substr(at, size));
            at += size;
        }
        return boxes;
    }

    TestSupport::TemporaryFolder folder_;
};

}  // namespace ReelCore
