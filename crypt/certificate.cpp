#include "certificate.h"

#include "der.h"
#include "failure.h"
#include "text.h"

#include <climits>

namespace zvcrypt {
namespace {

// Escapes control characters, and with `asciiOnly` everything that is not ASCII.
std::string escaped(std::string_view text, bool asciiOnly) {
    std::string result;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || (asciiOnly && byte >= 0x80))
            result += "\\x" + upperHex({&byte, 1});
        else
            result += c;
    }
    return result;
}

std::string attributeName(const ASN1_OBJECT* object) {
    const int nid = OBJ_obj2nid(object);
    if (nid != NID_undef) return OBJ_nid2sn(nid);
    char number[128] = "";
    (void)OBJ_obj2txt(number, sizeof number, object, 1);
    return number;
}

} // namespace

X509Ptr readCertificate(std::span<const unsigned char> der, Trailing trailing) {
    if (der.empty() || der.size() > INT_MAX) return nullptr;
    const unsigned char* end = der.data();
    X509Ptr certificate(d2i_X509(nullptr, &end, static_cast<long>(der.size())));
    if (trailing == Trailing::refused && end != der.data() + der.size()) return nullptr;
    return certificate;
}

X509Ptr requireCertificate(const unsigned char* der, unsigned long length) {
    auto certificate = readCertificate({der, length}, Trailing::ignored);
    if (!certificate) throw Failure(ZVC_ERR_BAD_CERTIFICATE, "Il certificato non è leggibile");
    return certificate;
}

Bytes certificateDer(const X509& certificate) {
    return der::encoded(i2d_X509, &certificate);
}

bool isIssuedBy(X509& certificate, X509& issuer) {
    return X509_NAME_cmp(X509_get_issuer_name(&certificate), X509_get_subject_name(&issuer)) == 0 &&
           X509_verify(&certificate, X509_get0_pubkey(&issuer)) == 1;
}

std::string utf8Text(const ASN1_STRING& value) {
    unsigned char* converted = nullptr;
    const int length = ASN1_STRING_to_UTF8(&converted, &value);
    if (length < 0) {
        const std::string_view raw{reinterpret_cast<const char*>(ASN1_STRING_get0_data(&value)),
                                   static_cast<std::size_t>(ASN1_STRING_length(&value))};
        return escaped(raw, true);
    }
    const std::unique_ptr<unsigned char, void (*)(unsigned char*)> owner(
        converted, [](unsigned char* text) { OPENSSL_free(text); });
    return escaped({reinterpret_cast<const char*>(converted), static_cast<std::size_t>(length)}, false);
}

std::string slashName(const X509_NAME& name) {
    std::string text;
    for (int i = 0; i < X509_NAME_entry_count(&name); ++i) {
        const X509_NAME_ENTRY* entry = X509_NAME_get_entry(&name, i);
        text += "/" + attributeName(X509_NAME_ENTRY_get_object(entry)) + "=" +
                utf8Text(*X509_NAME_ENTRY_get_data(entry));
    }
    return text;
}

std::optional<std::string> nameAttribute(const X509_NAME& name, int nid) {
    const int index = X509_NAME_get_index_by_NID(&name, nid, -1);
    if (index < 0) return std::nullopt;
    return utf8Text(*X509_NAME_ENTRY_get_data(X509_NAME_get_entry(&name, index)));
}

} // namespace zvcrypt
