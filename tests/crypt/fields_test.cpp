#include "tests/crypt/raw_certificate.h"

using namespace test;

namespace {

std::string subject(const std::string& rdns) {
    return read(kvGetSubjectDN, encode(Raw{.subject = rdns}), 2048);
}

std::string cod_fisc(const std::string& name) {
    return read(kvGetCodFisc, make(Shape{.subject = name}).der, 128);
}

} // namespace

TEST(Fields, NamesKeepTheOrderAndOpensslsShortNames) {
    const Shape holder{.subject = "C=IT|OU=Uno|CN=Mario Rossi|serialNumber=TINIT-X|GN=Mario|SN=Rossi|"
                                  "dnQualifier=2024123456|emailAddress=m@example.it|1.2.3.4.5=altro"};
    const auto der = make(holder).der;
    EXPECT_EQ(read(kvGetSubjectDN, der), "/C=IT/OU=Uno/CN=Mario Rossi/serialNumber=TINIT-X/GN=Mario/SN=Rossi"
                                         "/dnQualifier=2024123456/emailAddress=m@example.it/1.2.3.4.5=altro");
    EXPECT_EQ(read(kvGetIssuerDN, encode(Raw{})), "/C=IT/CN=Autorità");
    EXPECT_EQ(read(kvGetIUT, der, 32), "2024123456");
    const std::string one = rdn("GN", utf8, "Ada").substr(2), other = rdn("SN", utf8, "Rossi").substr(2);
    EXPECT_EQ(subject(tlv(set, one + other)), "/GN=Ada/SN=Rossi");
    const std::string number = "1.3.6.1.4.1.18446744073709551616.18446744073709551616.18446744073709551616."
                               "18446744073709551616.18446744073709551616.18446744073709551616.1844674407";
    EXPECT_EQ(subject(rdn(number, utf8, "x")), "/" + number + "=x");
    (void)OBJ_create("1.2.3.4.99", nullptr, nullptr); // a host may number what it names itself
    EXPECT_EQ(subject(rdn("1.2.3.4.99", utf8, "x")), "/1.2.3.4.99=x");
}

TEST(Fields, EveryStringTypeComesOutAsUtf8ThatIsSafeToShow) {
    const struct {
        int tag;
        std::string value, told;
    } rows[] = {
        {bmp, "\0C\0\xE0\x20\xAC\xD8\x3D\xDE\0"s, "Cà€😀"},
        {bmp, "\xDE\x00\xD8\x3D\0ab"s, R"(\xDE\x00\xD8\x3Da\x62)"}, // halves of a pair and of a character
        {universal, "\0\0\x20\xAC\0\x01\xF6\0\0\x11\0\0\0"s, R"(€😀\x00\x11\x00\x00\x00)"},
        {t61, "Societ\xE0 \x9B", R"(Società \U009B)"},
        {visible, "Rossi & C. \x7F", R"(Rossi & C. \x7F)"},
        {3, "\0\xC3("s, R"(\x00\xC3()"},                     // a bit string is no text
        {utf8, "Citt\xE0 di Forlì", R"(Citt\xE0 di Forlì)"}, // Latin-1 where UTF-8 should be
        {utf8, "\xC0\xAF\xE0\x80\x80\xF0\x8F\xBF\xBF", R"(\xC0\xAF\xE0\x80\x80\xF0\x8F\xBF\xBF)"}, // overlong
        {utf8, "\xED\xA0\x80\xF4\x90\x80\x80\xE2\x82", R"(\xED\xA0\x80\xF4\x90\x80\x80\xE2\x82)"},
        {utf8, "߿ࠀ\uFFFD\U00010000\U0010FFFF", "߿ࠀ\uFFFD\U00010000\U0010FFFF"},
        {utf8, "good\0evil\r\x1B\u202E\u2028\u0085"s, R"(good\x00evil\x0D\x1B\U202E\U2028\U0085)"},
        {utf8, R"(\x00 RSSMRA80A01H501U/61.a+b=)", R"(\x5Cx00 RSSMRA80A01H501U/61.a+b=)"}};
    for (const auto& row : rows)
        EXPECT_EQ(subject(rdn("O", row.tag, row.value)), "/O=" + row.told);
}

TEST(Fields, SerialsAndKeyIdentifiersAreUpperCaseHexadecimal) {
    const std::pair<std::string, std::string> rows[] = {
        {"\0"s, "00"},     {"\x0A\xBC", "0ABC"}, {"\0\x8A\x01"s, "8A01"}, {"\0\0\x8A\x01"s, "8A01"},
        {"\0\0\0"s, "00"}, {"\x80", "-80"},      {"\xFF\xFF\xFB", "-05"}, {"\xFF\0"s, "-0100"}};
    for (const auto& [bytes, told] : rows)
        EXPECT_EQ(read(kvX509GetSerial, encode(Raw{.serial = bytes}), 128), told);
    const auto twenty = encode(Raw{.serial = '\0' + std::string(20, '\xFE')});
    EXPECT_EQ(read(kvX509GetSerial, twenty, 41), "FEFEFEFEFEFEFEFEFEFEFEFEFEFEFEFEFEFEFEFE");
    EXPECT_EQ(read(kvX509GetSerial, twenty, 6, ZVC_ERR_CUT), "FEFE");
    read(kvX509GetSerial, encode(Raw{.serial = ""}), 128, ZVC_ERR_BAD_CERTIFICATE);
    const auto key_id = [](const std::string& value, int expected) {
        const auto der = encode(Raw{.extensions = extension("subjectKeyIdentifier", value)});
        return read(zv_X509V3_get_subject_key_identifier, der, 256, expected);
    };
    EXPECT_EQ(key_id(tlv(4, "\xDE\xAD\x0B\xEF"), ZVC_OK), "DEAD0BEF");
    for (const auto& bad : {tlv(utf8, "DEAD"), tlv(4, "\xDE") + "x", ""s})
        key_id(bad, ZVC_ERR_BAD_CERTIFICATE);
}

TEST(Fields, DatesOfEveryFormAreUtc) {
    const struct {
        int tag;
        std::string value, told; // nothing: not readable
    } rows[] = {{utc, "491231235959Z", "31/12/2049 23:59:59"},
                {utc, "500101000000Z", "01/01/1950 00:00:00"},
                {utc, "2401310102Z", "31/01/2024 01:02:00"},
                {utc, "2401010030+0100", "31/12/2023 23:30:00"},
                {utc, "240228233000-0130", "29/02/2024 01:00:00"},
                {generalized, "18991231235959Z", "31/12/1899 23:59:59"},
                {generalized, "20240131010203.75Z", "31/01/2024 01:02:03"},
                {utc, "240230000000Z", ""},
                {printable, "240131010203Z", ""}};
    for (const auto& [tag, value, told] : rows) {
        auto der = encode(Raw{.validity = tlv(tag, value) + tlv(generalized, "99991231235959Z")});
        const int expected = told.empty() ? ZVC_ERR_BAD_CERTIFICATE : ZVC_OK;
        char from[24], to[24], both[44], name[2048];
        EXPECT_EQ(kvGetCertDate(der.data(), der.size(), from, to), expected);
        EXPECT_EQ(std::string(from) + to, told + (told.empty() ? "" : "31/12/9999 23:59:59")) << value;
        EXPECT_EQ(GiveMeCertDate(der.data(), der.size(), both, sizeof both, name), expected);
        EXPECT_EQ(both, told.empty() ? "" : told + " - " + to);
        EXPECT_STREQ(name, told.empty() ? "" : "/CN=Titolare");
    }
}

TEST(Fields, CodiceFiscale) {
    const std::string code = "RSSMRA80A01H501U";
    for (const char* prefix : {"IT:", "TINIT-", ""})
        EXPECT_EQ(cod_fisc("CN=Mario Rossi|serialNumber=" + (prefix + code)), code);
    EXPECT_EQ(cod_fisc("serialNumber=TINIT-12345678901"), "12345678901");
    EXPECT_EQ(cod_fisc("CN=" + code + "/6120016612345678.abcDEF=="), code);
    EXPECT_EQ(cod_fisc("CN=RSSMRAULA0MH5L1U/1.x"), "RSSMRAULA0MH5L1U"); // letters in the place of digits
    EXPECT_EQ(cod_fisc("serialNumber=TINIT-|CN=12345678901/1.x"), "12345678901");
    // Other numbers of a person are none, and what only resembles a code is no code.
    for (const char* other : {"serialNumber=IDCIT-CA12345AA", "serialNumber=VATIT-12345678901",
                              "CN=RSSMRA80101H501U/x", "CN=12345678901", "CN=123456789O1/x"})
        EXPECT_EQ(cod_fisc(other), "") << other;
}

TEST(Fields, PoliciesAndTheFirstExplicitText) {
    const auto policy = [](const std::string& qualifiers, const char* number = "1.3.76.16.6") {
        return tlv(sequence, oid(number) + tlv(sequence, qualifiers));
    };
    const auto notice = [](const std::string& content) {
        return tlv(sequence, oid("id-qt-unotice") + tlv(sequence, content));
    };
    const auto elsewhere = notice(tlv(sequence, tlv(utf8, "Autorità") + tlv(sequence, tlv(2, "\1"))));
    const auto cps = tlv(sequence, oid("id-qt-cps") + tlv(ia5, "https://example.it/cps"));
    const std::pair<std::string, std::string> rows[] = {
        {policy(cps + elsewhere) + policy(notice(tlv(utf8, "età")), "0.4.0.194112.1.2"), "età"},
        {policy(elsewhere + notice(tlv(bmp, "\0e\0t\0\xE0"s))), "età"},
        {policy(notice(tlv(visible, "uno")) + notice(tlv(visible, "due"))), "uno"},
        {policy(notice(tlv(t61, "et\xE0"))), "età"}, // not one of the types that the standard allows
        {tlv(sequence, oid("1.3.76.16.6")), ""}};
    const auto certificate = [](const std::string& policies) {
        return encode(Raw{.extensions = extension("certificatePolicies", tlv(sequence, policies))});
    };
    for (const auto& [policies, text] : rows) {
        EXPECT_EQ(read(kvGetExplicitText, certificate(policies)), text);
        EXPECT_EQ(read(kvGetCertificatePolicies, certificate(policies)).substr(0, 11), "1.3.76.16.6");
    }
    const auto two = certificate(rows[0].first);
    EXPECT_EQ(read(kvGetCertificatePolicies, two, 29), "1.3.76.16.6,0.4.0.194112.1.2");
    EXPECT_EQ(read(kvGetCertificatePolicies, two, 28, ZVC_ERR_CUT), "1.3.76.16.6");
    const auto once = extension("certificatePolicies", tlv(sequence, policy(cps)));
    for (const auto& bad : {encode(Raw{.extensions = once + once}), certificate("\x30\x04\x06\x02\x2A\x81"),
                            certificate("\x05"s + '\0')})
        read(kvGetCertificatePolicies, bad, 128, ZVC_ERR_BAD_CERTIFICATE);
}

TEST(Fields, AbsentFieldsAreEmptyMissingArgumentsAreRefused) {
    auto der = encode(Raw{});
    der.insert(der.end(), 100, 0xFF); // as cards pad their files
    EXPECT_EQ(read(kvGetSubjectDN, der) + subject(""), "/CN=Titolare");
    for (const Field field : {kvGetIUT, kvGetCodFisc, kvGetCertificatePolicies, kvGetExplicitText,
                              zv_X509V3_get_subject_key_identifier}) {
        EXPECT_EQ(read(field, der, 1), "");
        char text[2] = "x";
        EXPECT_EQ(field(der.data(), der.size(), nullptr, 10), ZVC_ERR_ARGUMENT);
        EXPECT_EQ(field(der.data(), der.size(), text, 0), ZVC_ERR_ARGUMENT);
        EXPECT_EQ(text[0], 'x');
        EXPECT_EQ(field(nullptr, 0, text, sizeof text), ZVC_ERR_ARGUMENT);
        EXPECT_EQ(text[0], '\0');
    }
}
