#include "ReelCore/Hashing/CryptoHasher.h"

#include "ReelCore/Platform/Fatal.h"

#include <array>

#include <fmt/format.h>
#include <openssl/evp.h>

namespace ReelCore {

namespace {

void require(int succeeded) {
    if (succeeded != 1) fatal("the cryptographic library refused a hash operation");
}

}  // namespace

CryptoHasher::CryptoHasher(Kind kind) : state_(EVP_MD_CTX_new()) {
    require(state_ != nullptr);
    require(EVP_DigestInit_ex(state_.get(), kind == Kind::md5 ? EVP_md5() : EVP_sha256(), nullptr));
}

CryptoHasher::CryptoHasher(const CryptoHasher& other)
    : StreamingHasher(other), state_(copy(other.state_)) {}

CryptoHasher& CryptoHasher::operator=(const CryptoHasher& other) {
    state_ = copy(other.state_);
    return *this;
}

CryptoHasher::State CryptoHasher::copy(const State& state) {
    State result(EVP_MD_CTX_new());
    require(result != nullptr);
    require(EVP_MD_CTX_copy_ex(result.get(), state.get()));
    return result;
}

void CryptoHasher::update(std::span<const std::byte> bytes) {
    require(EVP_DigestUpdate(state_.get(), bytes.data(), bytes.size()));
}

std::string CryptoHasher::finalizeHex() const {
    const State finished = copy(state_);
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    require(EVP_DigestFinal_ex(finished.get(), digest.data(), &length));
    return fmt::format("{:02x}", fmt::join(digest.begin(), digest.begin() + length, ""));
}

void CryptoHasher::Free::operator()(evp_md_ctx_st* state) const {
    EVP_MD_CTX_free(state);
}

}  // namespace ReelCore
