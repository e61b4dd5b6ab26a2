#pragma once

#include "pkcs11.h"

#include <cstddef>
#include <span>

// The certificate object that is written to the card: one template, whose lengths and texts alone change.
namespace zv {

constexpr std::size_t CERTIFICATE_ENTRIES = 9;

extern CK_ATTRIBUTE CertTemplate[CERTIFICATE_ENTRIES];
extern CK_OBJECT_HANDLE hCert; // the object created last

enum class Serial { as_given, trimmed };

// Fills the template with a certificate, its parts and the text that it is called by. Returns the crypto
// library's code, logged under title when it is a failure.
[[nodiscard]] int fill_template(const char* title, std::span<unsigned char> der, const char* label,
                                Serial serial);

// Drops the zero bytes in front of a serial number.
void trim_serial(char* serial, unsigned long& length);

// Logs that a certificate is about to be created, and where its handle will go.
void trace_creation(CK_SESSION_HANDLE session, CK_ULONG entries, const CK_OBJECT_HANDLE* created);

// Logs the call and creates the object of the template. Returns the PKCS#11 result, logged when it is a failure.
CK_RV create_certificate(const char* title);

} // namespace zv
