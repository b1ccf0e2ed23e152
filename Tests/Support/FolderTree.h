#pragma once

#include "ReelCore/Platform/URL.h"

#include <map>
#include <string>
#include <string_view>

namespace TestSupport {

/// A fresh folder for one test, removed with everything in it at the end.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();

    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const ReelCore::URL& path() const { return path_; }

private:
    ReelCore::URL path_;
};

/// The regular files of a folder: path below it to content. Written as a literal, a folder tree:
///
///     const FolderTree card{{"DCIM/A.MOV", "picture"}, {"DCIM/A.XML", ""}};
using FolderTree = std::map<std::string, std::string>;

/// Makes the files, and the folders they need.
void writeTree(const ReelCore::URL& folder, const FolderTree& tree);

/// All regular files below a folder with their content; links and others are left out.
FolderTree readTree(const ReelCore::URL& folder);

void writeFile(const ReelCore::URL& path, std::string_view content);
std::string readFile(const ReelCore::URL& path);

/// `size` bytes that do not repeat, the same for the same seed.
std::string noise(std::size_t size, unsigned seed = 1);

}  // namespace TestSupport
