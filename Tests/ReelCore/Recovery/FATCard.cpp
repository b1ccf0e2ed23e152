#include "MemoryCard.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <fstream>
#include <regex>

namespace TestSupport {

namespace {

using ReelCore::URL;

/// What the boot sector says of the rest. Bytes.
struct Geometry {
    std::int64_t clusterSize;
    std::int64_t data;  ///< Where the clusters begin, of which the first has the number 2.
    std::int64_t rootCluster;

    std::int64_t offsetOf(std::int64_t cluster) const { return data + (cluster - 2) * clusterSize; }
};

Geometry geometryOf(const URL& image) {
    std::string sector(512, '\0');
    std::ifstream(image, std::ios::binary).read(sector.data(), std::ssize(sector));
    const auto number = [&](std::size_t at, std::size_t bytes) {
        std::int64_t value = 0;
        for (std::size_t i = bytes; i-- > 0;) {
            value = value << 8U | static_cast<unsigned char>(sector[at + i]);
        }
        return value;
    };
    const std::int64_t sectorSize = number(11, 2);
    const std::int64_t tables = number(16, 1) * number(36, 4);
    return {number(13, 1) * sectorSize, (number(14, 2) + tables) * sectorSize, number(44, 4)};
}

class FATCard : public MemoryCard {
public:
    FATCard() {
        writeFile(image(), "");
        std::filesystem::resize_file(image(), static_cast<std::uintmax_t>(mebibytes) << 20U);
        outputOf("mkfs.vfat", {"-F", "32", "-s", "4", image().native()});
    }

    URL image() const override { return folder_.path() / "image"; }

    void add(const URL& file) override {
        outputOf("mcopy", {"-i", image().native(), file.native(), "::"});
    }

    void remove(const std::string& name) override {
        outputOf("mdel", {"-i", image().native(), "::" + name});
    }

    void fill() override {
        const std::string mebibyte = noise(1U << 20U);
        const URL filler = folder_.path() / ("FILL" + std::to_string(++fills_));
        std::ofstream file(filler, std::ios::binary);
        for (std::int64_t left = room(); left > 0; left -= std::ssize(mebibyte)) {
            file.write(mebibyte.data(), std::min(left, std::ssize(mebibyte)));
        }
        file.close();
        add(filler);
        std::filesystem::remove(filler);
    }

    void overwriteHead(const std::string& victim, const URL& by) override {
        remove(victim);
        add(by);
    }

    std::vector<Stretch> layoutOf(const std::string& name) const override {
        const std::string said = outputOf("mshowfat", {"-i", image().native(), "::" + name});
        const Geometry geometry = geometryOf(image());
        const std::regex clusters(R"(<(\d+)(?:-(\d+))?>)");
        std::vector<Stretch> layout;
        std::int64_t left = sizeOf(name);
        for (std::sregex_iterator match(said.begin(), said.end(), clusters), end; match != end;
             ++match) {
            const std::int64_t first = std::stoll((*match)[1]);
            const std::int64_t last = (*match)[2].matched ? std::stoll((*match)[2]) : first;
            const auto length = std::min(left, (last - first + 1) * geometry.clusterSize);
            left -= length;
            layout.push_back({geometry.offsetOf(first), length});
        }
        return layout;
    }

    void die() override {
        const Geometry geometry = geometryOf(image());
        wipe({0, geometry.data});
        wipe({geometry.offsetOf(geometry.rootCluster), geometry.clusterSize});
    }

    bool isReadable() const override {
        return runTool("mdir", {"-i", image().native(), "::"}).status == 0;
    }

private:
    std::string listing(const std::string& path) const {
        return outputOf("mdir", {"-i", image().native(), path});
    }

    std::int64_t sizeOf(const std::string& name) const {
        const std::string said = listing("::" + name);
        std::smatch match;
        if (!std::regex_search(said, match, std::regex(R"( +(\d+) \d{4}-\d\d-\d\d)"))) {
            throw std::runtime_error("no size in: " + said);
        }
        return std::stoll(match[1]);
    }

    std::int64_t room() const {
        const std::string said = listing("::");
        std::smatch match;
        if (!std::regex_search(said, match, std::regex(R"(([\d ]+) bytes free)"))) {
            throw std::runtime_error("no room in: " + said);
        }
        return std::stoll(std::regex_replace(match[1].str(), std::regex(" "), ""));
    }

    TemporaryFolder folder_;
    int fills_ = 0;
};

}  // namespace

std::unique_ptr<MemoryCard> makeFATCard() {
    return std::make_unique<FATCard>();
}

}  // namespace TestSupport
