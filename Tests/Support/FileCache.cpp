#include "Support/FileCache.h"

#include "Support/Tool.h"

namespace TestSupport {

std::int64_t cachedBytes(const ReelCore::URL& file) {
    return std::stoll(
        outputOf("fincore", {"--noheadings", "--bytes", "--output", "RES", file.native()}));
}

}  // namespace TestSupport
