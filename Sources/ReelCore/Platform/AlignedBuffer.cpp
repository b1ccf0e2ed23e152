#include "ReelCore/Platform/AlignedBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

namespace ReelCore {

namespace {

std::size_t wholePages(std::size_t size) {
    if (size > std::numeric_limits<std::size_t>::max() - AlignedBuffer::alignment) {
        throw std::bad_alloc();
    }
    const auto pages = (size + AlignedBuffer::alignment - 1) / AlignedBuffer::alignment;
    return std::max<std::size_t>(pages, 1) * AlignedBuffer::alignment;
}

}  // namespace

AlignedBuffer::AlignedBuffer(std::size_t minimumSize)
    : size_(wholePages(minimumSize)),
      memory_(static_cast<std::byte*>(std::aligned_alloc(alignment, size_))) {
    if (!memory_) throw std::bad_alloc();
}

void AlignedBuffer::Free::operator()(std::byte* memory) const {
    std::free(memory);
}

}  // namespace ReelCore
