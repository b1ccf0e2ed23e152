#include "ReelCore/Platform/MountTable.h"

#include "Require.h"

#include <algorithm>

using namespace ReelCore;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(textOf(data, size));

    const std::vector<Mount> table = parseMountTable(text);

    REQUIRE(std::ssize(table) <= std::ranges::count(text, '\n') + 1);
    for (const Mount& mount : table) {
        const auto found = mountOf(mount.mountPoint, table);
        REQUIRE(found && hasPathPrefix(mount.mountPoint, found->mountPoint));
        REQUIRE(hasPathPrefix(found->mountPoint, mount.mountPoint));
    }
    return 0;
}
