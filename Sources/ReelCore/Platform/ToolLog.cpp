#include "ReelCore/Platform/ToolLog.h"

#include "ReelCore/Platform/Error.h"

#include <cstddef>
#include <span>
#include <string>

namespace ReelCore {

namespace {

constexpr std::int64_t reservedBytes = 65'536;
constexpr std::size_t blockBytes = 262'144;

}  // namespace

ToolLog::ToolLog(std::string_view prefix)
    : path_(prefix, ".log"), file_(File::create(path_.url())) {
    file_.reserve(reservedBytes);
}

ToolComplaints ToolLog::complaints() const {
    ToolComplaints complaints;
    try {
        const File file = File::openForReading(path_.url());
        std::string block(blockBytes, '\0');
        for (std::int64_t offset = 0;; offset += std::ssize(block)) {
            const auto count = file.readAt(offset, std::as_writable_bytes(std::span(block)));
            complaints.take(std::string_view(block).substr(0, count));
            if (count < block.size()) return complaints;
        }
    } catch (const Error&) {
        return complaints;
    }
}

}  // namespace ReelCore
