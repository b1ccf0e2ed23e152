#include "ErasableCard.h"

#include <stdexcept>

namespace keldo_diskutil {

using ReelCore::CardFormatter;

const TestSupport::FolderTree& cardFiles() {
    static const TestSupport::FolderTree files{
        {"PRIVATE/M4ROOT/CLIP/C0001.MP4", TestSupport::noise(300'000)},
        {"PRIVATE/M4ROOT/CLIP/C0001M01.XML", "<clip/>"},
    };
    return files;
}

std::string erase(const ReelCore::URL& mountPoint, const std::string& newName,
                  FileSystem fileSystem) {
    const CardFormatter::FormatGate open{true, "proved", 2};
    return CardFormatter::execute(CardFormatter::plan(mountPoint, newName, fileSystem), open, true,
                                  false);
}

std::string failureOf(const ReelCore::URL& mountPoint, const std::string& newName,
                      FileSystem fileSystem) {
    try {
        const std::string said = erase(mountPoint, newName, fileSystem);
        throw std::logic_error("erased: " + said);
    } catch (const CardFormatter::FormatError& error) {
        return error.get<CardFormatter::FormatError::DiskutilFailed>()->output;
    }
}

}  // namespace keldo_diskutil
