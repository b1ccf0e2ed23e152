#include "ReelCore/Platform/AlignedBuffer.h"

#include <cstdint>
#include <limits>
#include <new>

#include <gtest/gtest.h>

using namespace ReelCore;

TEST(AlignedBuffer, Size_IsWholePagesAndNeverNone) {
    for (const auto& [wanted, given] : {std::pair{0U, 4096U}, {1U, 4096U}, {4097U, 8192U}}) {
        const AlignedBuffer buffer(wanted);

        EXPECT_EQ(buffer.bytes().size(), given);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(buffer.bytes().data()) % 4096, 0U);
    }
}

TEST(AlignedBuffer, SizeThatNoMemoryHas_IsBadAlloc) {
    constexpr std::size_t largest = std::numeric_limits<std::size_t>::max();

    EXPECT_THROW(AlignedBuffer{largest}, std::bad_alloc);
    EXPECT_THROW(AlignedBuffer{largest - 4095}, std::bad_alloc);
}
