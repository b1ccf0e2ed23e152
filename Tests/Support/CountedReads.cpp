#include "Support/CountedReads.h"

#include "ReelCore/Platform/SystemError.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace TestSupport {

namespace {

/// The count so far, and the length of the text that tells it.
std::pair<Reads, std::int64_t> countedReads() {
    const int descriptor = ::open("/proc/thread-self/io", O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) ReelCore::throwSystemError("/proc/thread-self/io");
    std::array<char, 512> buffer{};
    const ssize_t length = ::read(descriptor, buffer.data(), buffer.size());
    ::close(descriptor);
    const std::string text(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    const auto number = [&](const std::string& name) {
        return std::stoll(text.substr(text.find(name + ": ") + name.size() + 2));
    };
    return {{number("syscr"), number("rchar")}, length};
}

}  // namespace

Reads readsOf(const std::function<void()>& action) {
    const auto [before, length] = countedReads();
    action();
    const auto [after, ignored] = countedReads();
    return {after.calls - before.calls - 1, after.bytes - before.bytes - length};
}

}  // namespace TestSupport
