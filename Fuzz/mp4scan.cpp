#include "ReelCore/Recovery/MP4Scan.h"

#include "Require.h"
#include "ScratchFile.h"

using namespace ReelCore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const URL path = scratchFile("mp4scan");
    write(path, textOf(data, size));

    const auto [boxes, fileSize] = MP4Scan::topLevel(path);
    REQUIRE(fileSize == static_cast<std::int64_t>(size));
    std::int64_t end = 0;
    for (const TopLevelBox& box : boxes) {
        REQUIRE(box.offset == end && end <= fileSize - 8);
        REQUIRE(box.type.size() == 4 && box.declaredPayload >= 0);
        REQUIRE(box.headerSize == 8 || box.headerSize == 16);
        REQUIRE(!box.extendsToEOF || &box == &boxes.back());
        const bool isLast = &box == &boxes.back();
        REQUIRE(isLast || box.declaredPayload <= fileSize);
        if (!isLast) end = box.payloadOffset() + box.declaredPayload;
    }
    std::filesystem::remove(path);
    return 0;
}
