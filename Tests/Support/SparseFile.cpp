#include "Support/SparseFile.h"

#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/SystemError.h"

#include <span>

#include <unistd.h>

namespace TestSupport {

void writeSparse(const ReelCore::URL& path, const std::map<std::int64_t, std::string>& pieces,
                 std::int64_t size) {
    ReelCore::File file = ReelCore::File::create(path);
    for (const auto& [offset, bytes] : pieces) {
        file.writeAt(offset, std::as_bytes(std::span(bytes)));
    }
    if (::ftruncate(file.descriptor(), size) != 0) ReelCore::throwSystemError(path);
}

}  // namespace TestSupport
