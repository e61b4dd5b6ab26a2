#pragma once

#include "ossl/owners.h"
#include "tests/crypt/certificates.h"

#include <algorithm>

namespace test {

// A signed file, read back with OpenSSL. It must be whole and canonical, and its one signature right.
struct Signed {
    explicit Signed(const std::string& bytes) {
        const auto* start = reinterpret_cast<const unsigned char*>(bytes.data());
        const Bytes given(start, start + bytes.size());
        cms.reset(d2i_CMS_ContentInfo(nullptr, &start, static_cast<long>(bytes.size())));
        if (!cms) throw std::runtime_error("no CMS");
        EXPECT_TRUE(encoded<CMS_ContentInfo>(i2d_CMS_ContentInfo, cms.get()) == given)
            << "trailing bytes, a length that is not the shortest, or a set out of order";
        EXPECT_EQ(
            CMS_verify(cms.get(), nullptr, nullptr, nullptr, nullptr, CMS_NO_SIGNER_CERT_VERIFY | CMS_BINARY),
            1);
        const auto* text = *CMS_get0_content(cms.get());
        content.assign(ASN1_STRING_get0_data(text), ASN1_STRING_get0_data(text) + ASN1_STRING_length(text));
        const ossl::Certificates all(CMS_get1_certs(cms.get()));
        for (int i = 0; i < sk_X509_num(all.get()); ++i)
            certificates.push_back(encoded<X509>(i2d_X509, sk_X509_value(all.get(), i)));
        EXPECT_EQ(sk_CMS_SignerInfo_num(CMS_get0_SignerInfos(cms.get())), 1);
        signer = sk_CMS_SignerInfo_value(CMS_get0_SignerInfos(cms.get()), 0);
    }

    // A signed attribute's value; null unless it stands there once, with one value of that type.
    template <class T> [[nodiscard]] T* attribute(int nid, int type) const {
        return static_cast<T*>(CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(nid), -3, type));
    }
    [[nodiscard]] Bytes attribute_bytes(int nid, int type) const {
        const auto* text = attribute<ASN1_STRING>(nid, type);
        if (text == nullptr) return {};
        return {ASN1_STRING_get0_data(text), ASN1_STRING_get0_data(text) + ASN1_STRING_length(text)};
    }
    [[nodiscard]] bool is_by(const Certificate& one) const {
        return CMS_SignerInfo_cert_cmp(signer, one.x509.get()) == 0 && holds(one);
    }
    [[nodiscard]] bool holds(const Certificate& one) const {
        return std::count(certificates.begin(), certificates.end(), one.der) == 1;
    }

    ossl::Message cms;
    std::vector<Bytes> certificates;
    CMS_SignerInfo* signer = nullptr;
    std::string content;
};

} // namespace test
