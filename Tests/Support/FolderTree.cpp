#include "Support/FolderTree.h"

#include "ReelCore/Platform/SystemError.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace TestSupport {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
    std::string name = (fs::temp_directory_path() / "keldo-test-XXXXXX").native();
    if (!::mkdtemp(name.data())) ReelCore::throwSystemError(name);
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
}

void writeFile(const ReelCore::URL& path, std::string_view content) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) throw std::runtime_error("could not write " + path.native());
}

std::string readFile(const ReelCore::URL& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("could not read " + path.native());
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeTree(const ReelCore::URL& folder, const FolderTree& tree) {
    fs::create_directories(folder);
    for (const auto& [path, content] : tree) writeFile(folder / path, content);
}

FolderTree readTree(const ReelCore::URL& folder) {
    FolderTree tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file() || entry.is_symlink()) continue;
        tree[entry.path().lexically_relative(folder).native()] = readFile(entry.path());
    }
    return tree;
}

std::string noise(std::size_t size, unsigned seed) {
    std::mt19937_64 random(seed);
    std::string bytes(size + sizeof(std::uint64_t), '\0');
    for (std::size_t at = 0; at < size; at += sizeof(std::uint64_t)) {
        const std::uint64_t word = random();
        bytes.replace(at, sizeof word, reinterpret_cast<const char*>(&word), sizeof word);
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace TestSupport
