#include "host/certificate_facts.h"

#include "zvCrypt.h"

#include <openssl/x509v3.h>

#include <array>
#include <cstring>
#include <utility>
#include <vector>

namespace zvhost {
namespace {

std::string numbers_of(const ASN1_OBJECT* type) {
    std::array<char, 128> text{};
    OBJ_obj2txt(text.data(), static_cast<int>(text.size()), type, 1);
    return text.data();
}

std::string utf8_of(const ASN1_STRING* value) {
    unsigned char* data = nullptr;
    const int length = ASN1_STRING_to_UTF8(&data, value);
    if (length < 0) return {};
    std::string text(reinterpret_cast<const char*>(data), static_cast<std::size_t>(length));
    OPENSSL_free(data);
    std::erase(text, '\0'); // what is left of a BMPString that was none
    return text;
}

DistinguishedName name_of(const X509_NAME* name) {
    std::vector<NameAttribute> attributes;
    for (int i = 0; i < X509_NAME_entry_count(name); ++i) {
        const X509_NAME_ENTRY* entry = X509_NAME_get_entry(name, i);
        attributes.push_back(
            {numbers_of(X509_NAME_ENTRY_get_object(entry)), utf8_of(X509_NAME_ENTRY_get_data(entry))});
    }
    return DistinguishedName::from_oids(std::move(attributes));
}

std::optional<std::time_t> time_of(const ASN1_TIME* time) {
    std::tm broken{};
    if (ASN1_TIME_to_tm(time, &broken) != 1) return std::nullopt;
    return timegm(&broken);
}

} // namespace

DistinguishedName subject_of(const X509& certificate) {
    return name_of(X509_get_subject_name(&certificate));
}

DistinguishedName issuer_of(const X509& certificate) {
    return name_of(X509_get_issuer_name(&certificate));
}

std::optional<std::time_t> begin_of(const X509& certificate) {
    return time_of(X509_get0_notBefore(&certificate));
}

std::optional<std::time_t> end_of(const X509& certificate) {
    return time_of(X509_get0_notAfter(&certificate));
}

std::string serial_of(std::vector<unsigned char> der) {
    std::array<char, 128> text{};
    if (kvX509GetSerial(der.data(), der.size(), text.data(), static_cast<int>(text.size())) != ZVC_OK)
        return {};
    return {text.data(), strnlen(text.data(), text.size())};
}

std::string missing_usage(X509& certificate, Kind kind) {
    const std::uint32_t usages = X509_get_key_usage(&certificate); // all bits without the extension
    if (kind_row(kind).non_repudiation) return (usages & KU_NON_REPUDIATION) != 0 ? "" : "nonRepudiation";
    return (usages & KU_DIGITAL_SIGNATURE) != 0 ? "" : "digitalSignature";
}

} // namespace zvhost
