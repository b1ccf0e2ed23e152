#include "MemoryCard.h"

#include <fstream>
#include <stdexcept>

namespace TestSupport {

void MemoryCard::wipe(const Stretch& run) const {
    std::fstream file(image(), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(run.offset);
    const std::string zeros(static_cast<std::size_t>(run.length), '\0');
    file.write(zeros.data(), std::ssize(zeros)).flush();
    if (!file) throw std::runtime_error("can't wipe " + image().native());
}

}  // namespace TestSupport
