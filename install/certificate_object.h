#ifndef ZV_INSTALL_CERTIFICATE_OBJECT_H
#define ZV_INSTALL_CERTIFICATE_OBJECT_H

#include "card/session.h"

/** The certificate object that is written to the card: one template, whose lengths alone change. */
namespace zv {

constexpr std::size_t CERTIFICATE_ENTRIES = 9;
constexpr unsigned long NAME_SIZE = 512, SERIAL_SIZE = 256;

extern CK_ATTRIBUTE CertTemplate[CERTIFICATE_ENTRIES];
extern CK_OBJECT_HANDLE hCert; ///< the object created last

/** Subject, issuer and serial number of a certificate, as the crypto library takes them out of it. */
struct CertificateParts {
    char subject[NAME_SIZE] = {};
    char issuer[NAME_SIZE] = {};
    char serial[SERIAL_SIZE] = {};
    unsigned long subjectLength = NAME_SIZE, issuerLength = NAME_SIZE, serialLength = SERIAL_SIZE;

    /** Returns the crypto library's code; a failure is logged under title. */
    int read(const char* title, datiCert& certificate, unsigned long derLength);
    /** Drops the zero bytes in front of the serial number. */
    void trimSerial();
};

/** Fills the template, logs the call and creates the object. Returns the PKCS#11 result, logged when it is a
 * failure. */
CK_RV createCertificate(const char* title, const datiCert& certificate, unsigned long derLength,
                        const char* label, const CertificateParts& parts);

} // namespace zv

#endif
