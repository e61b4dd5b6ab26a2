#include "request/der.h"
#include "request/pkcs10.h"
#include "routines/request.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

using zv::der::Bytes;

Bytes taken(ADATA* piece) {
    const Bytes bytes(piece->data, piece->data + piece->length);
    std::free(piece->data);
    std::free(piece);
    return bytes;
}

ADATA* zeros(unsigned long size) {
    return CreateADATA(nullptr, size, 0);
}

Bytes header_of(unsigned long size) {
    Bytes all = taken(SEQUENCE(zeros(size), nullptr));
    all.resize(all.size() - size);
    return all;
}

TEST(Der, LengthsAreCanonicalUpTo65535Bytes) {
    EXPECT_EQ(header_of(0), (Bytes{0x30, 0x00}));
    EXPECT_EQ(header_of(127), (Bytes{0x30, 0x7F}));
    EXPECT_EQ(header_of(128), (Bytes{0x30, 0x81, 0x80}));
    EXPECT_EQ(header_of(255), (Bytes{0x30, 0x81, 0xFF}));
    EXPECT_EQ(header_of(256), (Bytes{0x30, 0x82, 0x01, 0x00}));
    EXPECT_EQ(header_of(65535), (Bytes{0x30, 0x82, 0xFF, 0xFF}));
    EXPECT_EQ(header_of(65536), (Bytes{0x30}));
}

TEST(Der, ListsEndAtTheFirstNull) {
    unsigned char one[] = {0x05, 0x00};
    ADATA* left = CreateADATA(one, 2, 2);
    EXPECT_EQ(taken(SEQUENCE(CreateADATA(one, 2, 2), nullptr, left, nullptr)),
              (Bytes{0x30, 0x02, 0x05, 0x00}));
    EXPECT_EQ(taken(left), (Bytes{0x05, 0x00})) << "what stands behind the null is not released";
    EXPECT_EQ(taken(SEQUENCE(nullptr)), (Bytes{0x30, 0x00}));
    EXPECT_EQ(taken(var_tlv(0xA0, nullptr)), (Bytes{0xA0, 0x00}));
    EXPECT_EQ(taken(SET(CreateADATA(one, 2, 2), CreateADATA(one, 2, 2), nullptr)),
              (Bytes{0x31, 0x04, 0x05, 0x00, 0x05, 0x00}));
}

TEST(Der, IntegersStayPositiveAndKeepLeadingZeros) {
    unsigned char small[] = {0x01}, high[] = {0x80}, led[] = {0x00, 0x7F};
    EXPECT_EQ(taken(_INTEGER(small, 1)), (Bytes{0x02, 0x01, 0x01}));
    EXPECT_EQ(taken(_INTEGER(high, 1)), (Bytes{0x02, 0x02, 0x00, 0x80}));
    EXPECT_EQ(taken(_INTEGER(led, 2)), (Bytes{0x02, 0x02, 0x00, 0x7F}));
    EXPECT_EQ(taken(_INTEGER(high, 0)), (Bytes{0x02, 0x01, 0x00}));
    EXPECT_EQ(taken(_INTEGER(small, ~0UL)), (Bytes{0x02, 0x00})) << "no memory for the number";
    EXPECT_EQ(taken(_INTEGER(high, ~0UL)), (Bytes{0x02, 0x01, 0x00}));
}

TEST(Der, PiecesArePaddedAndJoined) {
    unsigned char bytes[] = {1, 2, 3};
    EXPECT_EQ(taken(CreateADATA(bytes, 5, 3)), (Bytes{1, 2, 3, 0, 0}));
    EXPECT_EQ(taken(ConcatenateADATA(nullptr, nullptr)), Bytes());
    EXPECT_EQ(taken(ConcatenateADATA(CreateADATA(bytes, 1, 1), CreateADATA(bytes, 2, 2))), (Bytes{1, 1, 2}));
}

TEST(Pem, IsOneLineThatMustFitWithItsBreaks) {
    std::vector<char> out(zv::PEM_SIZE, '?');
    const Bytes small(100), large(6100);
    ASSERT_TRUE(zv::write_pem(small, out.data()));
    EXPECT_EQ(std::string(out.data()), "-----BEGIN CERTIFICATE REQUEST-----\n" + std::string(134, 'A') +
                                           "==\n-----END CERTIFICATE REQUEST-----\n");
    EXPECT_FALSE(zv::write_pem(large, out.data()));
}

} // namespace
