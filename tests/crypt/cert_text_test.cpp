#include "certificates.h"

#include <gtest/gtest.h>

#include <algorithm>

using test::base64;
using test::bundle;
using test::Bytes;
using test::Certificate;
using test::pem;

namespace {

class CertText : public testing::Test {
  protected:
    // Sends a text the way of the storing routine: writeBuff, then SplitCert.
    int split(std::string text) {
        std::vector<char> buffer(ZVC_CERT_TEXT_SIZE, 'x');
        writeBuff(text.data(), buffer.data());
        record = {};
        return SplitCert(buffer.data(), &record, reason, sizeof reason);
    }
    [[nodiscard]] Bytes found() const { return {record.der, record.der + record.derLength}; }

    Certificate holderOf(const Certificate& issuer, const std::string& name = "Titolare") {
        test::Shape shape;
        shape.subject = {{"CN", name}};
        shape.issuer = &issuer;
        return test::make(shape);
    }

    Certificate root = test::makeAuthority("Radice");
    Certificate authority = test::makeAuthority("Autorità", &root);
    Certificate holder = holderOf(authority);
    datiCert record{};
    char reason[512] = "";
};

std::string onOneLine(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    return text;
}

} // namespace

TEST_F(CertText, EveryFormGivesTheHoldersCertificate) {
    const std::string all = pem(root.der) + pem(authority.der) + pem(holder.der);
    std::string windows = pem(holder.der);
    for (std::size_t at = 0; (at = windows.find('\n', at)) != std::string::npos; at += 2)
        windows.insert(at, "\r");
    const std::string forms[] = {base64(holder.der),
                                 " " + base64(holder.der) + "\n",
                                 pem(holder.der),
                                 windows,
                                 onOneLine(pem(holder.der)),
                                 pem(holder.der, "X509 CERTIFICATE"),
                                 all,
                                 onOneLine(all),
                                 pem(holder.der) + pem(authority.der),
                                 pem(authority.der) + pem(holder.der) + pem(holder.der),
                                 "Soggetto: titolare\n" + pem(holder.der) + "\n",
                                 base64(bundle({root, holder, authority})),
                                 pem(bundle({authority, holder}), "PKCS7"),
                                 onOneLine(pem(bundle({holder}), "CMS"))};
    for (const auto& form : forms) {
        EXPECT_EQ(split(form), ZVC_OK) << reason << '\n' << form;
        EXPECT_EQ(found(), holder.der);
        EXPECT_STREQ(reason, "");
    }
}

TEST_F(CertText, AnAuthorityWithoutTheMarkIsKnownByWhatItIssued) {
    test::Shape shape;
    shape.subject = {{"CN", "Vecchia autorità"}};
    shape.extensions = "";
    const auto old = test::make(shape);
    const auto issued = holderOf(old);
    EXPECT_EQ(split(pem(old.der) + pem(issued.der)), ZVC_OK) << reason;
    EXPECT_EQ(found(), issued.der);
    EXPECT_EQ(split(pem(old.der)), ZVC_OK) << "alone it is a certificate like any other";
}

TEST_F(CertText, AnythingElseIsRefusedWithAReason) {
    Bytes longer = holder.der;
    longer.push_back(0);
    const std::string whole = pem(holder.der);
    const std::pair<std::string, int> cases[] = {
        {"", ZVC_ERR_TEXT_FORM},
        {" \r\n", ZVC_ERR_TEXT_FORM},
        {"non è un certificato", ZVC_ERR_BASE64},
        {base64(holder.der).substr(0, 402), ZVC_ERR_BASE64},
        {base64(holder.der).substr(0, 400), ZVC_ERR_TEXT_FORM},
        {base64(longer), ZVC_ERR_TEXT_FORM},
        {pem(longer), ZVC_ERR_BAD_CERTIFICATE},
        {whole.substr(0, whole.size() - 10), ZVC_ERR_TEXT_FORM},
        {whole + "-----BEGIN CERTIFICATE-----\nMIIC", ZVC_ERR_TEXT_FORM},
        {pem(holder.der, "CERTIFICATE REQUEST"), ZVC_ERR_TEXT_FORM},
        {pem(holder.der, "PKCS7"), ZVC_ERR_TEXT_FORM},
        {pem(root.der) + pem(authority.der), ZVC_ERR_NO_HOLDER},
        {pem(bundle({}), "PKCS7"), ZVC_ERR_NO_HOLDER},
        {pem(holder.der) + pem(holderOf(authority, "Altro").der), ZVC_ERR_TWO_HOLDERS},
    };
    for (const auto& [text, code] : cases) {
        EXPECT_EQ(split(text), code) << text;
        EXPECT_STRNE(reason, "");
        EXPECT_EQ(test::lastError(), reason);
        EXPECT_EQ(record.derLength, 0U);
    }
}

TEST_F(CertText, ATextBeyondTheLimitIsNeverCutIntoAnother) {
    const std::string front = pem(holder.der);
    EXPECT_EQ(split(front + std::string(8191 - front.size(), ' ')), ZVC_OK) << reason;
    EXPECT_EQ(split(front + std::string(8192 - front.size(), ' ')), ZVC_ERR_TEXT_LENGTH);
    // A buffer that nothing terminates.
    std::string endless = front + std::string(9000, ' ');
    EXPECT_EQ(SplitCert(endless.data(), &record, reason, sizeof reason), ZVC_ERR_TEXT_LENGTH);
    EXPECT_EQ(SplitCert(nullptr, &record, reason, sizeof reason), ZVC_ERR_ARGUMENT);
    EXPECT_EQ(SplitCert(endless.data(), &record, nullptr, 0), ZVC_ERR_TEXT_LENGTH);
    char small[8];
    EXPECT_EQ(SplitCert(endless.data(), &record, small, sizeof small), ZVC_ERR_TEXT_LENGTH);
    EXPECT_STREQ(small, "Il test");
}

TEST(ConvToDer, GivesNamesAndSerialAsTheyStandInTheCertificate) {
    test::Shape shape;
    shape.subject = {{"O", "T61", V_ASN1_T61STRING}, {"CN", "Titolare"}};
    shape.serial = "8A01";
    auto der = test::make(shape).der;
    char subject[512], issuer[512], serial[256];
    unsigned long lengths[] = {512, 512, 256};
    ASSERT_EQ(
        ConvToDer(der.data(), der.size(), subject, &lengths[0], issuer, &lengths[1], serial, &lengths[2]), 0);
    EXPECT_EQ(std::string(serial, lengths[2]), std::string("\0\x8A\x01", 3));
    EXPECT_EQ(std::string(subject, lengths[0]), std::string(issuer, lengths[1]));
    const std::string expected = "\x30\x21\x31\x0C\x30\x0A\x06\x03\x55\x04\x0A\x14\x03T61"
                                 "\x31\x11\x30\x0F\x06\x03\x55\x04\x03\x0C\x08Titolare";
    EXPECT_EQ(std::string(subject, lengths[0]), expected);
}

TEST(ConvToDer, WritesNothingWithoutRoomForAll) {
    auto der = test::make({}).der;
    for (const int tooSmall : {0, 1, 2}) {
        char outputs[3][32] = {"x", "x", "x"};
        unsigned long lengths[] = {32, 32, 32};
        lengths[tooSmall] = 1;
        EXPECT_EQ(ConvToDer(der.data(), der.size(), outputs[0], &lengths[0], outputs[1], &lengths[1],
                            outputs[2], &lengths[2]),
                  ZVC_ERR_ROOM);
        EXPECT_EQ(lengths[tooSmall], 1U);
        for (const auto& output : outputs)
            EXPECT_STREQ(output, "x");
    }
    char out[512];
    unsigned long length = 512;
    EXPECT_EQ(ConvToDer(der.data(), 20, out, &length, out, &length, out, &length), ZVC_ERR_BAD_CERTIFICATE);
    EXPECT_EQ(ConvToDer(der.data(), der.size(), out, nullptr, out, &length, out, &length), ZVC_ERR_ARGUMENT);
}
