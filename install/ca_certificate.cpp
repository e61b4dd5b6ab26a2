// InstallCACertificate: an authority's certificate, no key checked. No caller inside the library.
#include "diag/failure.h"
#include "diag/log.h"
#include "install/certificate_object.h"

#include <algorithm>

int InstallCACertificate(void*, datiCert* cert, unsigned long der_length, char* label) {
    static constexpr char title[] = " .... InstallCACertificate FUN       .... ";
    zv::trace(title, "I N I Z I O");
    if (cert == nullptr) return ZV_FAILED;
    der_length = std::min<unsigned long>(der_length, sizeof cert->der);
    zv::CertificateParts parts;
    if (parts.read(title, *cert, der_length) != 0)
        return zv::Failure(title).sentence("Problemi in Conversione ISSUER e SUBJECT a DER");
    if (zv::create_certificate(title, *cert, der_length, label, parts) != CKR_OK)
        return zv::Failure(title).sentence(
            "Certificato CA non memorizzato correttamente sulla smartcard (%s)", zv::rv);
    zv::trace(title, "F I N E");
    return 0;
}
