#include "zvCrypt.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <array>
#include <vector>

namespace {

using Digest = std::array<unsigned char, ZVC_SHA1_SIZE>;

Digest digest_of(int length, unsigned char* data) {
    Digest digest;
    digest.fill(0xA5);
    Sha1Digest(length, data, digest.data());
    return digest;
}

} // namespace

TEST(Digest, IsWhatOthersCompute) {
    std::vector<unsigned char> data(100'000);
    for (std::size_t i = 0; i < data.size(); ++i)
        data[i] = static_cast<unsigned char>(i * i / 7);
    Digest others;
    for (std::size_t length = 0; length <= data.size(); length += length < 200 ? 1 : 49'900) {
        ASSERT_EQ(EVP_Digest(data.data(), length, others.data(), nullptr, EVP_sha1(), nullptr), 1);
        EXPECT_EQ(digest_of(static_cast<int>(length), data.data()), others) << length;
    }
    EXPECT_EQ(digest_of(-1, data.data()), digest_of(0, nullptr));
    EXPECT_EQ(digest_of(5, nullptr), Digest());
}
