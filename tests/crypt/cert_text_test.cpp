#include "tests/crypt/certificates.h"

#include <gtest/gtest.h>

#include <algorithm>

using test::base64;
using test::bundle;
using test::Bytes;
using test::pem;

namespace {

class CertText : public testing::Test {
  protected:
    // Sends a text the way of the installing routine: writeBuff, then SplitCert.
    int split(std::string text) {
        std::vector<char> buffer(ZVC_CERT_TEXT_SIZE, 'x');
        writeBuff(text.data(), buffer.data());
        record.derLength = 1;
        return SplitCert(buffer.data(), &record, reason, sizeof reason);
    }
    [[nodiscard]] Bytes found() const { return {record.der, record.der + record.derLength}; }

    test::Certificate root = test::make_authority("Radice");
    test::Certificate authority = test::make_authority("Autorità", &root);
    test::Certificate holder = test::make({.issuer = &authority});
    test::Certificate another = test::make({.subject = "CN=Altro", .issuer = &authority});
    datiCert record{};
    char reason[512] = "";
};

std::string replaced(std::string text, const std::string& with) {
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += with.size())
        text.replace(at, 1, with);
    return text;
}

// With the notes that OpenSSL puts behind a certificate.
Bytes trusted(const test::Certificate& certificate) {
    X509* it = certificate.x509.get();
    (void)X509_alias_set1(it, reinterpret_cast<const unsigned char*>("titolare"), -1);
    return test::encoded<X509>(i2d_X509_AUX, it);
}

} // namespace

TEST_F(CertText, EveryFormGivesTheHoldersCertificate) {
    const std::string one = pem(holder.der), all = pem(root.der) + pem(authority.der) + one;
    const std::string bundled = pem(bundle({authority, holder}), "PKCS7");
    for (const std::string& form :
         {base64(holder.der),
          " " + base64(holder.der) + "\n",
          "\xEF\xBB\xBF" + base64(holder.der),
          one,
          replaced(one, "\r\n"),
          replaced(one, ""),
          "-----BEGIN CERTIFICATE-----\n" + base64(holder.der) + "\n-----END CERTIFICATE-----",
          pem(holder.der, "X509 CERTIFICATE"),
          all,
          replaced(all, ""),
          one + pem(authority.der),
          pem(authority.der) + one + one,
          "Soggetto: titolare\n" + one + "\n",
          base64(bundle({root, holder, authority})),
          replaced(base64(bundle({authority, holder})), "\r\n"),
          bundled,
          replaced(bundled, ""),
          pem(bundle({holder}), "CMS"),
          pem(bundle({}), "PKCS7") + one,
          pem(bundle({root}), "CERTIFICATE CHAIN") + "tra i blocchi: -- \n" + one,
          pem(trusted(holder), "TRUSTED CERTIFICATE"),
          one + std::string(1, '\0') + "-----BEGIN"}) {
        EXPECT_EQ(split(form), ZVC_OK) << reason << '\n' << form;
        EXPECT_EQ(found(), holder.der);
        EXPECT_STREQ(reason, "");
    }
}

// OpenSSL reads none of it.
TEST_F(CertText, WhatAuthoritiesIssueComesOutByteByByte) {
    const auto tame =
        test::make({.subject = test::WILD_SUBJECT, .serial = test::WILD_SERIAL, .issuer = &authority});
    const Bytes odd = test::wild(tame.der);
    const unsigned char* end = odd.data();
    ASSERT_EQ(d2i_X509(nullptr, &end, static_cast<long>(odd.size())), nullptr);
    for (const std::string& form :
         {base64(odd), pem(odd) + pem(authority.der), pem(test::wild(trusted(tame)), "TRUSTED CERTIFICATE"),
          pem(test::wild(bundle({authority, tame})), "PKCS7"), base64(test::wild(bundle({tame, root})))}) {
        EXPECT_EQ(split(form), ZVC_OK) << reason << '\n' << form;
        EXPECT_EQ(found(), odd);
    }
}

TEST_F(CertText, AnAuthorityWithoutTheMarkIsKnownByWhatItIssued) {
    const auto old = test::make({.subject = "CN=Vecchia autorità", .extensions = ""});
    const auto issued = test::make({.issuer = &old});
    EXPECT_EQ(split(pem(old.der) + pem(issued.der)), ZVC_OK) << reason;
    EXPECT_EQ(found(), issued.der);
    const auto self_made = test::make({.extensions = "basicConstraints = critical, CA:TRUE"});
    for (const auto& alone : {old.der, self_made.der})
        EXPECT_EQ(split(pem(alone)), ZVC_OK) << "alone it is a certificate like any other";
    EXPECT_EQ(split(pem(self_made.der) + pem(issued.der)), ZVC_OK) << reason;
    EXPECT_EQ(found(), issued.der);
}

TEST_F(CertText, AnythingElseIsRefusedWithAReason) {
    const auto longer = [](Bytes der) {
        der.push_back(0);
        return der;
    };
    const auto cut = [](Bytes der) {
        der.pop_back();
        return der;
    };
    const std::string one = pem(holder.der), body = base64(holder.der),
                      begin = "-----BEGIN CERTIFICATE-----\n";
    const std::string end = "-----END CERTIFICATE-----", date = "240131010203Z";
    const Bytes chain = bundle({authority, holder});
    Bytes bad_date = holder.der; // of another type
    *(std::search(bad_date.begin(), bad_date.end(), date.begin(), date.end()) - 2) = 0x04;
    std::string long_name = "CN=Lungo";
    for (int unit = 0; unit < 8; ++unit)
        long_name += "|OU=" + std::string(60, 'x');
    const struct {
        std::string text;
        int code;
        const char* reason;
    } cases[] = {
        {"", ZVC_ERR_TEXT_FORM, "vuoto"},
        {"\xEF\xBB\xBF \r\n\t", ZVC_ERR_TEXT_FORM, "vuoto"},
        {"non è un certificato", ZVC_ERR_BASE64, "non è in base64"},
        {"Certificato: " + body, ZVC_ERR_BASE64, "non è in base64"},
        {body.substr(0, 402), ZVC_ERR_BASE64, "a metà di un gruppo"},
        {body.substr(0, 400), ZVC_ERR_TEXT_FORM, "non contiene un certificato né una busta PKCS#7 interi"},
        {base64(cut(chain)), ZVC_ERR_TEXT_FORM, "non contiene un certificato né una busta PKCS#7 interi"},
        {base64(longer(holder.der)), ZVC_ERR_BAD_CERTIFICATE, "Il certificato è seguito da altri dati"},
        {pem(longer(holder.der)), ZVC_ERR_BAD_CERTIFICATE, "Il certificato è seguito da altri dati"},
        {pem(cut(holder.der)), ZVC_ERR_BAD_CERTIFICATE, "Il certificato"},
        {base64(bad_date), ZVC_ERR_BAD_CERTIFICATE, "Il certificato non è leggibile"},
        {base64(longer(chain)), ZVC_ERR_TEXT_FORM, "PKCS#7 dei certificati è seguita da altri dati"},
        {pem(longer(trusted(holder)), "TRUSTED CERTIFICATE"), ZVC_ERR_BAD_CERTIFICATE, "TRUSTED"},
        {pem(holder.der, "PKCS7"), ZVC_ERR_TEXT_FORM, "busta PKCS#7 dei certificati non è leggibile"},
        {one.substr(0, one.size() - 10), ZVC_ERR_TEXT_FORM, "manca -----END CERTIFICATE-----"},
        {begin + body + "\n" + one, ZVC_ERR_TEXT_FORM, "manca -----END CERTIFICATE-----"},
        {one + begin + "MIIC", ZVC_ERR_TEXT_FORM, "manca -----END CERTIFICATE-----"},
        {body + "\n" + end, ZVC_ERR_TEXT_FORM, "manca una riga -----BEGIN"},
        {"-----BEGIN", ZVC_ERR_TEXT_FORM, "manca una riga -----BEGIN"},
        {"-----BEGIN CERTIFICATE", ZVC_ERR_TEXT_FORM, "la riga -----BEGIN"},
        {"-----BEGIN CERTIFICATE\n" + body + "\n" + end, ZVC_ERR_TEXT_FORM, "la riga -----BEGIN"},
        {begin + "Proc-Type: 4,ENCRYPTED\n\n" + body + end, ZVC_ERR_TEXT_FORM, "ha delle intestazioni"},
        {one + pem(holder.der, "CERTIFICATE REQUEST"), ZVC_ERR_TEXT_FORM,
         "un certificato: CERTIFICATE REQUEST"},
        {pem(bundle({}), "PKCS7"), ZVC_ERR_TEXT_FORM, "nessun certificato"},
        {pem(root.der), ZVC_ERR_NO_HOLDER, "solo certificati di autorità"},
        {base64(bundle({authority, root})), ZVC_ERR_NO_HOLDER, "solo certificati di autorità"},
        {pem(test::make({.subject = long_name, .issuer = &authority}).der), ZVC_ERR_ROOM, "512 byte"},
        {one + pem(another.der), ZVC_ERR_TWO_HOLDERS, "più titolari"},
        {pem(bundle({another, authority, holder}), "CMS"), ZVC_ERR_TWO_HOLDERS, "più titolari"},
    };
    for (const auto& [text, code, sentence] : cases) {
        EXPECT_EQ(split(text), code) << text;
        EXPECT_NE(std::string(reason).find(sentence), std::string::npos) << reason << " for\n" << text;
        EXPECT_EQ(test::last_error(), reason);
        EXPECT_EQ(record.derLength, 0U);
    }
}

TEST_F(CertText, ATextBeyondTheLimitIsNeverCutIntoAnother) {
    const std::string front = pem(holder.der);
    EXPECT_EQ(split(front + std::string(8191 - front.size(), ' ')), ZVC_OK) << reason;
    EXPECT_EQ(split(front + std::string(8192 - front.size(), ' ')), ZVC_ERR_TEXT_LENGTH);
    std::string endless = front + std::string(9000, ' '); // a buffer that nothing terminates
    EXPECT_EQ(SplitCert(endless.data(), &record, reason, 8), ZVC_ERR_TEXT_LENGTH);
    EXPECT_STREQ(reason, "Il test");
    EXPECT_EQ(SplitCert(endless.data(), &record, nullptr, 0), ZVC_ERR_TEXT_LENGTH);
    EXPECT_EQ(SplitCert(nullptr, &record, reason, sizeof reason), ZVC_ERR_ARGUMENT);
}

TEST(ConvToDer, GivesNamesAndSerialAsTheyStandInTheCertificate) {
    auto der = test::make({.subject = "O=T61|CN=Titolare", .form = V_ASN1_T61STRING, .serial = "8A01"}).der;
    char subject[512], issuer[512], serial[256];
    unsigned long lengths[] = {512, 512, 256};
    ASSERT_EQ(
        ConvToDer(der.data(), der.size(), subject, &lengths[0], issuer, &lengths[1], serial, &lengths[2]), 0);
    EXPECT_EQ(std::string(serial, lengths[2]), std::string("\0\x8A\x01", 3));
    EXPECT_EQ(std::string(subject, lengths[0]), std::string(issuer, lengths[1]));
    EXPECT_EQ(std::string(subject, lengths[0]), "\x30\x21\x31\x0C\x30\x0A\x06\x03\x55\x04\x0A\x14\x03T61"
                                                "\x31\x11\x30\x0F\x06\x03\x55\x04\x03\x14\x08Titolare");
    EXPECT_EQ(ConvToDer(der.data(), der.size(), subject, nullptr, issuer, &lengths[1], serial, &lengths[2]),
              ZVC_ERR_ARGUMENT);
}
