#include "inventory/certificates.h"

#include "inventory/names.h"
#include "util/text.h"
#include "zvCrypt.h"

#include <cstring>
#include <initializer_list>

namespace zv {

Certificate Certificati[MOST_CERTIFICATES];
int numCertificate = 0;

namespace {

// A failed read leaves the field as it is.
template <typename Field> Read read_field(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, Field& field) {
    std::byte buffer[sizeof field];
    const Read read = read_attribute(hSession, object, type, buffer);
    if (read.code != CKR_OK) return read;
    std::memcpy(field, buffer, sizeof field);
    std::memset(reinterpret_cast<char*>(field) + read.length, 0, sizeof field - read.length);
    return read;
}

void read_certificate(CK_OBJECT_HANDLE object, Certificate& certificate) {
    read_field(object, CKA_ID, certificate.id);
    read_field(object, CKA_LABEL, certificate.label);
    read_field(object, CKA_SERIAL_NUMBER, certificate.serial_number);
    const Read value = read_field(object, CKA_VALUE, certificate.value);
    if (value.code == CKR_OK) certificate.value_length = value.length;
}

template <std::size_t... N> void terminate(char (&... texts)[N]) {
    ((texts[N - 1] = '\0'), ...);
}

template <std::size_t N> void rewrite_holder(char (&name)[N], bool own) {
    if (own)
        rewrite_name_cns(name, N);
    else
        rewrite_name(name, N);
}

} // namespace

bool probe_token(CallTrace trace) {
    CK_SLOT_INFO slot_info;
    rv = call<&Functions::C_GetSlotInfo>(slotID, &slot_info);
    trace("C_GetSlotInfo", rv);
    if (rv != CKR_OK) return false;
    CK_TOKEN_INFO token_info;
    rv = call<&Functions::C_GetTokenInfo>(slotID, &token_info);
    trace("C_GetTokenInfo", rv);
    return rv == CKR_OK;
}

Certificate& FoundCertificates::next() {
    const bool in_table = all_.size() < MOST_CERTIFICATES;
    all_.push_back(in_table ? &Certificati[numCertificate++] : &beyond_.emplace_back());
    return *all_.back();
}

bool FoundCertificates::read(const SearchLog& log, const Exits& exits) {
    numCertificate = 0;
    const CK_OBJECT_CLASS certificate = CKO_CERTIFICATE;
    CK_ATTRIBUTE tmpl = attribute_of(CKA_CLASS, certificate);
    const auto take = [this](CK_OBJECT_HANDLE object) { read_certificate(object, next()); };
    return walk({.session = hSession, .tmpl = {&tmpl, 1}, .log = log, .exits = exits}, take).whole();
}

CertificateFields::CertificateFields(Certificate& certificate, bool own) {
    unsigned char* der = certificate.value;
    const unsigned long length = certificate.value_length;
    char date_text[ZVC_DESCRIPTION_SIZE] = {};
    GiveMeCertDate(der, length, date_text, sizeof date_text, description);
    terminate(description);
    rewrite_holder(description, own);
    kvGetCertDate(der, length, start, end);
    kvGetIssuerDN(der, length, issuer, sizeof issuer);
    terminate(issuer);
    rewrite_name(issuer, sizeof issuer);
    kvGetSubjectDN(der, length, subject, sizeof subject);
    terminate(subject);
    rewrite_holder(subject, own);
    kvX509GetSerial(der, length, serial, sizeof serial);
    kvGetIUT(der, length, iut, sizeof iut);
    zv_X509V3_get_subject_key_identifier(der, length, key_id, sizeof key_id);
    kvGetCodFisc(der, length, tax_code, sizeof tax_code);
    kvGetCertificatePolicies(der, length, policies, sizeof policies);
    kvGetExplicitText(der, length, explicit_text, sizeof explicit_text);
    terminate(start, end, serial, iut, key_id, tax_code, policies, explicit_text);
}

std::string CertificateFields::record(Kind kind, std::string_view id) const {
    std::string record = subject;
    for (const std::string_view field :
         {std::string_view(issuer), std::string_view(iut), std::string_view(policies),
          std::string_view(serial), std::string_view(start), std::string_view(end), id})
        record.append("#").append(field);
    if (kind_row(kind).notice) record.append("#").append(explicit_text);
    return record.append("#").append(key_id).append("#").append(tax_code);
}

LastCertificate::LastCertificate(const CertificateFields& fields, const Certificate& certificate) {
    std::memcpy(description.data(), fields.description, sizeof fields.description);
    std::memcpy(id.data(), certificate.id, sizeof certificate.id);
}

} // namespace zv
