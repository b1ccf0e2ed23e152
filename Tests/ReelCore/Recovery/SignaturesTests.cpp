#include "ReelCore/Recovery/Signatures.h"

#include "Support/Boxes.h"
#include "Support/FolderTree.h"
#include "Support/KLV.h"
#include "Support/RIFF.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using namespace TestSupport;

using Hits = std::vector<Hit>;

Hits hitsIn(std::string_view text) {
    return signatureHits(std::as_bytes(std::span(text)));
}

const Hits none;

Hits one(std::size_t offset, FindingKind kind) {
    return {{offset, kind}};
}

std::uint64_t sizeAt(std::string_view text, std::size_t at) {
    std::uint64_t size = 0;
    for (const char c : text.substr(at, 4)) size = size << 8U | static_cast<unsigned char>(c);
    return size;
}

/// Looks at every place by itself.
Hits naiveHits(std::string_view text) {
    const std::string header = partitionKey(2).substr(0, 14);
    Hits hits;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const std::string_view here = text.substr(at);
        if (here.starts_with(header) && here.size() >= 16) hits.push_back({at, FindingKind::mxf});
        if (here.starts_with("RIFF") && here.size() >= 12 && here.substr(8, 4) == "WAVE") {
            hits.push_back({at, FindingKind::wave});
        }
        if (here.size() < 8) continue;
        const std::uint64_t size = sizeAt(text, at);
        if (here.substr(4, 4) == "ftyp" && size >= 12 && size <= 65'536) {
            hits.push_back({at, FindingKind::movie});
        }
        if (here.substr(4, 4) == "icpf" && size >= 20 && size <= 67'108'864) {
            hits.push_back({at, FindingKind::orphanProRes});
        }
    }
    return hits;
}

/// Every signature, whole.
const std::vector<std::string> signatures{bigEndian(20, 4) + "ftyp", bigEndian(4096, 4) + "icpf",
                                          partitionKey(2), "RIFF" + bigEndian(0, 4) + "WAVE"};

TEST(Signatures, Ftyp_IsAHitFourBytesBeforeIt) {
    EXPECT_EQ(hitsIn("xx" + bigEndian(20, 4) + "ftyp"), one(2, FindingKind::movie));
    EXPECT_EQ(hitsIn(bigEndian(20, 4) + "ftyp"), one(0, FindingKind::movie));
}

TEST(Signatures, Ftyp_WithLessThanFourBytesBeforeItIsNone) {
    for (const char* bytes : {"ftyp",
                              "\x14"
                              "ftyp",
                              "\x01\x14"
                              "ftyp"}) {
        EXPECT_EQ(hitsIn(bytes), none);
    }
    EXPECT_EQ(hitsIn(bigEndian(20, 3) + "ftyp"), none);
}

TEST(Signatures, Ftyp_SizeLiesBetween12And65536) {
    for (const std::uint32_t size : {12U, 13U, 65'535U, 65'536U}) {
        EXPECT_EQ(hitsIn(boxHeader("ftyp", size)), one(0, FindingKind::movie)) << size;
    }
    for (const std::uint32_t size : {0U, 1U, 11U, 65'537U, 0x80000014U, 0xFFFFFFFFU}) {
        EXPECT_EQ(hitsIn(boxHeader("ftyp", size)), none) << size;
    }
}

TEST(Signatures, Icpf_IsAHitFourBytesBeforeIt) {
    EXPECT_EQ(hitsIn("abc" + boxHeader("icpf", 20)), one(3, FindingKind::orphanProRes));
    EXPECT_EQ(hitsIn(bigEndian(20, 3) + "icpf"), none);
}

TEST(Signatures, Icpf_SizeLiesBetween20And64MiB) {
    for (const std::uint32_t size : {20U, 21U, 67'108'863U, 67'108'864U}) {
        EXPECT_EQ(hitsIn(boxHeader("icpf", size)), one(0, FindingKind::orphanProRes)) << size;
    }
    for (const std::uint32_t size : {0U, 19U, 67'108'865U, 0x80000014U, 0xFFFFFFFFU}) {
        EXPECT_EQ(hitsIn(boxHeader("icpf", size)), none) << size;
    }
}

TEST(Signatures, HeaderPartition_IsAHitWhereItBegins) {
    EXPECT_EQ(hitsIn(partitionKey(2)), one(0, FindingKind::mxf));
    EXPECT_EQ(hitsIn("abc" + partitionKey(2)), one(3, FindingKind::mxf));
}

TEST(Signatures, PartitionsButForHeaders_AreNone) {
    for (const int kind : {0, 1, 3, 4, 0x82, 0xFF}) {
        EXPECT_EQ(hitsIn(partitionKey(kind)), none) << kind;
    }
}

TEST(Signatures, HeaderPartition_NeedsAll16BytesAndAll13OfThePrefix) {
    const std::string key = partitionKey(2);
    for (std::size_t size = 0; size < 16; ++size) {
        EXPECT_EQ(hitsIn(key.substr(0, size)), none) << size;
    }
    for (std::size_t at = 0; at < 14; ++at) {
        std::string other = key;
        other[at] ^= 0x40;
        EXPECT_EQ(hitsIn(other), none) << at;
    }
    EXPECT_EQ(hitsIn(key.substr(0, 14) + "\xFF\xFF"), one(0, FindingKind::mxf));
}

TEST(Signatures, Riff_IsAHitOnlyWithWaveBehindItsSize) {
    EXPECT_EQ(hitsIn("RIFF" + bigEndian(0, 4) + "WAVE"), one(0, FindingKind::wave));
    EXPECT_EQ(hitsIn("xRIFF\xFF\xFF\xFF\xFFWAVE"), one(1, FindingKind::wave));
    EXPECT_EQ(hitsIn("RIFF" + bigEndian(0, 4) + "AVI "), none);
    EXPECT_EQ(hitsIn("RIFFWAVEWAVX"), none);
    EXPECT_EQ(hitsIn("RIFX" + bigEndian(0, 4) + "WAVE"), none);
    EXPECT_EQ(hitsIn("RIFF" + bigEndian(0, 4) + "WAV"), none);
}

TEST(Signatures, BytesWithoutASignature_GiveNone) {
    EXPECT_EQ(hitsIn(""), none);
    EXPECT_EQ(hitsIn("f"), none);
    EXPECT_EQ(hitsIn(std::string(1000, '\0')), none);
    EXPECT_EQ(hitsIn(std::string(1000, 'f')), none);
    EXPECT_EQ(hitsIn("ftyqicpgRIFE"), none);
}

TEST(Signatures, HitsOfAllKinds_ComeInAscendingOrder) {
    std::string text;
    for (auto signature = signatures.rbegin(); signature != signatures.rend(); ++signature) {
        text += *signature;
    }

    EXPECT_EQ(hitsIn(text), (Hits{{0, FindingKind::wave},
                                  {12, FindingKind::mxf},
                                  {28, FindingKind::orphanProRes},
                                  {36, FindingKind::movie}}));
}

TEST(Signatures, RepeatedNeedles_AreEachLookedAtForThemselves) {
    const std::string text = bigEndian(20, 4) + "ftypftyp" + boxHeader("icpf", 30) +
                             boxHeader("icpf", 5) + boxHeader("icpf", 40);

    EXPECT_EQ(hitsIn(text), (Hits{{0, FindingKind::movie},
                                  {12, FindingKind::orphanProRes},
                                  {28, FindingKind::orphanProRes}}));
}

TEST(Signatures, SizeThatIsItselfATag_IsNone) {
    EXPECT_EQ(hitsIn("ftypftyp"), none);
    EXPECT_EQ(hitsIn("icpficpf"), none);
}

/// Bytes and pieces of signatures in random order.
std::string jumble(std::size_t size, std::mt19937& random) {
    static const std::vector<std::string> pieces{"ftyp",
                                                 "icpf",
                                                 "RIFF",
                                                 "WAVE",
                                                 "f",
                                                 "ft",
                                                 "ic",
                                                 "RI",
                                                 bigEndian(20, 4),
                                                 bigEndian(65'536, 4),
                                                 bigEndian(65'537, 4),
                                                 bigEndian(0x4000000, 4),
                                                 std::string(1, '\0'),
                                                 partitionKey(2),
                                                 partitionKey(2).substr(0, 13),
                                                 partitionKey(3),
                                                 "\x06\x0E",
                                                 "\x06",
                                                 "WAV",
                                                 "ICPF"};
    std::string text;
    while (text.size() < size) text += pieces[random() % pieces.size()];
    text.resize(size);
    return text;
}

TEST(Signatures, JumbledPieces_GiveWhatASearchPlaceByPlaceGives) {
    std::mt19937 random(7);
    std::size_t found = 0;
    for (std::size_t size = 0; size < 600; ++size) {
        const std::string text = jumble(size, random);
        const Hits hits = hitsIn(text);
        ASSERT_EQ(hits, naiveHits(text)) << "of " << size << " bytes";
        found += hits.size();
    }
    EXPECT_GT(found, 1000U);
}

TEST(Signatures, RandomBytesOfASmallAlphabet_GiveWhatASearchPlaceByPlaceGives) {
    std::mt19937 random(11);
    const std::string zero(1, '\0');
    std::size_t found = 0;
    for (const std::string& alphabet : {"ftyp" + zero, "icpf" + zero, "ficpty\x01" + zero}) {
        std::string text;
        for (int i = 0; i < 300'000; ++i) text += alphabet[random() % alphabet.size()];
        const Hits hits = hitsIn(text);
        ASSERT_EQ(hits, naiveHits(text)) << alphabet;
        found += hits.size();
    }
    EXPECT_GT(found, 0U);
}

TEST(Signatures, NeedleAtEveryPlaceOfABuffer_IsFoundThereAndOnlyThere) {
    for (const char filler : {'x', 'f', 'i', 'R', '\x06', '\0'}) {
        for (const std::string& signature : signatures) {
            for (std::size_t at = 0; at <= 220; ++at) {
                std::string text(240, filler);
                text.replace(at, signature.size(), signature);
                text.resize(240);
                ASSERT_EQ(hitsIn(text), naiveHits(text)) << "at " << at;
            }
        }
    }
}

TEST(Signatures, NeedleAroundMultiplesOf64_IsFoundInBuffersThatEndAnywhereBehindIt) {
    for (const std::string& signature : signatures) {
        for (const std::size_t multiple : {64U, 128U, 192U}) {
            for (std::size_t at = multiple - 20; at <= multiple + 20; ++at) {
                for (const std::size_t more : {0U, 1U, 15U, 47U, 48U, 63U, 64U, 65U, 128U}) {
                    const std::string text =
                        std::string(at, 'x') + signature + std::string(more, 'y');
                    ASSERT_EQ(hitsIn(text).size(), 1U) << at << " + " << more;
                    ASSERT_EQ(hitsIn(text)[0].offset, at);
                }
            }
        }
    }
}

TEST(Signatures, NeedleThatIsCutOffByTheBuffersEnd_IsNone) {
    for (const std::string& signature : signatures) {
        for (const std::size_t end : {64U, 65U, 100U, 128U}) {
            for (std::size_t kept = 0; kept < signature.size(); ++kept) {
                const std::string text = std::string(end - kept, 'x') + signature.substr(0, kept);
                ASSERT_EQ(hitsIn(text), none) << kept << " bytes before " << end;
            }
        }
    }
}

TEST(Signatures, BufferThatBeginsAtAnyAddress_GivesTheSame) {
    std::mt19937 random(3);
    const std::string text = jumble(300, random);
    for (std::size_t shift = 0; shift < 64; ++shift) {
        const std::string shifted = std::string(shift, 'x') + text;
        EXPECT_EQ(hitsIn(std::string_view(shifted).substr(shift)), naiveHits(text)) << shift;
    }
}

}  // namespace
