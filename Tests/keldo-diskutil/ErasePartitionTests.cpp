#include "ErasableCard.h"
#include "Support/LoopMount.h"
#include "Support/SystemServices.h"
#include "Support/Tool.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace keldo_diskutil {

namespace {

using ReelCore::URL;
using testing::HasSubstr;

using testing::StartsWith;
using TestSupport::outputOf;

using TestSupport::readTree;
using TestSupport::runTool;
using TestSupport::SystemServices;
using TestSupport::TemporaryFolder;

/// A disk with two partitions of 16 MiB, each with a file system that holds the card's files. The
/// kernel is told of them, since it may be built to read no partition tables itself.
class PartitionedDisk {
public:
    PartitionedDisk() {
        TestSupport::writeTree(folder_.path() / "content", cardFiles());
        TestSupport::writeFile(image(), "");
        std::filesystem::resize_file(image(), 40U << 20U);
        TestSupport::writeFile(folder_.path() / "table", "label: dos\n,16M,83\n,16M,83\n");
        outputOf("sh", {"-c", "sfdisk --quiet \"$1\" < \"$2\"", "sh", image().native(),
                        (folder_.path() / "table").native()});
        node_ = outputOf("losetup", {"--find", "--show", "--partscan", image().native()});
        node_.erase(node_.find('\n'));
        outputOf("partx", {"--update", node_});
        for (const int number : {1, 2}) {
            outputOf("mkfs.ext4", {"-q", "-d", folder_.path() / "content", partition(number)});
        }
    }
    ~PartitionedDisk() {
        for (const int number : {1, 2}) runTool("umount", {"--all-targets", partition(number)});
        SystemServices::settle();
        runTool("losetup", {"-d", node_});
    }
    PartitionedDisk(const PartitionedDisk&) = delete;
    PartitionedDisk& operator=(const PartitionedDisk&) = delete;

    std::string partition(int number) const { return node_ + "p" + std::to_string(number); }

    URL mountPoint(int number) const { return folder_.path() / std::to_string(number); }

    void mount(int number) const {
        std::filesystem::create_directories(mountPoint(number));
        outputOf("mount", {"-o", "noatime", partition(number), mountPoint(number).native()});
    }

    /// All bytes of the partition, as they stand on the disk.
    std::string checksum(int number) const {
        ::sync();
        return outputOf("sha256sum", {partition(number)});
    }

    /// The line of the partition table for this partition.
    std::string entry(int number) const {
        const std::string table = outputOf("sfdisk", {"--dump", node_});
        const auto begin = table.find(partition(number));
        return table.substr(begin, table.find('\n', begin) - begin);
    }

private:
    URL image() const { return folder_.path() / "image"; }

    TemporaryFolder folder_;
    std::string node_;
};

class ErasePartition : public testing::Test {
protected:
    void SetUp() override {
        const std::string reason = SystemServices::missing();
        if (!reason.empty()) GTEST_SKIP() << reason;
        for (const char* tool : {"sfdisk", "partx"}) {
            if (!TestSupport::hasTool(tool)) GTEST_SKIP() << "needs " << tool;
        }
    }
};

TEST_F(ErasePartition, OneOfTwo_LeavesTheOtherAndItsEntryAsTheyAre) {
    const SystemServices services;
    const PartitionedDisk disk;
    SystemServices::settle();
    disk.mount(2);
    const std::string bytes = disk.checksum(1);
    const std::string entry = disk.entry(1);

    const std::string said = erase(disk.mountPoint(2), "A001", FileSystem::fat32);

    EXPECT_THAT(said, StartsWith(disk.partition(2) + " is erased as MS-DOS FAT32"));
    EXPECT_THAT(outputOf("blkid", {"-p", disk.partition(2)}), HasSubstr("TYPE=\"vfat\""));
    EXPECT_EQ(disk.checksum(1), bytes);
    EXPECT_EQ(disk.entry(1), entry);
    disk.mount(1);
    EXPECT_EQ(readTree(disk.mountPoint(1)), cardFiles());
}

TEST_F(ErasePartition, OneOfTwoWithTheOtherMounted_LeavesThatMounted) {
    const SystemServices services;
    const PartitionedDisk disk;
    SystemServices::settle();
    disk.mount(1);
    disk.mount(2);
    const std::string entry = disk.entry(2);

    erase(disk.mountPoint(1), "A001", FileSystem::fat32);

    EXPECT_EQ(readTree(disk.mountPoint(2)), cardFiles());
    EXPECT_EQ(disk.entry(2), entry);
    EXPECT_THAT(outputOf("blkid", {"-p", disk.partition(2)}), HasSubstr("TYPE=\"ext4\""));
}

}  // namespace

}  // namespace keldo_diskutil
