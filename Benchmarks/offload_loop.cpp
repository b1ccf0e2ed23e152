// offload-loop SOURCE TARGET...: the reads, writes and read-backs of an offload and nothing else:
// no folders, no checksums, no looks at anything. SOURCE is a flat folder; the TARGETs are folders.
// It is the limit that this machine gives. Prints seconds.

#include "ReelCore/Platform/AlignedBuffer.h"
#include "ReelCore/Platform/DeviceReader.h"
#include "ReelCore/Platform/DriveCache.h"
#include "ReelCore/Platform/Error.h"
#include "ReelCore/Platform/File.h"
#include "ReelCore/Platform/FileSystem.h"

#include <chrono>
#include <vector>

#include <fmt/format.h>

using namespace ReelCore;

namespace {

constexpr std::size_t blockSize = 4 << 20;
constexpr std::int64_t writeBehind = 16 << 20;

void copy(const URL& source, const std::vector<URL>& targets, std::span<std::byte> buffer) {
    File input = File::openForReading(source);
    std::vector<File> outputs;
    for (const URL& target : targets) outputs.push_back(File::create(target));
    input.expectSequentialRead();
    std::int64_t position = 0;
    for (std::size_t count = input.read(buffer); count > 0; count = input.read(buffer)) {
        const bool isLong = count == buffer.size();
        const auto length = static_cast<std::int64_t>(count);
        for (File& output : outputs) {
            output.write(buffer.first(count));
            if (!isLong) continue;
            output.beginWriteback(position, length);
            if (position >= writeBehind) output.finishWriteback(position - writeBehind, length);
        }
        if (isLong) input.dropFromCache(position, length);
        position += length;
    }
}

void readBack(const URL& copy, const DriveCache& cache, std::span<std::byte> buffer,
              WorkerThread& worker) {
    DeviceReader reader(File::openForReading(copy), cache, buffer, worker);
    while (!reader.next().empty()) {
    }
}

}  // namespace

int main(int count, char* arguments[]) {
    if (count < 3) {
        fmt::print(stderr, "usage: offload-loop SOURCE TARGET...\n");
        return 2;
    }
    const URL source = arguments[1];
    try {
        const auto start = std::chrono::steady_clock::now();
        const AlignedBuffer memory(blockSize);
        WorkerThread worker;
        std::vector<HeldFolder> folders;
        std::vector<DriveCache> caches;
        for (int i = 2; i < count; ++i) {
            FileSystem::createFolders(arguments[i]);
            folders.emplace_back(arguments[i]);
            caches.emplace_back(folders.back().descriptor());
        }
        for (const std::string& name : FileSystem::names(source)) {
            std::vector<URL> targets;
            for (int i = 2; i < count; ++i) targets.push_back(URL(arguments[i]) / name);
            copy(source / name, targets, memory.bytes());
            for (std::size_t i = 0; i < targets.size(); ++i) {
                readBack(targets[i], caches[i], memory.bytes(), worker);
            }
        }
        for (const HeldFolder& folder : folders) folder.flushFileSystem();
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        fmt::print("{:.3f}\n", taken.count());
        return 0;
    } catch (const Error& error) {
        fmt::print(stderr, "{}\n", error.description());
        return 2;
    }
}
