#include "ErasableCard.h"

#include <stdexcept>
#include <utility>

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
                  FileSystem fileSystem, std::optional<ReelCore::HeldCard> card) {
    const CardFormatter::FormatGate open{true, "proved", 2};
    return CardFormatter::execute(CardFormatter::plan(mountPoint, newName, fileSystem), open, true,
                                  false, std::move(card));
}

std::string failureOf(const ReelCore::URL& mountPoint, const std::string& newName,
                      FileSystem fileSystem, std::optional<ReelCore::HeldCard> card) {
    try {
        const std::string said = erase(mountPoint, newName, fileSystem, std::move(card));
        throw std::logic_error("erased: " + said);
    } catch (const CardFormatter::FormatError& error) {
        return error.get<CardFormatter::FormatError::DiskutilFailed>()->output;
    }
}

}  // namespace keldo_diskutil
