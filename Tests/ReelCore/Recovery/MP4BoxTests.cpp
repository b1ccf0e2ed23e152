#include "ReelCore/Recovery/MP4Box.h"

#include "ReelCore/Platform/Arithmetic.h"
#include "Support/Boxes.h"
#include "Support/FolderTree.h"

#include <gtest/gtest.h>

using namespace ReelCore;
using namespace TestSupport;

namespace {

using Types = std::vector<std::string>;

MP4Box::Bytes bytesOf(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::string textOf(const MP4Box::Bytes& bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::shared_ptr<MP4Box> parsed(const std::string& type, std::string_view payload) {
    return MP4Box::parse(type, std::as_bytes(std::span(payload)));
}

std::string serialized(const MP4Box& box) {
    return textOf(box.serialize());
}

std::shared_ptr<MP4Box> leaf(const std::string& type, std::string_view payload = {}) {
    return std::make_shared<MP4Box>(type, bytesOf(payload), MP4Box::Children());
}

Types typesOf(const MP4Box::Children& children) {
    Types types;
    for (const auto& child : children) types.push_back(child->type);
    return types;
}

/// Containers one inside the other, with a leaf inside the innermost.
std::string nested(std::uint32_t levels) {
    const std::string innermost = box("free", "1234");
    const auto size = static_cast<std::uint32_t>(innermost.size());
    std::string bytes;
    for (std::uint32_t i = levels; i > 0; --i) bytes += boxHeader("trak", 8 * i + size);
    return bytes + innermost;
}

}  // namespace

TEST(MP4BoxParse, Containers_AreSevenTypes) {
    EXPECT_EQ(MP4Box::containers, (std::set<std::string, std::less<>>{
                                      "moov", "trak", "mdia", "minf", "stbl", "edts", "udta"}));
}

TEST(MP4BoxParse, Container_IsTakenApartAndHoldsNoBytes) {
    for (const std::string& type : MP4Box::containers) {
        const auto tree = parsed(type, box("free", "1") + box("skip", "12"));

        EXPECT_EQ(tree->type, type);
        EXPECT_TRUE(tree->payload.empty()) << type;
        ASSERT_EQ(typesOf(tree->children), (Types{"free", "skip"})) << type;
        EXPECT_EQ(textOf(tree->children[0]->payload), "1");
        EXPECT_EQ(textOf(tree->children[1]->payload), "12");
    }
}

TEST(MP4BoxParse, AnyOtherType_StaysWholeWhateverItsBytesLookLike) {
    for (const std::string type : {"stsd", "meta", "hdlr", "mvhd", "tkhd", "mdhd", "stts", "stsc",
                                   "stsz", "co64", "dinf", "MOOV", ""}) {
        const auto tree = parsed(type, box("trak", box("free")));

        EXPECT_EQ(tree->type, type);
        EXPECT_TRUE(tree->children.empty()) << type;
        EXPECT_EQ(textOf(tree->payload), box("trak", box("free"))) << type;
    }
}

TEST(MP4BoxParse, ContainersInContainers_BecomeATree) {
    const auto tree =
        parsed("moov", box("mvhd", "m") + box("trak", box("tkhd", "t") + box("mdia")) +
                           box("trak", box("mdia", box("minf", box("stbl", box("stsz", "s"))))));

    EXPECT_EQ(typesOf(tree->children), (Types{"mvhd", "trak", "trak"}));
    EXPECT_EQ(typesOf(tree->children[1]->children), (Types{"tkhd", "mdia"}));
    EXPECT_EQ(textOf(tree->all("trak")[1]->first({"mdia", "minf", "stbl", "stsz"})->payload), "s");
}

TEST(MP4BoxParse, EmptyContainer_HasNoChildren) {
    EXPECT_TRUE(parsed("moov", "")->children.empty());
    EXPECT_TRUE(parsed("moov", std::string(7, 'x'))->children.empty());
}

TEST(MP4BoxParse, ChildSize_BelowAHeaders_EndsTheWalkBeforeIt) {
    for (const std::uint32_t size : {0U, 2U, 5U, 7U}) {
        const auto tree =
            parsed("moov", box("free", "1") + boxHeader("trak", size) + box("udta", "12"));

        EXPECT_EQ(typesOf(tree->children), Types{"free"}) << size;
    }
}

TEST(MP4BoxParse, ChildSize_UpToTheLastByte_IsKeptAndOneMoreIsNot) {
    EXPECT_EQ(typesOf(parsed("moov", box("free") + boxHeader("skip", 13) + "12345")->children),
              (Types{"free", "skip"}));
    EXPECT_EQ(typesOf(parsed("moov", box("free") + boxHeader("skip", 14) + "12345")->children),
              Types{"free"});
}

TEST(MP4BoxParse, WideChild_IsReadAndWrittenBackInThePlainForm) {
    const auto tree = parsed("moov", wideBox("trak", box("tkhd", "1")) + wideBox("free"));

    EXPECT_EQ(typesOf(tree->children), (Types{"trak", "free"}));
    EXPECT_EQ(serialized(*tree), box("moov", box("trak", box("tkhd", "1")) + box("free")));
}

TEST(MP4BoxParse, WideChild_ThatCanBeNone_EndsTheWalkBeforeIt) {
    const std::string cutOff = wideBox("skip").substr(0, 15);
    const std::uint64_t largest = 0x7FFFFFFFFFFFFFFF;
    for (const std::string& child : {cutOff, wideBoxHeader("skip", 0), wideBoxHeader("skip", 15),
                                     wideBoxHeader("skip", 17), wideBoxHeader("skip", largest)}) {
        EXPECT_EQ(typesOf(parsed("moov", box("free") + child)->children), Types{"free"});
    }
}

TEST(MP4BoxParse, WideChild_Of2To63BytesOrMore_EndsTheWalkBeforeIt) {
    for (const std::uint64_t size : {0x8000000000000000U, ~0UL}) {
        const std::string payload = box("free") + wideBoxHeader("skip", size);

        EXPECT_EQ(typesOf(parsed("moov", payload)->children), Types{"free"});
    }
}

TEST(MP4BoxParse, ChildType_ThatIsNotASCII_IsKeptWithoutItAndTheWalkGoesOn) {
    const auto tree = parsed("udta", box("\xA9nam", "title") + box("free"));

    EXPECT_EQ(typesOf(tree->children), (Types{"", "free"}));
    EXPECT_EQ(textOf(tree->children[0]->payload), "title");
}

TEST(MP4BoxParse, ZeroTerminator_IsDropped) {
    const auto tree = parsed("udta", box("name", "1") + std::string(4, '\0'));

    EXPECT_EQ(serialized(*tree), box("udta", box("name", "1")));
}

TEST(MP4BoxParse, SoundIndex_ComesBackByteForByte) {
    const std::string body =
        box("mvhd", noise(100)) +
        box("trak", box("tkhd", noise(84)) + box("edts", box("elst", noise(20))) +
                        box("mdia", box("minf", box("stbl", box("stsd", box("apcn", "1")))))) +
        box("udta", box("meta", std::string(4, '\0') + box("hdlr")));

    EXPECT_EQ(serialized(*parsed("moov", body)), box("moov", body));
}

TEST(MP4BoxParse, Nesting_UpTo32Levels_ComesBackWhole) {
    EXPECT_EQ(serialized(*parsed("moov", nested(31))), box("moov", nested(31)));
}

TEST(MP4BoxParse, Nesting_Deeper_IsDroppedBelowThe32ndLevel) {
    for (const std::uint32_t levels : {32U, 1000U, 100'000U}) {
        const auto tree = parsed("moov", nested(levels));

        int depth = 0;
        const MP4Box* node = tree.get();
        for (; !node->children.empty(); node = node->children.front().get()) ++depth;
        EXPECT_EQ(depth, 32) << levels;
        EXPECT_EQ(tree->serialize().size(), 33U * 8);
    }
}

TEST(MP4BoxContainer, IsContainer_ByItsTypeOrItsChildren) {
    EXPECT_TRUE(MP4Box("moov", {}, {}).isContainer());
    EXPECT_TRUE(MP4Box("dinf", {}, {leaf("dref")}).isContainer());
    EXPECT_FALSE(MP4Box("dinf", bytesOf("1"), {}).isContainer());
}

TEST(MP4BoxSerialize, Leaf_IsSizeTypeAndPayload) {
    EXPECT_EQ(serialized(*leaf("mdat", "12345")), std::string("\0\0\0\x0D", 4) + "mdat12345");
}

TEST(MP4BoxSerialize, ListedContainer_WithoutChildrenIsABareHeader) {
    EXPECT_EQ(serialized(MP4Box("trak", bytesOf("ignored"), {})), boxHeader("trak", 8));
}

TEST(MP4BoxSerialize, BoxWithChildren_LeavesOutItsPayload) {
    EXPECT_EQ(serialized(MP4Box("dinf", bytesOf("ignored"), {leaf("dref", "1"), leaf("free")})),
              box("dinf", box("dref", "1") + box("free")));
}

TEST(MP4BoxSerialize, EmptyType_TakesNoBytesButIsCounted) {
    const auto tree = parsed("udta", box("\xA9nam", "title") + box("free"));

    EXPECT_EQ(serialized(*tree),
              boxHeader("udta", 8 + 9 + 8) + bigEndian(13, 4) + "title" + box("free"));
    EXPECT_EQ(serialized(*tree->children[0]), bigEndian(13, 4) + "title");
}

TEST(MP4BoxSerializeDeathTest, Type_ThatIsNotASCII_IsFatal) {
    const MP4Box tree("moov", {}, {leaf("free"), leaf("\xA9nam")});

    EXPECT_DEATH(static_cast<void>(tree.serialize()), "a box whose type is not ASCII");
}

// One large leaf that hangs in the tree many times over takes its memory once.
TEST(MP4BoxSerialize, Box_Above32Bits_IsRefused) {
    const auto large =
        std::make_shared<MP4Box>("free", MP4Box::Bytes((1U << 24U) - 8), MP4Box::Children());
    const MP4Box tree("moov", {}, MP4Box::Children(256, large));

    EXPECT_THROW(static_cast<void>(tree.serialize()), OutOfRange);
}

TEST(MP4BoxFirst, Path_TakesTheFirstOfATypeAtEachLevel) {
    const auto tree = parsed("moov", box("trak", box("tkhd", "1") + box("tkhd", "2")) +
                                         box("trak", box("tkhd", "3") + box("edts")));

    EXPECT_EQ(tree->first({"trak"}), tree->children[0]);
    EXPECT_EQ(tree->first({"trak", "tkhd"}), tree->children[0]->children[0]);
    EXPECT_EQ(tree->first({"trak", "edts"}), nullptr) << "it stands in the second alone";
}

TEST(MP4BoxFirst, Path_ThatLeadsNowhereOrIsEmpty_GivesNothing) {
    const auto tree = parsed("moov", box("trak", box("tkhd")));

    EXPECT_EQ(tree->first({}), nullptr);
    EXPECT_EQ(tree->first({"moov"}), nullptr);
    EXPECT_EQ(tree->first({"tkhd"}), nullptr);
    EXPECT_EQ(tree->first({"trak", "tkhd", "free"}), nullptr);
}

TEST(MP4BoxAll, Type_GivesItsDirectChildrenInOrder) {
    const auto tree =
        parsed("moov", box("trak", box("free")) + box("free") + box("trak") + box("udta"));

    EXPECT_EQ(tree->all("trak"), (MP4Box::Children{tree->children[0], tree->children[2]}));
    EXPECT_EQ(tree->all("free"), MP4Box::Children{tree->children[1]});
    EXPECT_TRUE(tree->all("mvex").empty());
}

TEST(MP4BoxRemoveAll, Types_GoAndTheOthersKeepTheirOrder) {
    const auto tree = parsed("moov", box("mvhd") + box("free") + box("trak", box("free")) +
                                         box("mvex") + box("free") + box("udta"));

    tree->removeAll({"free", "mvex", "skip"});

    EXPECT_EQ(typesOf(tree->children), (Types{"mvhd", "trak", "udta"}));
    EXPECT_EQ(typesOf(tree->children[1]->children), Types{"free"});
}

TEST(MP4BoxReplace, TypeThatIsThere_PutsTheBoxInTheFirstPlaceAlone) {
    const auto tree = parsed("stbl", box("stts") + box("stsz", "1") + box("stsz", "2"));

    tree->replace("stsz", leaf("stz2", "new"));

    EXPECT_EQ(serialized(*tree), box("stbl", box("stts") + box("stz2", "new") + box("stsz", "2")));
}

TEST(MP4BoxReplace, TypeThatIsNotThere_AppendsTheBox) {
    const auto tree = parsed("stbl", box("stts"));

    tree->replace("stco", leaf("co64", "new"));

    EXPECT_EQ(serialized(*tree), box("stbl", box("stts") + box("co64", "new")));
}

TEST(MP4BoxTree, Node_EditedInPlace_IsWrittenWithTheWhole) {
    const auto tree = parsed("moov", box("trak", box("tkhd", "old")));

    tree->first({"trak", "tkhd"})->payload = bytesOf("longer");

    EXPECT_EQ(serialized(*tree), box("moov", box("trak", box("tkhd", "longer"))));
}
