#pragma once

#include "ReelCore/Hashing/StreamingHasher.h"

#include <memory>

struct evp_md_ctx_st;

namespace ReelCore {

/// MD5 (RFC 1321) and SHA-256 (FIPS 180-4) behind the streaming interface. A value: a copy goes on
/// from where the original stands. A library without these algorithms is a fatal fault.
class CryptoHasher final : public StreamingHasher {
public:
    enum class Kind { md5, sha256 };

    explicit CryptoHasher(Kind kind);
    CryptoHasher(const CryptoHasher& other);
    CryptoHasher& operator=(const CryptoHasher& other);

    void update(std::span<const std::byte> bytes) override;
    std::string finalizeHex() const override;

private:
    struct Free {
        void operator()(evp_md_ctx_st* state) const;
    };
    using State = std::unique_ptr<evp_md_ctx_st, Free>;

    static State copy(const State& state);

    State state_;
};

}  // namespace ReelCore
