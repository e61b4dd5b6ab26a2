#include "simcard/tool/card_objects.h"
#include "simcard/tool/token_session.h"
#include "tests/crypt/raw_certificate.h"
#include "tests/crypt/scratch.h"
#include "tests/crypt/signed_file.h"
#include "tests/simcard_tool/test_cards.h"
#include "tests/support/card.h"
#include "tests/support/module.h"

#include <openssl/ess.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <ctime>
#include <map>
#include <thread>

namespace {

namespace fs = std::filesystem;
using test::last_error;

test::Bytes digest(const char* name, const std::string& data) {
    test::Bytes value(static_cast<std::size_t>(EVP_MD_get_size(EVP_get_digestbyname(name))));
    (void)EVP_Q_digest(nullptr, name, nullptr, data.data(), data.size(), value.data(), nullptr);
    return value;
}

// Key pairs made once: a line each, bits and PKCS#1 in base64.
test::KeyPtr stored_key(int bits) {
    std::ifstream file(SIGNING_KEYS);
    std::string text;
    for (int size = 0; size != bits && file >> size >> text;) {
    }
    test::Bytes der(text.size());
    const auto* start = der.data();
    const int length = EVP_DecodeBlock(der.data(), reinterpret_cast<unsigned char*>(text.data()),
                                       static_cast<int>(text.size()));
    return {d2i_AutoPrivateKey(nullptr, &start, length), EVP_PKEY_free};
}

// The most memory that this process ever had, in the system's unit.
long peak_memory() {
    struct rusage use {};
#ifndef __SANITIZE_ADDRESS__ // which keeps what is freed
    (void)::getrusage(RUSAGE_SELF, &use);
#endif
    return use.ru_maxrss;
}

// Two validators that share no code; the second takes an empty content for none.
constexpr auto OPENSSL =
    "openssl cms -verify -cades -CAfile ca.pem -purpose any -inform DER -out content -in";
constexpr auto GNUTLS = GNUTLS_CERTTOOL " --p7-verify --load-ca-certificate ca.pem --inder --infile";

class Sign : public test::Scratch {
  protected:
    Sign() {
        hold(test::make_authority("Autorità di prova"), "omonima");
        hold(certificate, "DS0");
        write("ca.pem", test::pem(authority.der));
    }
    ~Sign() override { (void)kvFinalize(); }

    void hold(simcard::Attributes object) {
        const simcard::SoftHsm hsm(cards.path());
        simcard::TokenSession token(hsm, card);
        ASSERT_TRUE(token.login(zvtest::USER_PIN));
        token.create(std::move(object));
    }
    void hold(const test::Certificate& one, const char* id) {
        hold(simcard::certificate_object(*one.x509, id));
        ++certificates_held;
    }
    test::KeyPtr new_key(const char* id, test::KeyPtr key = nullptr) {
        if (!key) key = keys.next();
        hold(simcard::private_key_object(*key, id));
        return key;
    }
    static void open() {
        std::string path = ZVSIMCARD_MODULE;
        ASSERT_EQ(kvInitialize(path.data(), 0), ZVC_OK) << last_error();
    }
    static void open_and_login() {
        open();
        ASSERT_EQ(kvLogin(zvtest::USER_PIN), ZVC_OK) << last_error();
    }
    int sign_from(const std::string& in, const char* key = "DS0", const char* hash = "SHA256") {
        return kvSignFile(key, hash, in.c_str(), path("out").c_str());
    }
    int sign_text(const std::string& text, const char* key = "DS0", const char* hash = "SHA256") {
        return sign_from(write("in", text), key, hash);
    }
    test::Signed result() { return test::Signed(content(path("out"))); }

    [[nodiscard]] bool accepts(const char* validator) const {
        return std::system(("cd " + folder.string() + " && " + validator + " out >said 2>&1").c_str()) == 0;
    }

    zvtest::EmptyCards cards;
    simcard::Card card = cards.add();
    simcard::KeySource keys = simcard::KeySource::from_file(ZV_TEST_KEYS);
    zvtest::Module module;
    unsigned long certificates_held = 0;
    test::Certificate authority = test::make_authority("Autorità di prova");
    test::Certificate certificate = test::make({.issuer = &authority, .key = new_key("DS0")});
};

} // namespace

TEST_F(Sign, IsMadeOnACardWithHundredsOfCertificates) {
    constexpr int many = 300;
    {
        const simcard::SoftHsm hsm(cards.path());
        simcard::TokenSession token(hsm, card);
        ASSERT_TRUE(token.login(zvtest::USER_PIN));
        for (int i = 0; i < many; ++i)
            token.create(simcard::certificate_object(*certificate.x509, "of another key"));
    }
    open_and_login();
    EXPECT_EQ(sign_text("testo"), ZVC_OK) << last_error();
    EXPECT_TRUE(result().is_by(certificate));
}

TEST_F(Sign, MakesACanonicalCadesSignatureThatTwoValidatorsAccept) {
    hold(authority, "CA");
    open_and_login();
    // The largest first: the peak of memory stays.
    for (const auto& [bits, hash, size] : {std::tuple{2048, "SHA256", 8U << 20},
                                           {1024, "SHA512", 0U},
                                           {1030, "SHA384", 130U},
                                           {4096, "SHA256", 65537U}}) {
        const std::string key = std::to_string(bits);
        const auto own = test::make({.issuer = &authority, .key = new_key(key.c_str(), stored_key(bits))});
        hold(own, key.c_str());
        fs::resize_file(write("in", ""), size);
        const std::time_t before = std::time(nullptr);
        const long memory = peak_memory();
        module.reset();
        ASSERT_EQ(sign_from(path("in"), key.c_str(), hash), ZVC_OK) << bits << ": " << last_error();
        EXPECT_EQ(module.calls(), 11 + certificates_held);
        ASSERT_EQ(kvFileToBase64(path("out").data(), path("text").data(), "e"), ZVC_OK);
        EXPECT_LE(peak_memory(), memory + memory / 8) << "not loaded whole";
        EXPECT_TRUE(accepts(OPENSSL)) << bits << content(path("said"));
        EXPECT_TRUE(size == 0 || accepts(GNUTLS)) << bits << content(path("said"));
        const auto it = result();
        EXPECT_TRUE(it.is_by(own));
        EXPECT_TRUE(it.content == std::string(size, '\0'));
        EXPECT_EQ(CMS_signed_get_attr_count(it.signer), 4);
        EXPECT_LE(CMS_unsigned_get_attr_count(it.signer), 0);
        EXPECT_EQ(OBJ_obj2nid(it.attribute<ASN1_OBJECT>(NID_pkcs9_contentType, V_ASN1_OBJECT)),
                  NID_pkcs7_data);
        EXPECT_EQ(it.attribute_bytes(NID_pkcs9_messageDigest, V_ASN1_OCTET_STRING), digest(hash, it.content));
        const auto* time = it.attribute<ASN1_TIME>(NID_pkcs9_signingTime, V_ASN1_UTCTIME);
        ASSERT_TRUE(time != nullptr && ASN1_TIME_cmp_time_t(time, before) >= 0);
        EXPECT_LE(ASN1_TIME_cmp_time_t(time, std::time(nullptr)), 0);
        // As OpenSSL makes it: SHA-256 of the certificate, its issuer and serial number.
        const ossl::Owner<ESS_SIGNING_CERT_V2, ESS_SIGNING_CERT_V2_free> ess(
            OSSL_ESS_signing_cert_v2_new_init(EVP_sha256(), own.x509.get(), nullptr, 1));
        EXPECT_EQ(it.attribute_bytes(NID_id_smime_aa_signingCertificateV2, V_ASN1_SEQUENCE),
                  test::encoded<ESS_SIGNING_CERT_V2>(i2d_ESS_SIGNING_CERT_V2, ess.get()));
        EXPECT_EQ(it.certificates.size(), size > 12000 ? 1U : 2U);
        EXPECT_EQ(it.holds(authority), size <= 12000) << "and never its namesake with another key";
    }
    write("out", content(path("out")).replace(fs::file_size(path("out")) / 2, 1, "x"));
    EXPECT_FALSE(accepts(OPENSSL) || accepts(GNUTLS));
}

TEST_F(Sign, TheIssuerGivesWayToTheRequestsLimit) {
    hold(authority, "CA");
    open_and_login();
    constexpr std::size_t longest = 12096; // what gives 16380 characters in lines of 64; one more gives 16385
    ASSERT_EQ(sign_text(std::string(10000, 'x')), ZVC_OK) << last_error();
    const std::size_t around = fs::file_size(path("out")) - 10000;
    ASSERT_EQ(sign_text(std::string(longest - around, 'x')), ZVC_OK);
    EXPECT_EQ(fs::file_size(path("out")), longest);
    EXPECT_EQ(result().certificates.size(), 2U);
    ASSERT_EQ(sign_text(std::string(longest - around + 1, 'x')), ZVC_OK);
    EXPECT_EQ(result().certificates, std::vector<test::Bytes>{certificate.der});
}

TEST_F(Sign, OfSeveralCertificatesTheBestOfTheKeysOwnIsTaken) {
    enum Part { best, worse, another_keys };
    std::map<std::string, test::KeyPtr> key_of;
    std::map<std::string, test::Certificate> best_of;
    for (const auto& [id, from, to, part] : {std::tuple{"vivi", "2020", "2021", worse}, // expired
                                             {"vivi", "2090", "2190", worse},           // not yet valid
                                             {"vivi", "2024", "2100", best},
                                             {"vivi", "2023", "2100", worse},
                                             {"scaduti", "1990", "2021", best},
                                             {"scaduti", "2019", "2020", worse},
                                             {"misti", "2024", "2049", best},
                                             {"misti", "2024", "2100", another_keys}}) {
        auto& key = key_of[id];
        if (!key) key = new_key(id);
        const auto one = test::make({.serial = "0B" + std::to_string(10 + certificates_held),
                                     .not_before = from + std::string("0101000000Z"),
                                     .not_after = to + std::string("0101000000Z"),
                                     .issuer = &authority,
                                     .key = part == another_keys ? stored_key(1024) : key});
        hold(one, id);
        if (part == best) best_of[id] = one;
    }
    open_and_login();
    for (const auto& [id, one] : best_of) {
        module.reset();
        ASSERT_EQ(sign_text("testo", id.c_str()), ZVC_OK) << id << last_error();
        EXPECT_TRUE(result().is_by(one)) << id;
        EXPECT_EQ(result().certificates.size(), 1U) << "the card does not hold the issuer";
        EXPECT_EQ(module.calls(), 11 + certificates_held + (id == "misti" ? 1 : 0));
    }
}

TEST_F(Sign, FailuresHaveTheirCodeAndLeaveNoFile) {
    for (const char* key : {"senza", "altrui", "ellittica"})
        (void)new_key(key);
    hold(certificate, "altrui");
    hold(authority, "ellittica");
    EXPECT_EQ(sign_text("testo"), ZVC_ERR_NO_SESSION);
    open();
    EXPECT_EQ(sign_text("testo"), ZVC_ERR_NOT_LOGGED_IN);
    for (const auto& [key, code] : {std::pair{"DS", ZVC_ERR_KEY},
                                    {"", ZVC_ERR_KEY},
                                    {"senza", ZVC_ERR_CERTIFICATE},
                                    {"ellittica", ZVC_ERR_CERTIFICATE},
                                    {"altrui", ZVC_ERR_SIGNATURE}}) {
        write("out", "of an earlier run");
        open_and_login();
        EXPECT_EQ(sign_text("testo", key), code) << key << ": " << last_error();
        EXPECT_NE(last_error(), "");
        EXPECT_FALSE(fs::exists(path("out"))) << key;
    }
    // Counts and lengths beyond the buffers, keys that do not sign, and a card that goes in the middle.
    for (const auto& [rule, code] : {std::pair{"C_FindObjects:1:absurd:count", ZVC_ERR_MODULE_ANSWER},
                                     {"C_GetAttributeValue:*:absurd:length", ZVC_ERR_CERTIFICATE},
                                     {"C_GetAttributeValue:*:absurd:unavailable", ZVC_ERR_CERTIFICATE},
                                     {"C_GetAttributeValue:*:answer:0x30", ZVC_ERR_MODULE},
                                     {"C_GetAttributeValue:1:answer:0x30", ZVC_OK}, // another's is broken
                                     {"C_SignInit:1:answer:0x63", ZVC_ERR_KEY},
                                     {"C_Sign:1:absurd:length", ZVC_ERR_MODULE_ANSWER},
                                     {"C_Sign:1:do-and-answer:0x101", ZVC_ERR_NOT_LOGGED_IN},
                                     {"C_Sign:1:take-out", ZVC_ERR_CARD_REMOVED}}) {
        module.reset();
        open_and_login();
        ASSERT_EQ(module.add_rules(rule), 0);
        EXPECT_EQ(sign_text("testo"), code) << rule << ": " << last_error();
        EXPECT_EQ(fs::exists(path("out")), code == ZVC_OK) << rule;
    }
    ASSERT_EQ(module.put_back(), 0);
    CK_INFO info;
    for (const char* hash : {"SHA1", "sha256", "", static_cast<const char*>(nullptr)}) {
        open_and_login();
        EXPECT_EQ(kvLogin("777777"), ZVC_OK) << "an open card takes any PIN";
        EXPECT_EQ(sign_text("testo", "DS0", hash), hash == nullptr ? ZVC_ERR_ARGUMENT : ZVC_ERR_HASH);
        EXPECT_EQ(module->C_GetInfo(&info), CKR_CRYPTOKI_NOT_INITIALIZED) << "and so is not left open";
        EXPECT_NE(last_error(), "");
        open();
        EXPECT_EQ(kvLogin("777777"), ZVC_ERR_PIN_INCORRECT);
        EXPECT_EQ(kvLogin(zvtest::USER_PIN), ZVC_OK) << "a refused login leaves the session";
    }
    EXPECT_EQ(sign_text("testo"), ZVC_OK);
    module.reset();
    ASSERT_EQ(module.add_rules("C_Login:1:answer:0x30"), 0);
    EXPECT_EQ(kvLogin(zvtest::USER_PIN), ZVC_ERR_MODULE);
    EXPECT_EQ(sign_text("testo", "DS"), ZVC_ERR_KEY) << "the card is open all the same";
    EXPECT_EQ(module->C_GetInfo(&info), CKR_CRYPTOKI_NOT_INITIALIZED);
    // Where the host's own session would keep the card open, it is logged out; what the host opened stays open.
    const bool ours[] = {true, false};
    for (const bool own : ours) {
        ASSERT_EQ(kvFinalize(), ZVC_OK);
        ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
        const auto session = module.open();
        ASSERT_EQ(own ? CKR_OK : module.login(session, zvtest::USER_PIN), CKR_OK);
        open_and_login();
        EXPECT_EQ(sign_text("testo", "DS"), ZVC_ERR_KEY);
        EXPECT_EQ(module.login(session, zvtest::USER_PIN), own ? CKR_OK : CKR_USER_ALREADY_LOGGED_IN);
        ASSERT_EQ(module->C_Finalize(nullptr), CKR_OK);
    }
}

TEST_F(Sign, WhatAuthoritiesIssueSignsByteByByte) {
    const auto tame = test::make({.subject = test::WILD_SUBJECT,
                                  .serial = test::WILD_SERIAL,
                                  .issuer = &authority,
                                  .key = new_key("strano")});
    const std::string odd = test::as_text(test::wild(tame, authority));
    simcard::Attributes object;
    object.add_number(CKA_CLASS, CKO_CERTIFICATE).add_flag(CKA_TOKEN, true).add_flag(CKA_PRIVATE, false);
    object.add_number(CKA_CERTIFICATE_TYPE, CKC_X_509).add(CKA_ID, "strano").add(CKA_SUBJECT, "0");
    hold(std::move(object.add(CKA_VALUE, odd + std::string(9, '\0'))));
    hold(authority, "CA");
    open_and_login();
    ASSERT_EQ(sign_text("testo", "strano"), ZVC_OK) << last_error();
    const std::string text = content(path("out"));
    EXPECT_NE(text.find(odd), std::string::npos);
    EXPECT_NE(text.find(test::as_text(authority.der)), std::string::npos) << "its issuer";
    const std::string serial("\x02\x04\0\0\x8A\x01", 6),
        issuer = test::as_text(
            test::encoded<X509_NAME>(i2d_X509_NAME, X509_get_subject_name(authority.x509.get())));
    EXPECT_NE(text.rfind(issuer + serial), std::string::npos) << "the signer's";
}

// At the end nothing is given any more in this process.
TEST_F(Sign, AModuleThatAnswersNonsenseGetsNoPin) {
    const auto own = test::make({.key = keys.next()});
    hold(simcard::private_key_object(*own.key, "firma", false));
    hold(own, "firma");
    for (int read = 1; read <= 12; ++read) {
        open_and_login();
        module.reset();
        ASSERT_EQ(module.add_rules(("C_GetAttributeValue:" + std::to_string(read) + ":absurd:text").c_str()),
                  0);
        (void)sign_text("testo", "firma");
        EXPECT_EQ(module.calls("C_Login"), 0U) << read;
        (void)kvFinalize();
        module.reset();
    }
}

TEST_F(Sign, AKeyThatWantsThePinAtEachSignatureGetsItOnceAndNeverAfterARefusal) {
    const auto own = test::make({.key = keys.next()});
    hold(simcard::private_key_object(*own.key, "chiede", true));
    hold(own, "chiede");
    open_and_login();
    for (const unsigned long logins : {2U, 3U}) {
        EXPECT_EQ(sign_text("testo", "chiede"), ZVC_OK) << last_error();
        EXPECT_TRUE(result().is_by(own));
        EXPECT_EQ(module.calls("C_Login"), logins);
    }
    const auto expect = [&](int code, const char* reason, unsigned long logins) {
        EXPECT_EQ(sign_text("testo", "chiede"), code);
        EXPECT_NE(last_error().find(reason), std::string::npos) << last_error();
        EXPECT_EQ(module.calls("C_Login"), logins) << reason;
        (void)kvFinalize();
        module.reset();
    };
    simcard::update_card(card.folder, [](simcard::Card& it) { it.pin_tries_left = 1; });
    expect(ZVC_ERR_PIN_UNSENT, "tentativo", 3);
    simcard::update_card(card.folder, [](simcard::Card& it) { it.pin_tries_left = 3; });
    ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
    const auto session = module.open();
    ASSERT_EQ(module.login(session, zvtest::USER_PIN), CKR_OK);
    open_and_login();
    expect(ZVC_ERR_PIN_UNSENT, "conserva", 2); // whatever it was, the card took it
    ASSERT_EQ(module->C_Finalize(nullptr), CKR_OK);
    open_and_login();
    ASSERT_EQ(module.add_rules("C_Login:1:answer:0xA0"), 0);
    expect(ZVC_ERR_KEY_PIN, "diverso", 2);
    open_and_login();
    expect(ZVC_ERR_PIN_UNSENT, "rifiutato", 1);
    open_and_login();
    EXPECT_EQ(sign_text("testo"), ZVC_OK) << "another key";
}

TEST_F(Sign, FilesThatCannotBeReadOrWrittenSpendNoSignature) {
    const std::string in = write("in", "testo"), out = path("out"),
                      device = ::mknod(path("device").c_str(), S_IFCHR | 0600, 0x103) == 0 ? "device" : ".";
    // The last one is a plain file that opens and fails when it is read.
    for (const auto& from : {path("missing"), path("."), in + "/in", std::string("/proc/self/mem")}) {
        open_and_login();
        EXPECT_EQ(sign_from(from), ZVC_ERR_INPUT) << from;
        EXPECT_NE(last_error().find(from), std::string::npos);
        EXPECT_FALSE(fs::exists(out));
    }
    for (const auto& to : {in, path("no/out"), path(device)}) {
        open_and_login();
        EXPECT_EQ(kvSignFile("DS0", "SHA256", in.c_str(), to.c_str()), ZVC_ERR_OUTPUT) << to;
    }
    EXPECT_EQ(content(in), "testo");
    EXPECT_EQ(module.calls("C_FindObjectsInit"), 0U);
    open_and_login();
    struct rlimit limit {}; // a disk with room for a part of it
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const struct rlimit small { 100000, limit.rlim_max };
    (void)std::signal(SIGXFSZ, SIG_IGN);
    write("in", std::string(200000, 'x'));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    EXPECT_EQ(sign_from(in), ZVC_ERR_OUTPUT);
    EXPECT_FALSE(fs::exists(out));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
}

TEST_F(Sign, AFileThatChangesMeanwhileIsTold) {
    const std::string in = path("in"), out = path("out");
    const std::pair<std::function<void()>, int> changes[] = {
        {[&] { std::ofstream(in, std::ios::app) << "!"; }, ZVC_ERR_INPUT},
        {[&] { fs::resize_file(in, 2); }, ZVC_ERR_INPUT},
        {[&] { write("in", "TESTO"); }, ZVC_ERR_INPUT},
        {[&] { fs::remove(out), write("out", "altrui"); }, ZVC_ERR_OUTPUT},
        {[&] { fs::remove(in); }, ZVC_OK},
    };
    for (const auto& [change, code] : changes) {
        int result = -1;
        // A change may come too early or too late.
        for (int tries = 0; tries < 10 && result != code; ++tries) {
            fs::remove(out);
            module.reset();
            open_and_login();
            ASSERT_EQ(module.add_rules("C_FindObjectsInit:1:delay:60000"), 0);
            write("in", "testo");
            std::thread other([&, act = change] {
                while (!fs::exists(out))
                    std::this_thread::yield();
                std::this_thread::sleep_for(std::chrono::milliseconds(15));
                act();
            });
            result = sign_from(in);
            other.join();
        }
        EXPECT_EQ(result, code) << last_error();
        EXPECT_EQ(fs::exists(out), code != ZVC_ERR_INPUT);
        EXPECT_EQ(content(out) == "altrui", code == ZVC_ERR_OUTPUT) << "another's file stays";
        EXPECT_TRUE(code != ZVC_OK || this->result().content == "testo");
    }
}
