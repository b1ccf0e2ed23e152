#include "ReelCore/Hashing/CryptoHasher.h"

#include "HashOf.h"

#include <gtest/gtest.h>

namespace {

using namespace ReelCore;
using TestSupport::bytesOf;
using TestSupport::hashOf;

TEST(CryptoHasher, MD5_GivesTheVectorsOfRFC1321) {
    const auto md5 = [](std::string_view text) { return hashOf(HashAlgorithm::md5, text); };

    EXPECT_EQ(md5(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(md5("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(md5("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(md5("abcdefghijklmnopqrstuvwxyz"), "c3fcd3d76192e4007dfb496cca67e13b");
    EXPECT_EQ(md5("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(md5("1234567890123456789012345678901234567890"
                  "1234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}

TEST(CryptoHasher, SHA256_GivesTheVectorsOfFIPS180) {
    const auto sha256 = [](std::string_view text) { return hashOf(HashAlgorithm::sha256, text); };

    EXPECT_EQ(sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(sha256("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
              "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1");
    EXPECT_EQ(sha256(std::string(1'000'000, 'a')),
              "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

TEST(CryptoHasher, Copy_GoesOnFromWhereTheOriginalStandsAndLeavesItAlone) {
    for (const auto kind : {CryptoHasher::Kind::md5, CryptoHasher::Kind::sha256}) {
        const auto fresh = [&](std::string_view text) {
            CryptoHasher hasher(kind);
            return hashOf(hasher, text);
        };
        CryptoHasher original(kind);
        original.update(bytesOf("reel "));

        CryptoHasher copy = original;
        copy.update(bytesOf("A001"));

        EXPECT_EQ(copy.finalizeHex(), fresh("reel A001"));
        EXPECT_EQ(original.finalizeHex(), fresh("reel "));
    }
}

TEST(CryptoHasher, Assignment_TakesOverKindAndState) {
    CryptoHasher source(CryptoHasher::Kind::sha256);
    source.update(bytesOf("ab"));
    CryptoHasher target(CryptoHasher::Kind::md5);
    target.update(bytesOf("something else"));

    target = source;
    target.update(bytesOf("c"));

    EXPECT_EQ(target.finalizeHex(), hashOf(HashAlgorithm::sha256, "abc"));
    EXPECT_EQ(source.finalizeHex(), hashOf(HashAlgorithm::sha256, "ab"));
}

TEST(CryptoHasher, AssignmentToItself_KeepsTheState) {
    CryptoHasher hasher(CryptoHasher::Kind::md5);
    hasher.update(bytesOf("ab"));
    const CryptoHasher& same = hasher;

    hasher = same;
    hasher.update(bytesOf("c"));

    EXPECT_EQ(hasher.finalizeHex(), hashOf(HashAlgorithm::md5, "abc"));
}

}  // namespace
