// InstallCACertificate: an authority's certificate, no key checked. No caller inside the library.
#include <algorithm>

#include "diag/failure.h"
#include "diag/log.h"
#include "install/certificate_object.h"

int InstallCACertificate(void*, datiCert* cert, unsigned long derLength, char* label) {
    static constexpr char TITLE[] = " .... InstallCACertificate FUN       .... ";
    zv::trace(TITLE, "I N I Z I O");
    if (cert == nullptr) return ZV_FAILED;
    derLength = std::min<unsigned long>(derLength, sizeof cert->der);
    zv::CertificateParts parts;
    if (parts.read(TITLE, *cert, derLength) != 0)
        return zv::Failure(TITLE).sentence("Problemi in Conversione ISSUER e SUBJECT a DER");
    if (zv::createCertificate(TITLE, *cert, derLength, label, parts) != CKR_OK)
        return zv::Failure(TITLE).sentence(
            "Certificato CA non memorizzato correttamente sulla smartcard (%s)", zv::rv);
    zv::trace(TITLE, "F I N E");
    return 0;
}
