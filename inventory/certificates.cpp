#include "inventory/certificates.h"

#include <algorithm>
#include <cstring>

#include "util/text.h"

namespace zv {

Certificate Certificati[MOST_CERTIFICATES];
int numCertificate = 0;

namespace {

// A failed read leaves the field as it is.
template <typename Field>
bool readField(CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type, Field& field, std::size_t& length) {
    unsigned char buffer[sizeof(Certificate::value)];
    if (readAttribute(hSession, object, type, buffer, sizeof field, length) != CKR_OK) return false;
    std::memcpy(field, buffer, sizeof field);
    std::memset(reinterpret_cast<char*>(field) + length, 0, sizeof field - length);
    return true;
}

void readCertificate(CK_OBJECT_HANDLE object, Certificate& certificate) {
    std::size_t length = 0;
    readField(object, CKA_ID, certificate.id, length);
    readField(object, CKA_LABEL, certificate.label, length);
    readField(object, CKA_SERIAL_NUMBER, certificate.serialNumber, length);
    if (readField(object, CKA_VALUE, certificate.value, length)) certificate.valueLength = length;
}

template <std::size_t... N> void terminate(char (&... texts)[N]) {
    ((texts[N - 1] = '\0'), ...);
}

} // namespace

bool probeToken(CallTrace trace) {
    CK_SLOT_INFO slotInfo;
    rv = call<&Functions::C_GetSlotInfo>(slotID, &slotInfo);
    trace("C_GetSlotInfo", rv);
    if (rv != CKR_OK) return false;
    CK_TOKEN_INFO tokenInfo;
    rv = call<&Functions::C_GetTokenInfo>(slotID, &tokenInfo);
    trace("C_GetTokenInfo", rv);
    return rv == CKR_OK;
}

Certificate& FoundCertificates::next() {
    const bool inTable = all_.size() < MOST_CERTIFICATES;
    all_.push_back(inTable ? &Certificati[numCertificate++] : &beyond_.emplace_back());
    return *all_.back();
}

bool FoundCertificates::read(const SearchLog& log, const Exits& exits) {
    numCertificate = 0;
    const CK_OBJECT_CLASS certificate = CKO_CERTIFICATE;
    CK_ATTRIBUTE tmpl = attributeOf(CKA_CLASS, certificate);
    const auto take = [this](CK_OBJECT_HANDLE object) { readCertificate(object, next()); };
    return walk({.session = hSession, .tmpl = {&tmpl, 1}, .log = log, .exits = exits}, take).whole();
}

void CertificateFields::read(Certificate& certificate, NameRewrite rewriteHolder) {
    *this = CertificateFields();
    unsigned char* der = certificate.value;
    const unsigned long length = certificate.valueLength;
    char dateText[DESCRIPTION_SIZE] = {};
    GiveMeCertDate(der, length, dateText, sizeof dateText, description);
    terminate(description);
    rewriteHolder(description, sizeof description);
    kvGetCertDate(der, length, start, end);
    kvGetIssuerDN(der, length, issuer, sizeof issuer);
    terminate(issuer);
    rewriteName(issuer, sizeof issuer);
    kvGetSubjectDN(der, length, subject, sizeof subject);
    terminate(subject);
    rewriteHolder(subject, sizeof subject);
    kvX509GetSerial(der, length, serial, sizeof serial);
    kvGetIUT(der, length, iut, sizeof iut);
    zv_X509V3_get_subject_key_identifier(der, length, keyId, sizeof keyId);
    kvGetCodFisc(der, length, codFisc, sizeof codFisc);
    kvGetCertificatePolicies(der, length, policies, sizeof policies);
    kvGetExplicitText(der, length, explicitText, sizeof explicitText);
    terminate(start, end, serial, iut, keyId, codFisc, policies, explicitText);
}

RecordList::RecordList(char** list, char* record, long recordSize)
    : list_(list), record_(record),
      size_(record != nullptr ? static_cast<std::size_t>(std::clamp(recordSize, 0L, long{ZV_LIST_ENTRY_SIZE}))
                              : 0) {}

void RecordList::addField(std::string_view field) {
    appendText(record_, size_, "#");
    appendText(record_, size_, field);
}

void RecordList::assemble(const CertificateFields& fields, std::string_view id) {
    appendText(record_, size_, fields.subject);
    for (const char* field :
         {fields.issuer, fields.iut, fields.policies, fields.serial, fields.start, fields.end})
        addField(field);
    addField(id);
}

void RecordList::finish() {
    ++count_;
    if (list_ != nullptr) appendText(list_[count_], ZV_LIST_ENTRY_SIZE, boundedText(record_, size_));
    if (record_ != nullptr) std::memset(record_, 0, size_);
}

void RecordList::addSignature(const CertificateFields& fields, std::string_view id) {
    assemble(fields, id);
    for (const char* field : {fields.explicitText, fields.keyId, fields.codFisc})
        addField(field);
    finish();
}

void RecordList::addAuthentication(const CertificateFields& fields, std::string_view id) {
    assemble(fields, id);
    for (const char* field : {fields.keyId, fields.codFisc})
        addField(field);
    finish();
}

void RecordList::writeCount() {
    if (list_ != nullptr) appendText(list_[0], ZV_LIST_ENTRY_SIZE, ItoA(count_));
}

void RecordList::mark(std::string_view field) {
    char* first = list_ != nullptr ? list_[1] : nullptr;
    if (first == nullptr || first[0] == '\0') return;
    appendText(first, ZV_LIST_ENTRY_SIZE, "#");
    appendText(first, ZV_LIST_ENTRY_SIZE, field);
}

void keepLast(const CertificateFields& fields, const Certificate& certificate, char* subject, char* id) {
    if (subject != nullptr) std::memcpy(subject, fields.description, sizeof fields.description);
    if (id != nullptr) std::memcpy(id, certificate.id, sizeof certificate.id);
}

} // namespace zv
