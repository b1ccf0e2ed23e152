#include "ReelCore/Platform/AlignedBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

#include <sys/mman.h>

namespace ReelCore {

namespace {

constexpr std::size_t hugePage = 2 << 20;

std::size_t pageFor(std::size_t size) {
    return size < hugePage ? AlignedBuffer::alignment : hugePage;
}

std::size_t wholePages(std::size_t size) {
    const std::size_t page = pageFor(size);
    if (size > std::numeric_limits<std::size_t>::max() - page) throw std::bad_alloc();
    return std::max<std::size_t>((size + page - 1) / page, 1) * page;
}

}  // namespace

AlignedBuffer::AlignedBuffer(std::size_t minimumSize)
    : size_(wholePages(minimumSize)),
      memory_(static_cast<std::byte*>(std::aligned_alloc(pageFor(size_), size_))) {
    if (!memory_) throw std::bad_alloc();
    if (size_ >= hugePage) ::madvise(memory_.get(), size_, MADV_HUGEPAGE);
}

void AlignedBuffer::Free::operator()(std::byte* memory) const {
    std::free(memory);
}

}  // namespace ReelCore
