// InstallUserCertificate: the issued certificate next to its pair, or the pair back under its pending
// identifier.
#include <algorithm>
#include <cstdio>

#include "diag/failure.h"
#include "diag/log.h"
#include "diag/messages.h"
#include "install/certificate_object.h"
#include "install/modules.h"
#include "store/objects.h"
#include "store/renewal_state.h"

namespace {

constexpr char USER_TITLE[] = " .... InstallUserCertificate FUN     .... ";
constexpr std::size_t MODULUS_SIZE = 256;

// Modules whose keys were never relabelled, or must not be again.
constexpr const char* KEPT_LABELS[] = {"incryptoki2", "libbit4xpki.dylib", "cnspkcs11"};

// The pair gets its pending identifier back.
int undone(char* label, char* module, const char* sentence) {
    if (!zv::moduleNamed(module, KEPT_LABELS)) RechangeValueObject(nullptr, label, zv::pendingLabel);
    return zv::Failure(USER_TITLE).sentence(sentence);
}

// One pass without going back: a byte that differs starts the count anew and is not tried as a start itself.
bool containsModulus(const unsigned char* der, unsigned long derLength, const unsigned char* modulus,
                     std::size_t length) {
    std::size_t matched = 0;
    for (unsigned long i = 0; i < derLength && matched < length; ++i)
        matched = der[i] == modulus[matched] ? matched + 1 : 0;
    return matched == length;
}

enum class Match { Yes, No, Unreadable };

Match matchPendingKey(const datiCert& certificate, unsigned long derLength) {
    unsigned char modulus[MODULUS_SIZE];
    std::size_t length = 0;
    zv::readWhole(zv::hSession, zv::hPrivateKey, CKA_MODULUS, modulus, sizeof modulus, length);
    if (zv::rv == CKR_OK)
        return containsModulus(certificate.der, derLength, modulus, length) ? Match::Yes : Match::No;
    zv::reportCode(USER_TITLE, "C_GetAttributeValue", zv::rv);
    // Some modules do not read keys at all: the certificate is then taken as it is.
    return zv::rv == CKR_FUNCTION_FAILED ? Match::Yes : Match::Unreadable;
}

} // namespace

int InstallUserCertificate(void*, datiCert* cert, unsigned long derLength, char* label, char* pkcs11Library) {
    zv::trace(USER_TITLE, "I N I Z I O");
    zv::traceSession(USER_TITLE, "C_GetAttributeValue", zv::hSession);
    if (cert == nullptr) return ZV_FAILED;
    derLength = std::min<unsigned long>(derLength, sizeof cert->der);
    switch (matchPendingKey(*cert, derLength)) {
    case Match::Yes:
        break;
    case Match::Unreadable:
        return undone(label, pkcs11Library, "");
    case Match::No:
        WriteErr(USER_TITLE, "C_CreateObject", 0,
                 "Certificato non corrispondente alle chiavi presenti sulla smartcard", 0);
        return undone(label, pkcs11Library,
                      "Il certificato non corrisponde alla coppia di chiavi presente sulla smartcard");
    }
    zv::CertificateParts parts;
    if (parts.read(USER_TITLE, *cert, derLength) != 0) return undone(label, pkcs11Library, "");
    parts.trimSerial();
    if (zv::createCertificate(USER_TITLE, *cert, derLength, label, parts) != CKR_OK) {
        zv::Sentence sentence;
        (void)std::snprintf(sentence, sizeof sentence,
                            "Certificato non memorizzato correttamente sulla smartcard (%s)",
                            zv::errorMessage(zv::rv));
        return undone(label, pkcs11Library, sentence);
    }
    zv::trace(USER_TITLE, "F I N E");
    // A marker is on a services card only, but is looked for on every card.
    char marker[] = "pending_CNS_key";
    zv::rv = DeleteDataPendingCNS(zv::hSession, marker);
    return 0;
}
