#include "MemoryCard.h"
#include "Support/LoopDevice.h"
#include "Support/Tool.h"

#include <fstream>
#include <regex>

namespace TestSupport {

namespace {

using ReelCore::URL;

constexpr std::int64_t blockSize = 4096;

std::int64_t roundUp(std::int64_t bytes) {
    return (bytes + blockSize - 1) / blockSize * blockSize;
}

class Ext4Card : public MemoryCard {
public:
    Ext4Card() : device_({}, mebibytes) {
        // One group of blocks has room for all clips, so that they need not be split.
        outputOf("mkfs.ext4", {"-q", "-F", "-m", "0", "-b", std::to_string(blockSize), "-E",
                               "lazy_itable_init=0,lazy_journal_init=0", device_.node().native()});
        device_.mountAt(folder_.path());
        // The kernel keeps some room back for itself, which makes a full card not quite full.
        const URL settings = "/sys/fs/ext4" / device_.node().filename();
        std::ofstream(settings / "reserved_clusters") << "0\n";
    }

    URL image() const override { return device_.image(); }

    void add(const URL& file) override {
        outputOf("cp", {file.native(), folder_.path().native()});
        sync();
    }

    void remove(const std::string& name) override {
        std::filesystem::remove(folder_.path() / name);
        sync();
    }

    void fill() override {
        const std::string mebibyte = noise(1U << 20U);
        std::ofstream file(folder_.path() / ("FILL" + std::to_string(++fills_)));
        while (file.write(mebibyte.data(), std::ssize(mebibyte)).flush()) {
        }
        file.close();
        sync();
        // The last blocks are given only to writes that go straight to the device.
        const URL rest = folder_.path() / ("REST" + std::to_string(fills_));
        runTool("dd", {"if=/dev/zero", "of=" + rest.native(), "bs=4096", "oflag=direct"});
        sync();
    }

    void overwriteHead(const std::string& victim, const URL& by) override {
        const auto size = roundUp(static_cast<std::int64_t>(std::filesystem::file_size(by)));
        outputOf("fallocate", {"--punch-hole", "--offset", "0", "--length", std::to_string(size),
                               (folder_.path() / victim).native()});
        sync();
        add(by);
        remove(victim);
    }

    std::vector<Stretch> layoutOf(const std::string& name) const override {
        const URL file = folder_.path() / name;
        const std::string said = outputOf("filefrag", {"-v", "-b1", file.native()});
        const std::regex extent(R"(\d+: +\d+\.\. *\d+: +(\d+)\.\. *\d+: +(\d+):)");
        std::vector<Stretch> layout;
        auto left = static_cast<std::int64_t>(std::filesystem::file_size(file));
        for (std::sregex_iterator match(said.begin(), said.end(), extent), end; match != end;
             ++match) {
            const std::int64_t offset = std::stoll((*match)[1]);
            const std::int64_t length = std::min(left, std::int64_t{std::stoll((*match)[2])});
            left -= length;
            const bool goesOn = !layout.empty() && layout.back().end() == offset;
            if (goesOn) {
                layout.back().length += length;
            } else {
                layout.push_back({offset, length});
            }
        }
        return layout;
    }

    void die() override {
        outputOf("umount", {folder_.path().native()});
        const std::string said = outputOf("dumpe2fs", {image().native()});
        const std::regex blocks(
            R"((?:superblock|descriptors|GDT blocks|bitmap|table) at (\d+)(?:-(\d+))?)");
        for (std::sregex_iterator match(said.begin(), said.end(), blocks), end; match != end;
             ++match) {
            const std::int64_t first = std::stoll((*match)[1]);
            const std::int64_t last = (*match)[2].matched ? std::stoll((*match)[2]) : first;
            wipe({first * blockSize, (last - first + 1) * blockSize});
        }
    }

    bool isReadable() const override {
        const std::vector<std::string> byBackup{"-o", "superblock=32768", "-o", "blocksize=4096",
                                                image().native()};
        return runTool("dumpe2fs", {image().native()}).status == 0 ||
               runTool("dumpe2fs", byBackup).status == 0;
    }

private:
    /// Room that is freed can be taken again only then.
    void sync() const { outputOf("sync", {"-f", folder_.path().native()}); }

    TemporaryFolder folder_;  ///< Where the card is mounted.
    LoopDevice device_;
    int fills_ = 0;
};

}  // namespace

std::unique_ptr<MemoryCard> makeExt4Card() {
    return std::make_unique<Ext4Card>();
}

}  // namespace TestSupport
