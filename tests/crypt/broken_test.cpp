#include "tests/crypt/raw_certificate.h"

using namespace test;

namespace {

int dates(unsigned char* der, unsigned long length, char* out, int size) {
    Guarded from(ZVC_DATE_SIZE), to(ZVC_DATE_SIZE), name(ZVC_DESCRIPTION_SIZE);
    (void)kvGetCertDate(der, length, from.data(), to.data());
    return GiveMeCertDate(der, length, out, size, name.data());
}

int parts(unsigned char* der, unsigned long length, char* out, int) {
    Guarded subject(2048), issuer(512), serial(32);
    unsigned long sizes[] = {2048, 512, 32};
    *out = '\0';
    return ConvToDer(der, length, subject.data(), &sizes[0], issuer.data(), &sizes[1], serial.data(),
                     &sizes[2]);
}

constexpr Field SKI = zv_X509V3_get_subject_key_identifier;
constexpr Field FIELDS[] = {kvGetSubjectDN, kvGetIssuerDN, kvX509GetSerial,   kvGetIUT,
                            kvGetCodFisc,   SKI,           kvGetExplicitText, kvGetCertificatePolicies,
                            dates,          parts};

// What authorities issue, small and large.
std::vector<Bytes> corpus() {
    const std::string holder = rdn("C", printable, "IT") + rdn("O", t61, "Societ\xE0") +
                               rdn("OU", bmp, "\x20\xAC\0\n\xD8\x3D\xDE\0"s) +
                               rdn("CN", utf8, "RSSMRA80A01H501U/61\xE0\u202Eè.a=") +
                               rdn("dnQualifier", printable, "2024123456");
    const auto notice = tlv(sequence, oid("id-qt-unotice") + tlv(sequence, tlv(utf8, "Età\n")));
    std::string wide, policies, known = extension("subjectKeyIdentifier", tlv(4, std::string(20, '\xA5')));
    for (int i = 0; i < 40; ++i) {
        wide += rdn("OU", utf8, "Unità organizzativa");
        policies += tlv(sequence, oid("1.3.76.16." + std::to_string(i)) + tlv(sequence, notice));
        if (i == 1) known += extension("certificatePolicies", tlv(sequence, policies));
    }
    const std::string other = extension("1.2.3.4", "none of ours"), large(12000, 'x');
    const std::string key = tlv(sequence, tlv(sequence, oid("ED25519")) + tlv(3, std::string(33, '\0')));
    return {encode(Raw{.serial = "\0\xF0\x01"s, .subject = holder, .extensions = known}),
            encode(Raw{.subject = "", .key = key, .extensions = other}),
            encode(Raw{.serial = "\x80", .subject = wide, .key = rsa_key(4096)}),
            encode(Raw{.extensions = extension("certificatePolicies", tlv(sequence, policies)) + other +
                                     other + extension("1.2.3.4.5", large)}),
            make(Shape{}).der}; // an EC key
}

// For that reason, which every operation gives.
void expect_bad(const std::string& der, const char* reason) {
    for (const Field field : FIELDS) {
        EXPECT_EQ(read(field, {der.begin(), der.end()}, 64, ZVC_ERR_BAD_CERTIFICATE), "");
        EXPECT_NE(last_error().find(reason), std::string::npos) << last_error();
    }
}

} // namespace

TEST(Certificates, EveryFieldIsCutAtACharacterAtAnySize) {
    const auto escaped = encode(Raw{.subject = rdn("O", utf8, "a\n\u202E")}); // an escape is one character
    EXPECT_EQ(read(kvGetSubjectDN, escaped, 14, ZVC_ERR_CUT), R"(/O=a\x0A)");
    EXPECT_EQ(read(kvGetSubjectDN, escaped, 8, ZVC_ERR_CUT), "/O=a");
    for (const auto& der : corpus())
        for (const Field field : FIELDS) {
            const std::string whole = read(field, der, 4096);
            const int length = static_cast<int>(whole.size());
            for (int size = std::max(1, length - 300); size <= length + 1; ++size) {
                const std::string cut = read(field, der, size, size > length ? ZVC_OK : ZVC_ERR_CUT);
                ASSERT_EQ(cut, whole.substr(0, cut.size()));
                const auto next = static_cast<unsigned char>(whole.c_str()[cut.size()]);
                ASSERT_NE(next & 0xC0, 0x80) << "in the middle of a character";
                ASSERT_GE(static_cast<int>(cut.size()), size - 13); // the longest piece
            }
        }
}

TEST(Certificates, EveryTruncationIsRefused) {
    expect_bad("", "vuoto");
    for (const auto& certificate : corpus()) {
        const std::string der = as_text(certificate);
        const std::size_t step = der.size() > 1000 ? 97 : 1;
        for (std::size_t size = 1; size < der.size(); size += step)
            expect_bad(der.substr(0, size), "incompleto");
        for (std::size_t size = 0; size + 4 < der.size(); size += 3 * step)
            expect_bad(tlv(sequence, der.substr(4, size)), ""); // of the right length again
    }
}

TEST(Certificates, WhatIsNoDerIsRefused) {
    const std::string good = as_text(encode(Raw{}));
    std::string nested = "x";
    for (int i = 0; i < 5000; ++i)
        nested = tlv(sequence, nested);
    const std::pair<std::string, const char*> rows[] = {
        {"\x30\x80" + good.substr(4) + "\0\0"s, "indefinite"},
        {as_text(encode(Raw{.subject = "\x31\x80\0\0"s})), "indefinite"},
        {nested, "annidati"},
        {as_text(encode(Raw{.key = nested})), "annidati"},
        {"\x30\x84\xFF\xFF\xFF\xFF" + good.substr(4), "lunghezze errate"},
        {tlv(sequence, good.substr(4) + tlv(5, "")), "non è leggibile"}}; // more behind the signature
    EXPECT_EQ(read(dates, encode(Raw{.subject = tlv(5, "")}), 64, ZVC_ERR_BAD_CERTIFICATE), "");
    for (const auto& [der, reason] : rows)
        expect_bad(der, reason);
    char out[8];
    EXPECT_EQ(kvGetIUT(encode(Raw{}).data(), ~0UL, out, sizeof out), ZVC_ERR_BAD_CERTIFICATE);
}

// Nothing is promised of a certificate changed at random, but a code, its reason, and buffers kept.
TEST(Certificates, EveryByteChangedKeepsTheBuffers) {
    for (auto der : {corpus()[0], corpus()[1]})
        for (auto& byte : der)
            for (const int changed : {0x80, 0xFF, byte + 1}) {
                const auto kept = std::exchange(byte, static_cast<unsigned char>(changed));
                for (const Field field : FIELDS)
                    (void)read(field, der, 40, ANY_CODE);
                byte = kept;
            }
}
