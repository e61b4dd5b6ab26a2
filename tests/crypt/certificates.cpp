#include "ossl/memory_bio.h"
#include "tests/crypt/raw_certificate.h"

#include <openssl/ec.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

namespace test {
namespace {

void require(bool done) {
    if (!done) throw std::runtime_error("the test's certificate cannot be made");
}

void set_subject(X509_NAME* name, const std::string& subject, int form) {
    std::istringstream attributes(subject);
    for (std::string one; std::getline(attributes, one, '|');) {
        const auto value = reinterpret_cast<const unsigned char*>(one.data()) + one.find('=') + 1;
        const auto length = static_cast<int>(one.size() - one.find('=') - 1);
        const std::string type = one.substr(0, one.find('='));
        require(X509_NAME_add_entry_by_txt(name, type.c_str(), form, value, length, -1, 0) == 1);
    }
}

void add_extensions(X509* certificate, const std::string& lines, X509* issuer) {
    const std::string text = "[ext]\n" + lines + "\n";
    const ossl::Bio source = ossl::reading(text);
    const ossl::Configuration conf(NCONF_new(nullptr));
    require(NCONF_load_bio(conf.get(), source.get(), nullptr) > 0);
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509V3_set_nconf(&context, conf.get());
    require(X509V3_EXT_add_nconf(conf.get(), &context, "ext", certificate) == 1);
}

} // namespace

Certificate make(const Shape& shape) {
    Certificate made{ossl::Certificate(X509_new()), shape.key, {}};
    if (!made.key) made.key = ossl::Key(EVP_EC_gen("P-256"));
    X509* it = made.x509.get();
    require(X509_set_version(it, X509_VERSION_3) == 1 && X509_set_pubkey(it, made.key.get()) == 1);
    const ossl::String serial(s2i_ASN1_INTEGER(nullptr, ("0x" + shape.serial).c_str()));
    require(X509_set_serialNumber(it, serial.get()) == 1);
    require(ASN1_TIME_set_string_X509(X509_getm_notBefore(it), shape.not_before.c_str()) == 1);
    require(ASN1_TIME_set_string_X509(X509_getm_notAfter(it), shape.not_after.c_str()) == 1);
    set_subject(X509_get_subject_name(it), shape.subject, shape.form);
    const Certificate& issuer = shape.issuer == nullptr ? made : *shape.issuer;
    require(X509_set_issuer_name(it, X509_get_subject_name(issuer.x509.get())) == 1);
    if (!shape.extensions.empty()) add_extensions(it, shape.extensions, issuer.x509.get());
    require(X509_sign(it, issuer.key.get(), EVP_sha256()) > 0);
    made.der = encoded<X509>(i2d_X509, it);
    return made;
}

Certificate make_authority(const std::string& name, const Certificate* issuer) {
    // Issuer and serial number tell a certificate apart, from its issuer's too.
    return make({.subject = "C=IT|CN=" + name,
                 .extensions = "basicConstraints = critical, CA:TRUE\nkeyUsage = keyCertSign",
                 .serial = "01",
                 .issuer = issuer});
}

Bytes wild(Bytes der) {
    const std::pair<std::string, std::string> changes[] = {
        {"\014\003abc", "\036\003abc"},
        {"Titolare", "Titolar\xE8"},
        {"\x0F\x0F\x8A\x01", {"\0\0", 2}}}; // the whole serial: keys are random
    const auto same = [](unsigned char left, char right) {
        return left == static_cast<unsigned char>(right);
    };
    for (const auto& [from, to] : changes) {
        const auto place = std::search(der.begin(), der.end(), from.begin(), from.end(), same);
        if (place != der.end()) std::copy(to.begin(), to.end(), place);
    }
    return der;
}

Bytes wild(const Certificate& certificate, const Certificate& issuer) {
    const Bytes der = wild(certificate.der);
    const unsigned char* at = der.data();
    const auto next = [&at](bool enter) {
        const unsigned char *start = at, *content = at;
        long length = 0;
        int tag = 0, type = 0;
        (void)ASN1_get_object(&content, &length, &tag, &type, 65536);
        at = enter ? content : content + length;
        return std::string(start, at);
    };
    (void)next(true);
    const std::string body = next(false), algorithm = next(false);
    const ossl::DigestContext context(EVP_MD_CTX_new());
    std::string signature(512, '\0');
    std::size_t length = signature.size();
    (void)EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, issuer.key.get());
    (void)EVP_DigestSign(context.get(), reinterpret_cast<unsigned char*>(signature.data()), &length,
                         reinterpret_cast<const unsigned char*>(body.data()), body.size());
    const std::string whole = tlv(sequence, body + algorithm + tlv(3, '\0' + signature.substr(0, length)));
    return {whole.begin(), whole.end()};
}

std::string base64(const Bytes& bytes) {
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0');
    (void)EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()), bytes.data(),
                          static_cast<int>(bytes.size()));
    text.pop_back();
    return text;
}

std::string pem(const Bytes& bytes, const std::string& label) {
    std::string text = "-----BEGIN " + label + "-----\n";
    const std::string body = base64(bytes);
    for (std::size_t start = 0; start < body.size(); start += 64)
        text += body.substr(start, 64) + "\n";
    return text + "-----END " + label + "-----\n";
}

Bytes bundle(const std::vector<Certificate>& certificates) {
    const ossl::Bundle it(PKCS7_new());
    require(PKCS7_set_type(it.get(), NID_pkcs7_signed) == 1 &&
            PKCS7_content_new(it.get(), NID_pkcs7_data) == 1);
    (void)PKCS7_set_detached(it.get(), 1);
    for (const auto& certificate : certificates)
        require(PKCS7_add_certificate(it.get(), certificate.x509.get()) == 1);
    return encoded<PKCS7>(i2d_PKCS7, it.get());
}

} // namespace test
