#include "ReelCore/Hashing/XXH64Hasher.h"
#include "Require.h"

#include <algorithm>

// The first bytes say where the stream is cut; the hash must not know.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span<const std::byte> stream = std::as_bytes(std::span(data, size));
    ReelCore::XXH64Hasher whole(size);
    whole.update(stream);

    ReelCore::XXH64Hasher cut(size);
    std::size_t chunk = 0;
    for (auto rest = stream; !rest.empty(); ++chunk) {
        const std::size_t length = std::min<std::size_t>(data[chunk] % 97, rest.size());
        cut.update(rest.first(length));
        cut.finalizeHex();
        rest = rest.subspan(length);
        if (chunk + 1 == size) {
            cut.update(rest);
            break;
        }
    }

    REQUIRE(cut.finalizeHex() == whole.finalizeHex());
    return 0;
}
