#include "install/certificate_object.h"

#include "diag/log.h"
#include "util/text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zv {

CK_OBJECT_CLASS cert_object_class = CKO_CERTIFICATE;
CK_BBOOL b_true = CK_TRUE;
CK_CERTIFICATE_TYPE certType = CKC_X_509;
char crtLabel[256];
unsigned char BufferAttribute[8192];
char BufferSubject[513];
char BufferIssuer[513];
char BufferSerNumb[256];

} // namespace zv

namespace {

// Zero-filled, then the bytes, as many as fit.
template <typename Buffer>
void fill(CK_ATTRIBUTE& entry, Buffer& buffer, const void* bytes, std::size_t length) {
    entry.ulValueLen = std::min(length, sizeof buffer);
    std::memset(buffer, 0, sizeof buffer);
    if (entry.ulValueLen > 0) std::memcpy(buffer, bytes, entry.ulValueLen);
}

} // namespace

namespace zv {

CK_ATTRIBUTE CertTemplate[CERTIFICATE_ENTRIES] = {
    {CKA_CLASS, &cert_object_class, sizeof cert_object_class},
    {CKA_TOKEN, &b_true, sizeof b_true},
    {CKA_CERTIFICATE_TYPE, &certType, sizeof certType},
    {CKA_ID, crtLabel, sizeof crtLabel - 1},
    {CKA_LABEL, crtLabel, sizeof crtLabel - 1},
    {CKA_VALUE, BufferAttribute, sizeof BufferAttribute},
    {CKA_SUBJECT, BufferSubject, sizeof BufferSubject},
    {CKA_ISSUER, BufferIssuer, sizeof BufferIssuer},
    {CKA_SERIAL_NUMBER, BufferSerNumb, sizeof BufferSerNumb},
};

CK_OBJECT_HANDLE hCert = 0;

int CertificateParts::read(const char* title, datiCert& certificate, unsigned long der_length) {
    const int code = ConvToDer(certificate.der, der_length, subject, &subject_length, issuer, &issuer_length,
                               serial, &serial_length);
    if (code != 0) report_code(title, "ConvToDer", static_cast<CK_RV>(code));
    subject_length = std::min(subject_length, NAME_SIZE);
    issuer_length = std::min(issuer_length, NAME_SIZE);
    serial_length = std::min(serial_length, SERIAL_SIZE);
    return code;
}

void CertificateParts::trim_serial() {
    const char* end = serial + serial_length;
    const char* first = std::find_if(serial, serial + serial_length, [](char byte) { return byte != 0; });
    serial_length = static_cast<unsigned long>(end - first);
    std::memmove(serial, first, serial_length);
}

CK_RV create_certificate(const char* title, const datiCert& certificate, unsigned long der_length,
                         const char* label, const CertificateParts& parts) {
    CertTemplate[0].ulValueLen = sizeof cert_object_class;
    CertTemplate[1].ulValueLen = sizeof b_true;
    CertTemplate[2].ulValueLen = sizeof certType;
    const std::string_view id = bounded_text(label, sizeof crtLabel - 1);
    fill(CertTemplate[3], crtLabel, id.data(), id.size());
    CertTemplate[4].ulValueLen = CertTemplate[3].ulValueLen;
    fill(CertTemplate[5], BufferAttribute, certificate.der, der_length);
    fill(CertTemplate[6], BufferSubject, parts.subject, parts.subject_length);
    fill(CertTemplate[7], BufferIssuer, parts.issuer, parts.issuer_length);
    fill(CertTemplate[8], BufferSerNumb, parts.serial, parts.serial_length);
    hCert = 0;
    LogInstallCertificate(hSession, CertTemplate, CERTIFICATE_ENTRIES, &hCert);
    rv = call<&Functions::C_CreateObject>(hSession, CertTemplate, CK_ULONG{CERTIFICATE_ENTRIES}, &hCert);
    if (rv != CKR_OK) report_code(title, "C_CreateObject", rv);
    return rv;
}

} // namespace zv

void LogInstallCertificate(unsigned long session, CK_ATTRIBUTE*, unsigned long count,
                           unsigned long* certificate) {
    char line[128];
    (void)std::snprintf(line, sizeof line, "hSession = <%lu> ulCount = <%lu> hCert = <%lu>", session, count,
                        reinterpret_cast<unsigned long>(certificate));
    zv::trace(" .... InstallCertificate FUN         .... ", line);
}
