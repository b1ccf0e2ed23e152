#pragma once

#include "ReelCore/Platform/File.h"
#include "ReelCore/Recovery/CardCarver.h"
#include "Support/FolderTree.h"

#include <cstdint>
#include <fstream>
#include <string_view>

namespace ReelCore {

/// So that a failed test says what was found.
inline void PrintTo(const Finding& finding, std::ostream* out) {
    *out << rawValue(finding.kind) << " " << finding.offset << "+" << finding.length
         << (finding.complete ? "" : " incomplete");
}

inline void PrintTo(const CarveProgress& progress, std::ostream* out) {
    *out << progress.bytesScanned << "/" << progress.totalBytes << ", " << progress.found;
}

}  // namespace ReelCore

namespace TestSupport {

/// The raw image of a card, in a folder of its own. What is never put is zero and takes no room on
/// the disk.
class CarveImage {
public:
    explicit CarveImage(std::string_view bytes = {}) {
        writeFile(path(), "");
        put(0, bytes);
    }

    void put(std::int64_t offset, std::string_view bytes) {
        std::fstream file(path(), std::ios::in | std::ios::out | std::ios::binary);
        file.seekp(offset);
        file.write(bytes.data(), std::ssize(bytes));
    }

    void resize(std::int64_t size) {
        std::filesystem::resize_file(path(), static_cast<std::uintmax_t>(size));
    }

    const ReelCore::URL& folder() const { return folder_.path(); }
    ReelCore::URL path() const { return folder() / "card.img"; }

    std::int64_t size() const {
        return static_cast<std::int64_t>(std::filesystem::file_size(path()));
    }

    ReelCore::File open() const {
        return ReelCore::File::openForReading(path(), ReelCore::FileLinks::follow);
    }

    std::vector<ReelCore::Finding> scan() const { return ReelCore::CardCarver::scan(path()); }

private:
    TemporaryFolder folder_;
};

/// Bytes in which no medium begins.
inline std::string garbage(std::size_t size) {
    return std::string(size, '\xA5');
}

}  // namespace TestSupport
