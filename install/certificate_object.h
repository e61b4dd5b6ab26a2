#pragma once

#include "card/session.h"

// The certificate object that is written to the card: one template, whose lengths alone change.
namespace zv {

constexpr std::size_t CERTIFICATE_ENTRIES = 9;
constexpr unsigned long NAME_SIZE = 512, SERIAL_SIZE = 256;

extern CK_ATTRIBUTE CertTemplate[CERTIFICATE_ENTRIES];
extern CK_OBJECT_HANDLE hCert; // the object created last

// Subject, issuer and serial number of a certificate, as the crypto library takes them out of it.
struct CertificateParts {
    char subject[NAME_SIZE] = {};
    char issuer[NAME_SIZE] = {};
    char serial[SERIAL_SIZE] = {};
    unsigned long subject_length = NAME_SIZE, issuer_length = NAME_SIZE, serial_length = SERIAL_SIZE;

    // Returns the crypto library's code; a failure is logged under title.
    int read(const char* title, datiCert& certificate, unsigned long der_length);
    // Drops the zero bytes in front of the serial number.
    void trim_serial();
};

// Fills the template, logs the call and creates the object. Returns the PKCS#11 result, logged when it is a
// failure.
CK_RV create_certificate(const char* title, const datiCert& certificate, unsigned long der_length,
                         const char* label, const CertificateParts& parts);

} // namespace zv
