#include "cli/certificate_facts.h"

#include <array>
#include <utility>
#include <vector>

namespace cli {
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
    return text;
}

} // namespace

DistinguishedName subject_of(const X509& certificate) {
    const X509_NAME* name = X509_get_subject_name(&certificate);
    std::vector<NameAttribute> attributes;
    for (int i = 0; i < X509_NAME_entry_count(name); ++i) {
        const X509_NAME_ENTRY* entry = X509_NAME_get_entry(name, i);
        attributes.push_back(
            {numbers_of(X509_NAME_ENTRY_get_object(entry)), utf8_of(X509_NAME_ENTRY_get_data(entry))});
    }
    return DistinguishedName::from_oids(std::move(attributes));
}

std::optional<std::time_t> end_of(const X509& certificate) {
    std::tm broken{};
    if (ASN1_TIME_to_tm(X509_get0_notAfter(&certificate), &broken) != 1) return std::nullopt;
    return timegm(&broken);
}

} // namespace cli
