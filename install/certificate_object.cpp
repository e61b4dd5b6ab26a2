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

// A part of a certificate as the crypto library takes it out. What lies behind its length is none.
template <std::size_t Room> struct TakenPart {
    char bytes[Room] = {};
    unsigned long length = Room;

    [[nodiscard]] std::span<const char> taken() const { return {bytes, std::min<std::size_t>(length, Room)}; }
};

// The bytes, as many as fit, and zeros behind them.
template <typename Byte, std::size_t N>
void fill_entry(CK_ATTRIBUTE& entry, Byte (&buffer)[N], std::span<const Byte> bytes) {
    entry.ulValueLen = std::min(bytes.size(), N);
    std::ranges::fill(buffer, Byte{0});
    std::ranges::copy(bytes.first(entry.ulValueLen), buffer);
}

} // namespace

int fill_template(const char* title, std::span<unsigned char> der, const char* label, Serial form) {
    TakenPart<ZVC_CARD_NAME_SIZE> subject, issuer;
    TakenPart<ZVC_CARD_SERIAL_SIZE> serial;
    const int code = ConvToDer(der.data(), der.size(), subject.bytes, &subject.length, issuer.bytes,
                               &issuer.length, serial.bytes, &serial.length);
    if (code != 0) {
        report_code(title, "ConvToDer", static_cast<CK_RV>(code));
        return code;
    }
    serial.length = serial.taken().size();
    if (form == Serial::trimmed) trim_serial(serial.bytes, serial.length);
    CertTemplate[0].ulValueLen = sizeof cert_object_class;
    CertTemplate[1].ulValueLen = sizeof bTrue;
    CertTemplate[2].ulValueLen = sizeof certType;
    label_certificate(CertTemplate[3], CertTemplate[4], label);
    fill_entry<unsigned char>(CertTemplate[5], BufferAttribute, der);
    fill_entry(CertTemplate[6], BufferSubject, subject.taken());
    fill_entry(CertTemplate[7], BufferIssuer, issuer.taken());
    fill_entry(CertTemplate[8], BufferSerNumb, serial.taken());
    return 0;
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
