// InstallUserCertificate: the issued certificate next to its pair, or the pair back under its pending
// identifier.
#include "diag/failure.h"
#include "diag/log.h"
#include "diag/messages.h"
#include "install/certificate_object.h"
#include "install/modules.h"
#include "store/marker.h"
#include "store/objects.h"
#include "store/renewal_state.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr char USER_TITLE[] = " .... InstallUserCertificate FUN     .... ";
constexpr std::size_t MODULUS_SIZE = 256;

// Modules whose keys were never relabelled, or must not be again.
constexpr const char* KEPT_LABELS[] = {"incryptoki2", "libbit4xpki.dylib", "cnspkcs11"};

// The pair gets its pending identifier back.
int undone(char* label, char* module, const char* sentence) {
    if (!zv::module_named(module, KEPT_LABELS)) RechangeValueObject(nullptr, label, zv::pendingLabel);
    return zv::Failure(USER_TITLE).sentence(sentence);
}

// One pass without going back: a byte that differs starts the count anew and is not tried as a start itself.
bool contains_modulus(const unsigned char* der, unsigned long der_length, const unsigned char* modulus,
                      std::size_t length) {
    std::size_t matched = 0;
    for (unsigned long i = 0; i < der_length && matched < length; ++i)
        matched = der[i] == modulus[matched] ? matched + 1 : 0;
    return matched == length;
}

enum class Match { yes, no, unreadable };

Match match_pending_key(const datiCert& certificate, unsigned long der_length) {
    unsigned char modulus[MODULUS_SIZE];
    const zv::Read read = zv::read_attribute(zv::hSession, zv::hPrivateKey, CKA_MODULUS,
                                             std::as_writable_bytes(std::span(modulus)), zv::TooLong::fails);
    if (read.code == CKR_OK)
        return contains_modulus(certificate.der, der_length, modulus, read.length) ? Match::yes : Match::no;
    zv::report_code(USER_TITLE, "C_GetAttributeValue", read.code);
    // Some modules do not read keys at all: the certificate is then taken as it is.
    return read.code == CKR_FUNCTION_FAILED ? Match::yes : Match::unreadable;
}

} // namespace

int InstallUserCertificate(void*, datiCert* cert, unsigned long der_length, char* label,
                           char* pkcs11_library) {
    zv::trace(USER_TITLE, "I N I Z I O");
    zv::trace_session(USER_TITLE, "C_GetAttributeValue", zv::hSession);
    if (cert == nullptr) return ZV_FAILED;
    der_length = std::min<unsigned long>(der_length, sizeof cert->der);
    switch (match_pending_key(*cert, der_length)) {
    case Match::yes:
        break;
    case Match::unreadable:
        return undone(label, pkcs11_library, "");
    case Match::no:
        WriteErr(USER_TITLE, "C_CreateObject", 0,
                 "Certificato non corrispondente alle chiavi presenti sulla smartcard", 0);
        return undone(label, pkcs11_library,
                      "Il certificato non corrisponde alla coppia di chiavi presente sulla smartcard");
    }
    zv::CertificateParts parts;
    if (parts.read(USER_TITLE, *cert, der_length) != 0) return undone(label, pkcs11_library, "");
    parts.trim_serial();
    if (zv::create_certificate(USER_TITLE, *cert, der_length, label, parts) != CKR_OK) {
        zv::Sentence sentence;
        (void)std::snprintf(sentence, sizeof sentence,
                            "Certificato non memorizzato correttamente sulla smartcard (%s)",
                            zv::error_message(zv::rv));
        return undone(label, pkcs11_library, sentence);
    }
    zv::trace(USER_TITLE, "F I N E");
    // A marker is on a services card only, but is looked for on every card.
    zv::delete_data(zv::hSession, "pending_CNS_key");
    return 0;
}
