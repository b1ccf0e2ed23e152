// XXH64 as the copy uses it, in blocks of 4 MiB, beside the reference library in the same run.

#include "ReelCore/Hashing/XXH64Hasher.h"

#include <random>
#include <vector>

#include <benchmark/benchmark.h>
#include <xxhash.h>

namespace {

constexpr std::size_t blockSize = 4 << 20;
constexpr std::size_t blocks = 16;

const std::vector<std::byte>& noise() {
    static const std::vector<std::byte> bytes = [] {
        std::mt19937_64 random(1);
        std::vector<std::byte> all(blockSize * blocks);
        for (std::byte& one : all) one = static_cast<std::byte>(random());
        return all;
    }();
    return bytes;
}

template <class Feed>
void feedBlocks(benchmark::State& state, Feed feed) {
    const std::span<const std::byte> bytes = noise();
    for (auto _ : state) {
        for (std::size_t i = 0; i < blocks; ++i) feed(bytes.subspan(i * blockSize, blockSize));
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes.size()) * state.iterations());
}

void ours(benchmark::State& state) {
    ReelCore::XXH64Hasher hasher(0);
    feedBlocks(state, [&](std::span<const std::byte> block) { hasher.update(block); });
    benchmark::DoNotOptimize(hasher.finalizeHex());
}

void referenceStreaming(benchmark::State& state) {
    XXH64_state_t* hasher = XXH64_createState();
    XXH64_reset(hasher, 0);
    feedBlocks(state, [&](std::span<const std::byte> block) {
        XXH64_update(hasher, block.data(), block.size());
    });
    benchmark::DoNotOptimize(XXH64_digest(hasher));
    XXH64_freeState(hasher);
}

void referenceInOneCall(benchmark::State& state) {
    const std::vector<std::byte>& bytes = noise();
    for (auto _ : state) benchmark::DoNotOptimize(XXH64(bytes.data(), bytes.size(), 0));
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes.size()) * state.iterations());
}

BENCHMARK(ours);
BENCHMARK(referenceStreaming);
BENCHMARK(referenceInOneCall);

}  // namespace

BENCHMARK_MAIN();
