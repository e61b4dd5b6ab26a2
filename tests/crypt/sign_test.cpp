#include "certificates.h"
#include "scratch.h"
#include "simcard/tool/card_objects.h"
#include "simcard/tool/token_session.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/card.h"
#include "tests/support/module.h"

#include <openssl/cms.h>

#include <algorithm>
#include <ctime>

namespace {

using test::Bytes;
using test::lastError;

// A signed file, read back with OpenSSL, which trusts that authority alone. It must be whole and canonical.
struct Signed {
    Signed(const std::string& bytes, const test::Certificate& trusted) {
        const auto* start = reinterpret_cast<const unsigned char*>(bytes.data());
        const Bytes given(start, start + bytes.size());
        cms.reset(d2i_CMS_ContentInfo(nullptr, &start, static_cast<long>(bytes.size())),
                  CMS_ContentInfo_free);
        if (!cms) throw std::runtime_error("no CMS");
        EXPECT_EQ(test::encoded<CMS_ContentInfo>(i2d_CMS_ContentInfo, cms.get()), given)
            << "trailing bytes, or no DER";
        certificates.reset(CMS_get1_certs(cms.get()), [](auto* all) { sk_X509_pop_free(all, X509_free); });
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

    // A signed attribute's value; null unless it stands there once, with one value of that type.
    template <class T> [[nodiscard]] T* attribute(int nid, int type) const {
        constexpr int oneOnly = -3;
        return static_cast<T*>(CMS_signed_get0_data_by_OBJ(signer, OBJ_nid2obj(nid), oneOnly, type));
    }
    [[nodiscard]] bool isBy(const test::Certificate& one) const {
        return CMS_SignerInfo_cert_cmp(signer, one.x509.get()) == 0;
    }
    [[nodiscard]] bool holds(const test::Certificate& one) const {
        bool held = false;
        for (int i = 0; i < sk_X509_num(certificates.get()); ++i)
            held = held || X509_cmp(sk_X509_value(certificates.get(), i), one.x509.get()) == 0;
        return held;
    }
    [[nodiscard]] int certificateCount() const { return sk_X509_num(certificates.get()); }

    std::shared_ptr<CMS_ContentInfo> cms;
    std::shared_ptr<STACK_OF(X509)> certificates;
    CMS_SignerInfo* signer = nullptr;
    bool verifies = false;
    std::string content;
};

Bytes digest(const char* name, const void* data, std::size_t size) {
    Bytes value(EVP_MAX_MD_SIZE);
    std::size_t length = 0;
    (void)EVP_Q_digest(nullptr, name, nullptr, data, size, value.data(), &length);
    value.resize(length);
    return value;
}

Bytes bytesOf(const ASN1_STRING& text) {
    return {ASN1_STRING_get0_data(&text), ASN1_STRING_get0_data(&text) + ASN1_STRING_length(&text)};
}

class Sign : public test::Scratch {
  protected:
    Sign() {
        hold(test::makeAuthority("Autorità di prova"), "omonima");
        hold(certificate, "DS0");
    }
    ~Sign() override { (void)kvFinalize(); }

    void hold(simcard::Attributes object) {
        const simcard::SoftHsm hsm(cards.path());
        simcard::TokenSession token(hsm, card);
        ASSERT_TRUE(token.login(zvtest::user_pin));
        token.create(std::move(object));
    }
    void hold(const test::Certificate& one, const char* id) {
        hold(simcard::certificate_object(*one.x509, id));
    }
    test::KeyPtr newKey(const char* id) {
        test::KeyPtr key = keys.next();
        hold(simcard::private_key_object(*key, id));
        return key;
    }
    static void open() {
        std::string path = ZVSIMCARD_MODULE;
        ASSERT_EQ(kvInitialize(path.data(), 0), ZVC_OK) << lastError();
    }
    static void openAndLogin() {
        open();
        ASSERT_EQ(kvLogin(zvtest::user_pin), ZVC_OK) << lastError();
    }
    int signText(const std::string& text, const char* key = "DS0", const char* hash = "SHA256") {
        return kvSignFile(key, hash, write("in", text).c_str(), path("out").c_str());
    }
    Signed result() { return {content(path("out")), authority}; }

    zvtest::EmptyCards cards;
    simcard::Card card = cards.add();
    simcard::KeySource keys = simcard::KeySource::from_file(ZV_TEST_KEYS);
    zvtest::Module module;
    test::Certificate authority = test::makeAuthority("Autorità di prova");
    test::Certificate certificate = test::make({.issuer = &authority, .key = newKey("DS0")});
};

} // namespace

TEST_F(Sign, MakesACanonicalCadesSignature) {
    hold(authority, "CA");
    openAndLogin();
    for (const auto& [size, hash] :
         {std::pair{0U, "SHA256"}, {1U, "SHA384"}, {130U, "SHA512"}, {200000U, "SHA256"}}) {
        const std::string text(size, '\r');
        const std::time_t before = std::time(nullptr);
        ASSERT_EQ(signText(text, "DS0", hash), ZVC_OK) << lastError();
        const auto it = result();
        EXPECT_TRUE(it.verifies);
        EXPECT_TRUE(it.isBy(certificate));
        EXPECT_EQ(it.content, text);

        EXPECT_EQ(CMS_signed_get_attr_count(it.signer), 4);
        const auto* type = it.attribute<ASN1_OBJECT>(NID_pkcs9_contentType, V_ASN1_OBJECT);
        EXPECT_EQ(OBJ_obj2nid(type), NID_pkcs7_data);
        const auto* message = it.attribute<ASN1_STRING>(NID_pkcs9_messageDigest, V_ASN1_OCTET_STRING);
        ASSERT_NE(message, nullptr);
        EXPECT_EQ(bytesOf(*message), digest(hash, text.data(), text.size()));
        const auto* time = it.attribute<ASN1_TIME>(NID_pkcs9_signingTime, V_ASN1_UTCTIME);
        ASSERT_NE(time, nullptr);
        EXPECT_GE(ASN1_TIME_cmp_time_t(time, before), 0);
        EXPECT_LE(ASN1_TIME_cmp_time_t(time, std::time(nullptr)), 0);
        const auto* ess = it.attribute<ASN1_STRING>(NID_id_smime_aa_signingCertificateV2, V_ASN1_SEQUENCE);
        ASSERT_NE(ess, nullptr);
        const Bytes value = bytesOf(*ess),
                    own = digest("SHA256", certificate.der.data(), certificate.der.size());
        EXPECT_NE(std::search(value.begin(), value.end(), own.begin(), own.end()), value.end());

        if (size > 130) continue;
        EXPECT_EQ(it.certificateCount(), 2);
        EXPECT_TRUE(it.holds(certificate));
        EXPECT_TRUE(it.holds(authority)) << "and not its namesake with another key";
    }
}

TEST_F(Sign, TheIssuerGivesWayToTheRequestsLimit) {
    hold(authority, "CA");
    openAndLogin();
    constexpr std::size_t longest = 12096; // what gives 16380 characters in lines of 64; one more gives 16385
    ASSERT_EQ(signText(std::string(10000, 'x')), ZVC_OK) << lastError();
    const std::size_t around = std::filesystem::file_size(path("out")) - 10000;
    ASSERT_EQ(signText(std::string(longest - around, 'x')), ZVC_OK);
    EXPECT_EQ(std::filesystem::file_size(path("out")), longest);
    EXPECT_EQ(result().certificateCount(), 2);
    ASSERT_EQ(signText(std::string(longest - around + 1, 'x')), ZVC_OK);
    EXPECT_TRUE(result().verifies);
    EXPECT_EQ(result().certificateCount(), 1);
    EXPECT_TRUE(result().holds(certificate));
}

TEST_F(Sign, OfSeveralCertificatesTheKeysOwnIsTaken) {
    const auto own = test::make({.subject = "CN=Giusto", .issuer = &authority, .key = newKey("DS3")});
    hold(certificate, "DS3");
    hold(own, "DS3");
    openAndLogin();
    ASSERT_EQ(signText("testo", "DS3"), ZVC_OK) << lastError();
    EXPECT_TRUE(result().verifies);
    EXPECT_TRUE(result().isBy(own));
    EXPECT_EQ(result().certificateCount(), 1) << "the card does not hold the issuer";
}

TEST_F(Sign, FailuresHaveTheirCodeAndLeaveNoFile) {
    for (const char* key : {"senza", "altrui", "ellittica"})
        (void)newKey(key);
    hold(certificate, "altrui");
    hold(authority, "ellittica");
    EXPECT_EQ(signText("testo"), ZVC_ERR_NO_SESSION);
    open();
    EXPECT_EQ(signText("testo"), ZVC_ERR_NOT_LOGGED_IN);
    ASSERT_EQ(kvLogin(zvtest::user_pin), ZVC_OK);
    for (const auto& [key, code] : {std::pair{"DS", ZVC_ERR_KEY},
                                    {"", ZVC_ERR_KEY},
                                    {"senza", ZVC_ERR_CERTIFICATE},
                                    {"ellittica", ZVC_ERR_CERTIFICATE},
                                    {"altrui", ZVC_ERR_SIGNATURE}}) {
        EXPECT_EQ(signText("testo", key), code) << key << ": " << lastError();
        EXPECT_NE(lastError(), "");
        EXPECT_FALSE(std::filesystem::exists(path("out"))) << key;
    }
    // Counts and lengths beyond the buffers, and a card that goes in the middle.
    for (const auto& [rule, code] : {std::pair{"C_FindObjects:1:absurd:count", ZVC_ERR_MODULE_ANSWER},
                                     {"C_GetAttributeValue:*:absurd:length", ZVC_ERR_CERTIFICATE},
                                     {"C_GetAttributeValue:*:absurd:unavailable", ZVC_ERR_CERTIFICATE},
                                     {"C_Sign:1:absurd:length", ZVC_ERR_MODULE_ANSWER},
                                     {"C_Sign:1:do-and-answer:0x101", ZVC_ERR_NOT_LOGGED_IN},
                                     {"C_Sign:1:take-out", ZVC_ERR_CARD_REMOVED}}) {
        module.reset();
        ASSERT_EQ(module.add_rules(rule), 0);
        EXPECT_EQ(signText("testo"), code) << rule << ": " << lastError();
        EXPECT_FALSE(std::filesystem::exists(path("out"))) << rule;
    }
    ASSERT_EQ(module.put_back(), 0);
    openAndLogin();
    for (const char* hash : {"SHA1", "sha256", ""})
        EXPECT_EQ(signText("testo", "DS0", hash), ZVC_ERR_HASH);
    const std::string in = write("in", "testo"), out = path("out");
    EXPECT_EQ(kvSignFile("DS0", "SHA256", in.c_str(), in.c_str()), ZVC_ERR_OUTPUT);
    EXPECT_EQ(content(in), "testo");
    EXPECT_EQ(kvSignFile("DS0", "SHA256", path("missing").c_str(), out.c_str()), ZVC_ERR_INPUT);
    EXPECT_EQ(kvSignFile("DS0", "SHA256", in.c_str(), path("no/out").c_str()), ZVC_ERR_OUTPUT);
    EXPECT_EQ(kvSignFile("DS0", nullptr, in.c_str(), out.c_str()), ZVC_ERR_ARGUMENT);
    EXPECT_EQ(signText("testo"), ZVC_OK) << "the session goes on";
}
