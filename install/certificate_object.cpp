#include "install/certificate_object.h"

#include "card/session.h"
#include "diag/report.h"
#include "install/label.h"
#include "util/text.h"
#include "zvCrypt.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zv {

CK_OBJECT_CLASS cert_object_class = CKO_CERTIFICATE;
CK_BBOOL bTrue = CK_TRUE;
CK_CERTIFICATE_TYPE certType = CKC_X_509;
unsigned char BufferAttribute[ZVC_CERT_DER_SIZE];
char BufferSubject[ZVC_CARD_NAME_SIZE + 1];
char BufferIssuer[ZVC_CARD_NAME_SIZE + 1];
char BufferSerNumb[ZVC_CARD_SERIAL_SIZE];

CK_ATTRIBUTE CertTemplate[CERTIFICATE_ENTRIES] = {
    {CKA_CLASS, &cert_object_class, sizeof cert_object_class},
    {CKA_TOKEN, &bTrue, sizeof bTrue},
    {CKA_CERTIFICATE_TYPE, &certType, sizeof certType},
    {CKA_ID, crtLabel, sizeof crtLabel - 1},
    {CKA_LABEL, crtLabel, sizeof crtLabel - 1},
    {CKA_VALUE, BufferAttribute, sizeof BufferAttribute},
    {CKA_SUBJECT, BufferSubject, sizeof BufferSubject},
    {CKA_ISSUER, BufferIssuer, sizeof BufferIssuer},
    {CKA_SERIAL_NUMBER, BufferSerNumb, sizeof BufferSerNumb},
};

CK_OBJECT_HANDLE hCert = 0;

namespace {

constexpr CK_ULONG NAME_ROOM = ZVC_CARD_NAME_SIZE;

} // namespace

int fill_template(const char* title, std::span<unsigned char> der, const char* label, Serial serial_form) {
    auto& [object_class, token, type, id, name, value, subject, issuer, serial] = CertTemplate;
    object_class.ulValueLen = sizeof cert_object_class;
    token.ulValueLen = sizeof bTrue;
    type.ulValueLen = sizeof certType;
    label_certificate(id, name, label);
    value.ulValueLen = std::min(der.size(), sizeof BufferAttribute);
    std::ranges::fill(BufferAttribute, 0);
    std::ranges::copy(der.first(value.ulValueLen), BufferAttribute);
    clear(BufferSubject, BufferIssuer, BufferSerNumb);
    subject.ulValueLen = issuer.ulValueLen = NAME_ROOM;
    serial.ulValueLen = sizeof BufferSerNumb;
    const int code = ConvToDer(der.data(), der.size(), BufferSubject, &subject.ulValueLen, BufferIssuer,
                               &issuer.ulValueLen, BufferSerNumb, &serial.ulValueLen);
    subject.ulValueLen = std::min(subject.ulValueLen, NAME_ROOM);
    issuer.ulValueLen = std::min(issuer.ulValueLen, NAME_ROOM);
    serial.ulValueLen = std::min<CK_ULONG>(serial.ulValueLen, sizeof BufferSerNumb);
    if (serial_form == Serial::trimmed) trim_serial(BufferSerNumb, serial.ulValueLen);
    if (code != 0) report_code(title, "ConvToDer", static_cast<CK_RV>(code));
    return code;
}

void trim_serial(char* serial, unsigned long& length) {
    const char* end = serial + length;
    const char* first = std::find_if(serial, serial + length, [](char byte) { return byte != 0; });
    length = static_cast<unsigned long>(end - first);
    std::memmove(serial, first, length);
}

void trace_creation(CK_SESSION_HANDLE session, CK_ULONG entries, const CK_OBJECT_HANDLE* created) {
    char line[128];
    (void)std::snprintf(line, sizeof line, "hSession = <%lu> ulCount = <%lu> hCert = <%lu>", session, entries,
                        reinterpret_cast<unsigned long>(created));
    trace(" .... InstallCertificate FUN         .... ", line);
}

CK_RV create_certificate(const char* title) {
    hCert = 0;
    trace_creation(hSession, CERTIFICATE_ENTRIES, &hCert);
    rv = call<&Functions::C_CreateObject>(hSession, CertTemplate, CK_ULONG{CERTIFICATE_ENTRIES}, &hCert);
    if (rv != CKR_OK) report_code(title, "C_CreateObject", rv);
    return rv;
}

} // namespace zv
