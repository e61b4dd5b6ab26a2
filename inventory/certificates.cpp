#include "inventory/certificates.h"

#include "util/text.h"

#include <algorithm>
#include <cstring>

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

void CertificateFields::read(Certificate& certificate, NameRewrite rewrite_holder) {
    *this = CertificateFields();
    unsigned char* der = certificate.value;
    const unsigned long length = certificate.value_length;
    char date_text[DESCRIPTION_SIZE] = {};
    GiveMeCertDate(der, length, date_text, sizeof date_text, description);
    terminate(description);
    rewrite_holder(description, sizeof description);
    kvGetCertDate(der, length, start, end);
    kvGetIssuerDN(der, length, issuer, sizeof issuer);
    terminate(issuer);
    rewrite_name(issuer, sizeof issuer);
    kvGetSubjectDN(der, length, subject, sizeof subject);
    terminate(subject);
    rewrite_holder(subject, sizeof subject);
    kvX509GetSerial(der, length, serial, sizeof serial);
    kvGetIUT(der, length, iut, sizeof iut);
    zv_X509V3_get_subject_key_identifier(der, length, key_id, sizeof key_id);
    kvGetCodFisc(der, length, cod_fisc, sizeof cod_fisc);
    kvGetCertificatePolicies(der, length, policies, sizeof policies);
    kvGetExplicitText(der, length, explicit_text, sizeof explicit_text);
    terminate(start, end, serial, iut, key_id, cod_fisc, policies, explicit_text);
}

RecordList::RecordList(char** list, char* record, long record_size)
    : list_(list), record_(record),
      size_(record != nullptr
                ? static_cast<std::size_t>(std::clamp(record_size, 0L, long{ZV_LIST_ENTRY_SIZE}))
                : 0) {}

void RecordList::add_field(std::string_view field) {
    append_text(record_, size_, "#");
    append_text(record_, size_, field);
}

void RecordList::assemble(const CertificateFields& fields, std::string_view id) {
    append_text(record_, size_, fields.subject);
    for (const char* field :
         {fields.issuer, fields.iut, fields.policies, fields.serial, fields.start, fields.end})
        add_field(field);
    add_field(id);
}

void RecordList::finish() {
    ++count_;
    if (list_ != nullptr) append_text(list_[count_], ZV_LIST_ENTRY_SIZE, bounded_text(record_, size_));
    if (record_ != nullptr) std::memset(record_, 0, size_);
}

void RecordList::add_signature(const CertificateFields& fields, std::string_view id) {
    assemble(fields, id);
    for (const char* field : {fields.explicit_text, fields.key_id, fields.cod_fisc})
        add_field(field);
    finish();
}

void RecordList::add_authentication(const CertificateFields& fields, std::string_view id) {
    assemble(fields, id);
    for (const char* field : {fields.key_id, fields.cod_fisc})
        add_field(field);
    finish();
}

void RecordList::write_count() {
    if (list_ != nullptr) append_text(list_[0], ZV_LIST_ENTRY_SIZE, ItoA(count_));
}

void RecordList::mark(std::string_view field) {
    char* first = list_ != nullptr ? list_[1] : nullptr;
    if (first == nullptr || first[0] == '\0') return;
    append_text(first, ZV_LIST_ENTRY_SIZE, "#");
    append_text(first, ZV_LIST_ENTRY_SIZE, field);
}

void keep_last(const CertificateFields& fields, const Certificate& certificate, char* subject, char* id) {
    if (subject != nullptr) std::memcpy(subject, fields.description, sizeof fields.description);
    if (id != nullptr) std::memcpy(id, certificate.id, sizeof certificate.id);
}

} // namespace zv
