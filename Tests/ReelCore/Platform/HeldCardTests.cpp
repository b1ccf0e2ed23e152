#include "ReelCore/Platform/HeldCard.h"

#include "ReelCore/Platform/CardHandover.h"
#include "ReelCore/Platform/SystemError.h"
#include "Support/Forked.h"
#include "Support/LoopMount.h"
#include "Support/Tool.h"

#include <array>
#include <functional>
#include <utility>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

using ReelCore::CardHandover;
using ReelCore::HeldCard;
using ReelCore::Medium;
using TestSupport::LoopMount;
using TestSupport::outputOf;
using TestSupport::runTool;
using TestSupport::TemporaryFolder;

namespace fs = std::filesystem;

namespace {

std::string deviceOf(const ReelCore::URL& path) {
    const std::string device = outputOf("findmnt", {"-n", "-o", "MAJ:MIN", "--target", path});
    const auto first = device.find_first_not_of(' ');
    return device.substr(first, device.find_last_not_of(" \n") + 1 - first);
}

/// What a program would receive whose standard input is `descriptor`: the exit status of `look`,
/// 99 for nothing, or 98 for a card that got lost on the way.
int statusOfReceiver(int descriptor, const std::function<bool(const HeldCard&)>& look) {
    return TestSupport::statusOfForked([&] {
        ::dup2(descriptor, STDIN_FILENO);
        try {
            const auto card = CardHandover::received();
            if (!card) return 99;
            return look(*card) ? 0 : 1;
        } catch (const ReelCore::SystemError&) {
            return 98;
        }
    });
}

}  // namespace

TEST(HeldCard, OtherFolderInItsPlace_IsNotTheCard) {
    const TemporaryFolder folder;
    fs::create_directory(folder.path() / "card");
    const HeldCard held(folder.path() / "card");
    EXPECT_TRUE(held.isAt(folder.path() / "card"));
    EXPECT_FALSE(held.isAt(folder.path()));

    fs::rename(folder.path() / "card", folder.path() / "elsewhere");
    EXPECT_FALSE(held.isAt(folder.path() / "card"));
    fs::create_directory(folder.path() / "card");
    EXPECT_FALSE(held.isAt(folder.path() / "card"));
}

TEST(HeldCard, MissingFolderOrFile_IsRefused) {
    const TemporaryFolder folder;
    TestSupport::writeFile(folder.path() / "file", "");

    EXPECT_THROW(HeldCard(folder.path() / "gone"), ReelCore::SystemError);
    EXPECT_THROW(HeldCard(folder.path() / "file"), ReelCore::SystemError);
}

class HeldCardInAReader : public testing::Test {
protected:
    void SetUp() override {
        if (!LoopMount::isAvailable()) GTEST_SKIP() << "needs root and loop devices";
    }
};

TEST_F(HeldCardInAReader, Unmounting_IsRefusedAsLongAsItIsHeld) {
    LoopMount reader("ext4", 16);
    reader.mountAgainAt(reader.image().parent_path() / "second");
    const ReelCore::URL place = reader.image().parent_path() / "second";
    {
        HeldCard held(place);
        const HeldCard moved(std::move(held));
        EXPECT_NE(runTool("umount", {place.native()}).status, 0);
    }
    EXPECT_EQ(runTool("umount", {place.native()}).status, 0);
}

TEST_F(HeldCardInAReader, OtherCardMountedOverIt_IsNotTheCard) {
    const LoopMount reader("ext4", 16);
    const LoopMount other("ext4", 16);
    const HeldCard held(reader.path());
    {
        const TestSupport::BindMount over(other.path(), reader.path());
        EXPECT_FALSE(held.isAt(reader.path()));
    }
    EXPECT_TRUE(held.isAt(reader.path()));
}

TEST_F(HeldCardInAReader, OtherMediumInItsDrive_IsNotTheCard) {
    const LoopMount reader("ext4", 16);
    const HeldCard held(reader.path());
    EXPECT_EQ(held.medium(), Medium::of(deviceOf(reader.path())));
    EXPECT_EQ(held.medium().size, "32768");

    Medium later = held.medium();
    later.sequence += "0";
    EXPECT_FALSE(HeldCard(::dup(held.descriptor()), later).isAt(reader.path()));
    Medium larger = held.medium();
    larger.size += "0";
    EXPECT_FALSE(HeldCard(::dup(held.descriptor()), larger).isAt(reader.path()));
}

TEST_F(HeldCardInAReader, HandedOver_IsHeldOnTheWayAndArrivesWithItsMedium) {
    LoopMount reader("ext4", 16);
    const ReelCore::URL place = reader.image().parent_path() / "second";
    reader.mountAgainAt(place);
    HeldCard held(place);
    const Medium medium = held.medium();
    {
        const CardHandover handover(std::move(held));
        EXPECT_NE(runTool("umount", {place.native()}).status, 0);
        EXPECT_EQ(statusOfReceiver(handover.descriptor(),
                                   [&](const HeldCard& card) {
                                       return card.medium() == medium && card.isAt(place);
                                   }),
                  0);
    }
    EXPECT_EQ(runTool("umount", {place.native()}).status, 0);
}

TEST(CardHandover, StandardInputThatHandsNothingOver_IsNoCard) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, ends.data()), 0);
    const auto never = [](const HeldCard&) { return false; };
    EXPECT_EQ(statusOfReceiver(ends[1], never), 99) << "nothing came";
    ASSERT_EQ(::send(ends[0], "8:17\n1\n1\n", 9, 0), 9);
    EXPECT_EQ(statusOfReceiver(ends[1], never), 98) << "a note without a card";
    ::close(ends[0]);
    EXPECT_EQ(statusOfReceiver(ends[1], never), 99) << "closed";
    ::close(ends[1]);
    EXPECT_EQ(statusOfReceiver(STDERR_FILENO, never), 99);
}
