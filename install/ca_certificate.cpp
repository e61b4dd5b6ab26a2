// InstallCACertificate: an authority's certificate, no key checked. No caller inside the library.
#include <algorithm>

#include "diag/log.h"
#include "install/certificate_object.h"

int InstallCACertificate(void*, datiCert* cert, unsigned long derLength, char* label) {
    static constexpr char TITLE[] = " .... InstallCACertificate FUN       .... ";
    constexpr int FAILED = 1;
    zv::trace(TITLE, "I N I Z I O");
    if (cert == nullptr) return FAILED;
    derLength = std::min<unsigned long>(derLength, sizeof cert->der);
    zv::CertificateParts parts;
    if (parts.read(TITLE, *cert, derLength) != 0) {
        zv::reportSentence("Problemi in Conversione ISSUER e SUBJECT a DER");
        return FAILED;
    }
    if (zv::createCertificate(TITLE, *cert, derLength, label, parts) != CKR_OK) {
        zv::reportSentence("Certificato CA non memorizzato correttamente sulla smartcard (%s)", zv::rv);
        return FAILED;
    }
    zv::trace(TITLE, "F I N E");
    return 0;
}
