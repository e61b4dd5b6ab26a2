#include "install/certificate_object.h"

#include "diag/log.h"
#include "install/label.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zv {

CK_OBJECT_CLASS cert_object_class = CKO_CERTIFICATE;
CK_BBOOL bTrue = CK_TRUE;
CK_CERTIFICATE_TYPE certType = CKC_X_509;
unsigned char BufferAttribute[8192];
char BufferSubject[513];
char BufferIssuer[513];
char BufferSerNumb[256];

} // namespace zv

namespace {

// Zero-filled, then the bytes, as many as fit.
template <typename Buffer>
void fill(CK_ATTRIBUTE& entry, Buffer& buffer, std::span<const unsigned char> bytes) {
    entry.ulValueLen = std::min(bytes.size(), sizeof buffer);
    std::memset(buffer, 0, sizeof buffer);
    if (entry.ulValueLen > 0) std::memcpy(buffer, bytes.data(), entry.ulValueLen);
}

} // namespace

namespace zv {

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

int CertificateParts::read(const char* title, std::span<unsigned char> der) {
    const int code = ConvToDer(der.data(), der.size(), subject.data(), &subject.length, issuer.data(),
                               &issuer.length, serial.data(), &serial.length);
    if (code != 0) report_code(title, "ConvToDer", static_cast<CK_RV>(code));
    return code;
}

void CertificateParts::trim_serial() {
    const auto given = serial.bytes();
    const auto first = std::ranges::find_if(given, [](unsigned char byte) { return byte != 0; });
    serial.length = static_cast<unsigned long>(given.end() - first);
    std::copy(first, given.end(), serial.buffer.begin());
}

void trace_creation(CK_SESSION_HANDLE session, CK_ULONG entries, const CK_OBJECT_HANDLE* created) {
    char line[128];
    (void)std::snprintf(line, sizeof line, "hSession = <%lu> ulCount = <%lu> hCert = <%lu>", session, entries,
                        reinterpret_cast<unsigned long>(created));
    trace(" .... InstallCertificate FUN         .... ", line);
}

CK_RV create_certificate(const char* title, std::span<const unsigned char> der, const char* label,
                         const CertificateParts& parts) {
    CertTemplate[0].ulValueLen = sizeof cert_object_class;
    CertTemplate[1].ulValueLen = sizeof bTrue;
    CertTemplate[2].ulValueLen = sizeof certType;
    label_certificate(CertTemplate[3], CertTemplate[4], label);
    fill(CertTemplate[5], BufferAttribute, der);
    fill(CertTemplate[6], BufferSubject, parts.subject.bytes());
    fill(CertTemplate[7], BufferIssuer, parts.issuer.bytes());
    fill(CertTemplate[8], BufferSerNumb, parts.serial.bytes());
    hCert = 0;
    trace_creation(hSession, CERTIFICATE_ENTRIES, &hCert);
    rv = call<&Functions::C_CreateObject>(hSession, CertTemplate, CK_ULONG{CERTIFICATE_ENTRIES}, &hCert);
    if (rv != CKR_OK) report_code(title, "C_CreateObject", rv);
    return rv;
}

} // namespace zv
