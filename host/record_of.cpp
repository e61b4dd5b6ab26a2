#include "host/record_of.h"

#include "host/certificate.h"
#include "host/certificate_facts.h"
#include "zvCrypt.h"

#include <array>
#include <cstring>

namespace zvhost {
namespace {

using FieldReader = int (*)(unsigned char* der, unsigned long length, char* out, int size);

// A text of the certificate; empty when it has none.
std::string text_of(Bytes der, FieldReader read) {
    std::array<char, 256> text{};
    if (read(der.data(), der.size(), text.data(), static_cast<int>(text.size())) != ZVC_OK) return {};
    return {text.data(), strnlen(text.data(), text.size())};
}

} // namespace

std::optional<CertificateRecord> record_of(const CardObject& object, Kind kind) {
    const Certificate certificate = certificate_from(object.value);
    if (!certificate) return std::nullopt;
    const auto begin = begin_of(*certificate);
    const auto end = end_of(*certificate);
    if (!begin || !end) return std::nullopt;
    const Bytes& der = certificate.der();
    CertificateRecord record;
    record.kind = kind;
    record.subject = subject_of(*certificate);
    record.issuer = issuer_of(*certificate);
    record.iut = text_of(der, kvGetIUT);
    record.policies = text_of(der, kvGetCertificatePolicies);
    record.serial = serial_of(der);
    record.begins = *begin;
    record.ends = *end;
    record.id = object.id;
    if (kind_row(kind).notice) record.notice = text_of(der, kvGetExplicitText);
    record.key_identifier = text_of(der, zv_X509V3_get_subject_key_identifier);
    record.tax_code = text_of(der, kvGetCodFisc);
    record.der.assign(der.begin(), der.end());
    return record;
}

} // namespace zvhost
