#include "scratch.h"
#include "token.h"

#include <openssl/cms.h>
#include <openssl/ess.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <ctime>
#include <optional>

namespace {

using test::Bytes;
using test::lastError;

void freeAll(STACK_OF(X509) * all) {
    sk_X509_pop_free(all, X509_free);
}

// A signed file, read back with OpenSSL, for whom only that authority is trusted. It must be whole and
// canonical.
struct Signed {
    Signed(const std::string& bytes, const test::Certificate& trusted) {
        const auto* start = reinterpret_cast<const unsigned char*>(bytes.data());
        const unsigned char* end = start;
        cms.reset(d2i_CMS_ContentInfo(nullptr, &end, static_cast<long>(bytes.size())), CMS_ContentInfo_free);
        if (!cms) return;
        EXPECT_EQ(end, start + bytes.size()) << "trailing bytes";
        std::string again(static_cast<std::size_t>(i2d_CMS_ContentInfo(cms.get(), nullptr)), '\0');
        auto* out = reinterpret_cast<unsigned char*>(again.data());
        (void)i2d_CMS_ContentInfo(cms.get(), &out);
        EXPECT_EQ(again, bytes) << "not canonical";
        certificates.reset(CMS_get1_certs(cms.get()), freeAll);
        signer = sk_CMS_SignerInfo_value(CMS_get0_SignerInfos(cms.get()), 0);
        const std::shared_ptr<BIO> text(BIO_new(BIO_s_mem()), BIO_free);
        const std::shared_ptr<X509_STORE> store(X509_STORE_new(), X509_STORE_free);
        (void)X509_STORE_add_cert(store.get(), trusted.x509.get());
        verifies =
            CMS_verify(cms.get(), nullptr, store.get(), nullptr, text.get(), CMS_CADES | CMS_BINARY) == 1;
        char* data = nullptr;
        const long length = BIO_get_mem_data(text.get(), &data);
        content.assign(data, static_cast<std::size_t>(length));
    }

    // The one value of a signed attribute that must stand there once.
    [[nodiscard]] ASN1_TYPE* attribute(int nid) const {
        const int index = CMS_signed_get_attr_by_NID(signer, nid, -1);
        if (index < 0 || CMS_signed_get_attr_by_NID(signer, nid, index) >= 0) return nullptr;
        X509_ATTRIBUTE* found = CMS_signed_get_attr(signer, index);
        return X509_ATTRIBUTE_count(found) == 1 ? X509_ATTRIBUTE_get0_type(found, 0) : nullptr;
    }
    [[nodiscard]] bool holds(const test::Certificate& certificate) const {
        for (int i = 0; i < sk_X509_num(certificates.get()); ++i)
            if (X509_cmp(sk_X509_value(certificates.get(), i), certificate.x509.get()) == 0) return true;
        return false;
    }

    std::shared_ptr<CMS_ContentInfo> cms;
    std::shared_ptr<STACK_OF(X509)> certificates;
    CMS_SignerInfo* signer = nullptr;
    bool verifies = false;
    std::string content;
};

Bytes digest(const EVP_MD* md, const void* data, std::size_t size) {
    Bytes value(EVP_MAX_MD_SIZE);
    unsigned length = 0;
    (void)EVP_Digest(data, size, value.data(), &length, md, nullptr);
    value.resize(length);
    return value;
}

Bytes bytesOf(const ASN1_STRING* text) {
    const auto* data = ASN1_STRING_get0_data(text);
    return {data, data + ASN1_STRING_length(text)};
}

class Sign : public test::Scratch {
  protected:
    Sign() {
        token.emplace(folder);
        authority = test::makeAuthority("Autorità di prova");
        certificate = certify(token->generate("DS0"), "Mario Rossi");
        token->store(test::makeAuthority("Autorità di prova"), "omonima");
        token->store(certificate, "DS0");
    }
    ~Sign() override { (void)kvFinalize(); }

    [[nodiscard]] test::Certificate certify(const test::KeyPtr& key, const std::string& name) const {
        test::Shape shape;
        shape.subject = {{"C", "IT"}, {"CN", name}};
        shape.key = key;
        shape.issuer = &authority;
        return test::make(shape);
    }
    void open(bool login = true) {
        token->release();
        std::string module = SOFTHSM_MODULE;
        ASSERT_EQ(kvInitialize(module.data(), token->slot()), ZVC_OK) << lastError();
        if (!login) return;
        ASSERT_EQ(kvLogin(test::userPin), ZVC_OK) << lastError();
    }
    int signText(const std::string& text, const char* key = "DS0", const char* hash = "SHA256") {
        return kvSignFile(key, hash, write("in", text).c_str(), path("out").c_str());
    }
    Signed result() { return {content(path("out")), authority}; }

    std::optional<test::Token> token;
    test::Certificate authority;
    test::Certificate certificate;
};

} // namespace

TEST_F(Sign, MakesACanonicalCadesSignature) {
    token->store(authority, "CA");
    open();
    for (const std::size_t size : {0U, 1U, 130U, 1500U, 200000U}) {
        const std::string text(size, '\r');
        ASSERT_EQ(signText(text), ZVC_OK) << lastError();
        const auto it = result();
        ASSERT_TRUE(it.cms);
        EXPECT_TRUE(it.verifies);
        EXPECT_EQ(it.content, text);
        EXPECT_TRUE(it.holds(certificate));
        EXPECT_EQ(CMS_SignerInfo_cert_cmp(it.signer, certificate.x509.get()), 0);
    }
    const auto mode = std::filesystem::status(path("out")).permissions();
    EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(Sign, CarriesTheFourSignedAttributesAndTheIssuer) {
    token->store(authority, "CA");
    open();
    for (const auto& [name, md] :
         {std::pair{"SHA256", EVP_sha256()}, {"SHA384", EVP_sha384()}, {"SHA512", EVP_sha512()}}) {
        const std::string text = "-----BEGIN CERTIFICATE REQUEST-----\n";
        const std::time_t before = std::time(nullptr);
        ASSERT_EQ(signText(text, "DS0", name), ZVC_OK) << lastError();
        const auto it = result();
        ASSERT_TRUE(it.verifies);
        EXPECT_EQ(CMS_signed_get_attr_count(it.signer), 4);
        const ASN1_TYPE* type = it.attribute(NID_pkcs9_contentType);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(OBJ_obj2nid(type->value.object), NID_pkcs7_data);
        const ASN1_TYPE* messageDigest = it.attribute(NID_pkcs9_messageDigest);
        ASSERT_NE(messageDigest, nullptr);
        EXPECT_EQ(bytesOf(messageDigest->value.octet_string), digest(md, text.data(), text.size()));
        const ASN1_TYPE* time = it.attribute(NID_pkcs9_signingTime);
        ASSERT_NE(time, nullptr);
        EXPECT_EQ(time->type, V_ASN1_UTCTIME);
        std::time_t after = std::time(nullptr);
        EXPECT_GE(ASN1_TIME_cmp_time_t(time->value.utctime, before), 0);
        EXPECT_LE(ASN1_TIME_cmp_time_t(time->value.utctime, after), 0);
        const ASN1_TYPE* ess = it.attribute(NID_id_smime_aa_signingCertificateV2);
        ASSERT_NE(ess, nullptr);
        const Bytes sequence = bytesOf(ess->value.sequence);
        const Bytes expected = digest(EVP_sha256(), certificate.der.data(), certificate.der.size());
        EXPECT_NE(std::search(sequence.begin(), sequence.end(), expected.begin(), expected.end()),
                  sequence.end());
        EXPECT_EQ(sk_X509_num(it.certificates.get()), 2);
        EXPECT_TRUE(it.holds(authority)) << "and not its namesake with another key";
    }
}

TEST_F(Sign, TheIssuerGivesWayToTheRequestsLimit) {
    token->store(authority, "CA");
    open();
    constexpr std::size_t longest = 12096; // what gives 16380 characters in lines of 64; one more gives 16385
    ASSERT_EQ(signText(std::string(10000, 'x')), ZVC_OK) << lastError();
    const std::size_t around = std::filesystem::file_size(path("out")) - 10000;
    ASSERT_EQ(signText(std::string(longest - around, 'x')), ZVC_OK);
    EXPECT_EQ(std::filesystem::file_size(path("out")), longest);
    EXPECT_EQ(sk_X509_num(result().certificates.get()), 2);
    ASSERT_EQ(signText(std::string(longest - around + 1, 'x')), ZVC_OK);
    const auto it = result();
    EXPECT_TRUE(it.verifies);
    EXPECT_EQ(sk_X509_num(it.certificates.get()), 1);
    EXPECT_TRUE(it.holds(certificate));
}

TEST_F(Sign, OfSeveralCertificatesTheKeysOwnIsTaken) {
    const auto key = token->generate("DS3");
    const auto own = certify(key, "Giusto");
    token->store(certificate, "DS3");
    token->store(own, "DS3");
    token->store(certify(certificate.key, "Sbagliato"), "DS3");
    open();
    ASSERT_EQ(signText("testo", "DS3"), ZVC_OK) << lastError();
    const auto it = result();
    EXPECT_TRUE(it.verifies);
    EXPECT_EQ(CMS_SignerInfo_cert_cmp(it.signer, own.x509.get()), 0);
    EXPECT_EQ(sk_X509_num(it.certificates.get()), 1) << "the card does not hold the issuer";
}

TEST_F(Sign, FailuresHaveTheirCodeAndLeaveNoFile) {
    (void)token->generate("senza");
    (void)token->generate("altrui");
    token->store(certificate, "altrui");
    token->store(authority, "ellittica");
    (void)token->generate("ellittica");
    EXPECT_EQ(signText("testo"), ZVC_ERR_NO_SESSION);
    open(false);
    EXPECT_EQ(signText("testo"), ZVC_ERR_NOT_LOGGED_IN);
    ASSERT_EQ(kvLogin(test::userPin), ZVC_OK);
    for (const auto& [key, code] : {std::pair{"DS", ZVC_ERR_KEY},
                                    {"", ZVC_ERR_KEY},
                                    {"senza", ZVC_ERR_CERTIFICATE},
                                    {"ellittica", ZVC_ERR_CERTIFICATE},
                                    {"altrui", ZVC_ERR_SIGNATURE}}) {
        EXPECT_EQ(signText("testo", key), code) << key << ": " << lastError();
        EXPECT_NE(lastError(), "");
        EXPECT_FALSE(std::filesystem::exists(path("out"))) << key;
    }
    for (const char* hash : {"SHA1", "sha256", ""})
        EXPECT_EQ(signText("testo", "DS0", hash), ZVC_ERR_HASH);
    const std::string in = write("in", "testo");
    EXPECT_EQ(kvSignFile("DS0", "SHA256", in.c_str(), in.c_str()), ZVC_ERR_OUTPUT);
    EXPECT_EQ(kvSignFile("DS0", "SHA256", path("missing").c_str(), path("out").c_str()), ZVC_ERR_INPUT);
    EXPECT_EQ(kvSignFile("DS0", "SHA256", in.c_str(), (path("no/out")).c_str()), ZVC_ERR_OUTPUT);
    EXPECT_EQ(kvSignFile("DS0", nullptr, in.c_str(), in.c_str()), ZVC_ERR_ARGUMENT);
    EXPECT_EQ(content(in), "testo");
    EXPECT_EQ(signText("testo"), ZVC_OK) << "the session goes on";
}
