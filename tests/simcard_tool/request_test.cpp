// The authority on requests as the renewal library sends them, and on what must not get a certificate.
#include "ossl/memory_bio.h"
#include "simcard/authority/certificate_file.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/files.h"
#include "simcard/authority/name.h"
#include "simcard/authority/renewal.h"

#include <gtest/gtest.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <future>
#include <set>

namespace {

using namespace simcard;

constexpr unsigned CADES = CMS_BINARY | CMS_CADES;

std::string base64_lines(const std::string& bytes) {
    const ossl::Bio text = ossl::writing();
    ossl::Bio chain(BIO_new(BIO_f_base64()));
    BIO_push(chain.get(), text.get());
    BIO_write(chain.get(), bytes.data(), static_cast<int>(bytes.size()));
    BIO_flush(chain.get());
    BIO_pop(chain.get());
    return std::string(ossl::written(*text));
}

EVP_PKEY& test_key(std::size_t index) {
    static const std::vector<ossl::Key> keys = [] {
        KeySource source = KeySource::from_file(ZV_TEST_KEYS);
        std::vector<ossl::Key> all(4);
        for (ossl::Key& key : all)
            key = source.next();
        return all;
    }();
    return *keys[index];
}

class AuthorityTest : public testing::Test {
  protected:
    Authority new_authority(const char* name) {
        KeySource keys = KeySource::from_file(ZV_TEST_KEYS);
        return Authority::open_or_create(folder.path() / name, keys);
    }

    ossl::Certificate certificate_from(const Authority& issuer, int days, const char* kind = "signature") {
        const std::time_t now = std::time(nullptr);
        return issuer.issue(*holder_name(ada, "1"), old_key, kind_named(kind),
                            {now - 400 * ONE_DAY, now + days * ONE_DAY});
    }

    // A request signed with SHA-1, as cards sign theirs.
    std::string request_for(const Holder& person, EVP_PKEY& signing_key) {
        const ossl::Request made_here(X509_REQ_new());
        X509_REQ_set_subject_name(made_here.get(), holder_name(person, "2").get());
        X509_REQ_set_pubkey(made_here.get(), &new_key);
        X509_REQ_sign(made_here.get(), &signing_key, EVP_sha1());
        const ossl::Bio text = ossl::writing();
        PEM_write_bio_X509_REQ(text.get(), made_here.get());
        return std::string(ossl::written(*text));
    }

    std::string signed_message(const std::string& content, X509& certificate, unsigned flags = CADES) {
        const ossl::Bio source = ossl::reading(content);
        const ossl::Message made_here(CMS_sign(&certificate, &old_key, nullptr, source.get(), flags));
        const ossl::Bio bytes = ossl::writing();
        i2d_CMS_bio(bytes.get(), made_here.get());
        return std::string(ossl::written(*bytes));
    }

    std::string refusal(std::string_view file, const RenewalTerms& terms = {}) {
        try {
            (void)answer_request(authority, file, terms);
            return "a certificate was issued";
        } catch (const Refusal& reason) {
            return reason.what();
        }
    }

    Holder ada;
    EVP_PKEY& old_key = test_key(1);
    EVP_PKEY& new_key = test_key(2);
    TemporaryFolder folder{testing::TempDir() + "authority"};
    Authority authority = new_authority("authority");
    ossl::Certificate signer = certificate_from(authority, 30);
    std::string request = request_for(ada, new_key);
    std::string message = signed_message(request, *signer);
};

TEST_F(AuthorityTest, AnswersARequestInEveryForm) {
    const std::string base64 = base64_lines(message);
    for (const std::string& file :
         {base64, message, "-----BEGIN PKCS7-----\n" + base64 + "-----END PKCS7-----\n"}) {
        const Renewal renewal = answer_request(authority, file, {});
        X509& issued = *renewal.certificate;
        EXPECT_EQ(X509_verify(&issued, X509_get0_pubkey(&authority.certificate())), 1);
        EXPECT_EQ(EVP_PKEY_eq(X509_get0_pubkey(&issued), &new_key), 1);
        EXPECT_EQ(readable(*X509_get_subject_name(&issued)), readable(*holder_name(ada, "2")));
        EXPECT_EQ(X509_get_key_usage(&issued), std::uint32_t{KU_NON_REPUDIATION});
        EXPECT_TRUE(renewal.request.notices.empty());
    }
}

TEST_F(AuthorityTest, GivesSerialsOfWhichSomeBeginWithAZeroByte) {
    std::set<bool> seen;
    for (int i = 0; i < 64 && seen.size() < 2; ++i) {
        unsigned char der[32] = {}, *end = der;
        i2d_ASN1_INTEGER(X509_get_serialNumber(certificate_from(authority, 30).get()), &end);
        seen.insert(der[2] == 0);
    }
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(AuthorityTest, TakesABareRequestOnlyWhenAskedTo) {
    EXPECT_EQ(refusal(request), "The request is not signed by a certificate's holder.");
    EXPECT_EQ(refusal(request, {.bare_requests = true}), "A request that nobody signed needs a kind.");
    const RenewalTerms terms{.kind = &kind_named("signature"), .days = 10, .bare_requests = true};
    const Renewal renewal = answer_request(authority, request, terms);
    int days = 0;
    int seconds = 0;
    ASN1_TIME_diff(&days, &seconds, nullptr, X509_get0_notAfter(renewal.certificate.get()));
    EXPECT_NEAR(days, 10, 1);
}

TEST_F(AuthorityTest, IssuesTheSignersKindAlsoWhenItHasExpired) {
    const std::string file = signed_message(request, *certificate_from(authority, -5, "cns"));
    EXPECT_EQ(answer_request(authority, file, {.kind = &kind_named("signature")}).kind.name,
              std::string("signature"));
    const Renewal renewal = answer_request(authority, file, {});
    EXPECT_EQ(renewal.kind.name, std::string("cns"));
    ASSERT_EQ(renewal.request.notices.size(), 1U);
    EXPECT_NE(renewal.request.notices[0].find("has expired"), std::string::npos);
}

TEST_F(AuthorityTest, RefusesWhatItCannotBeSureOf) {
    KeySource other_keys = KeySource::from_file(ZV_TEST_KEYS);
    (void)other_keys.next();
    const Authority other = Authority::open_or_create(folder.path() / "other", other_keys);
    EXPECT_EQ(refusal(signed_message(request, *certificate_from(other, 30))),
              "The signer's certificate was not issued by this authority.");
    EXPECT_EQ(refusal(signed_message(request_for(ada, old_key), *signer)),
              "The request is not signed by the key that it carries.");
    Holder someone;
    someone.tax_code = "RSSMRA85T10Z999X";
    EXPECT_EQ(refusal(signed_message(request_for(someone, new_key), *signer)),
              "The request is for another person than the one who signed it.");
    std::string altered = message;
    char& character = altered[altered.find("BEGIN CERTIFICATE REQUEST-----\n") + 60];
    character = character == 'A' ? 'B' : 'A';
    EXPECT_EQ(refusal(altered), "The signature of the message is wrong, or its content was altered.");
}

TEST_F(AuthorityTest, RefusesWhatSaysTooLittle) {
    for (const unsigned flags : {unsigned{CMS_BINARY}, unsigned{CMS_BINARY | CMS_NOATTR}})
        EXPECT_EQ(refusal(signed_message(request, *signer, flags)),
                  "The signature lacks a signed attribute (content type, message digest or "
                  "signing-certificate-v2).");
    EXPECT_EQ(refusal(signed_message(request, *signer, CADES | CMS_NOCERTS)),
              "The message does not carry its signer's certificate.");
    EXPECT_EQ(refusal(signed_message(request, *signer, CADES | CMS_DETACHED)),
              "The signed message carries no request.");
    const std::string base64 = base64_lines(message);
    for (const std::string& file :
         {signed_message("no request", *signer), base64.substr(0, base64.size() - 40),
          message.substr(0, message.size() - 1), std::string("MII="), std::string("=="),
          std::string("\0\x30", 2)})
        EXPECT_EQ(refusal(file), "The file holds no certificate request that can be read.");
    EXPECT_EQ(refusal(""), "The request file is empty.");
    EXPECT_EQ(refusal(message + '\0'), "The file has bytes behind the end of the request.");
}

TEST_F(AuthorityTest, IsOneAlsoWhenTwoMakeItAtOnce) {
    const auto serial = [&](std::size_t first_key) {
        KeySource keys = KeySource::from_file(ZV_TEST_KEYS);
        for (std::size_t i = 0; i < first_key; ++i)
            (void)keys.next();
        const Authority opened = Authority::open_or_create(folder.path() / "shared", keys);
        return certificate_text(opened.certificate(), CertificateForm::pem);
    };
    auto other = std::async(std::launch::async, serial, 1);
    EXPECT_EQ(serial(2), other.get());
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 2)
        << "authority, shared";
}

TEST_F(AuthorityTest, KeepsItsKeyToItsOwnerAndIsNotOpenedWithAnother) {
    const std::filesystem::path file = folder.path() / "authority/key.pem";
    const auto owner = std::filesystem::perms::owner_read | std::filesystem::perms::owner_write;
    EXPECT_EQ(std::filesystem::status(file).permissions(), owner);
    write_private_key(file, new_key);
    EXPECT_THROW((void)Authority::open(folder.path() / "authority"), Refusal);
    const ossl::Key curve(EVP_EC_gen("P-256"));
    write_private_key(file, *curve);
    EXPECT_THROW((void)Authority::open(folder.path() / "authority"), Refusal);
    write_file(file, "nothing", Access::owner_only);
    EXPECT_THROW((void)Authority::open(folder.path() / "authority"), Refusal);
}

} // namespace
