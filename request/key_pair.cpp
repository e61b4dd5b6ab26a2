#include "request/key_pair.h"

#include <cstring>
#include <string_view>

#include "card/session.h"
#include "diag/failure.h"
#include "diag/log.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "util/text.h"

namespace zv {

unsigned long keySize = 0;

namespace {

constexpr char STEP[] = "C_GenerateKeyPair";
constexpr char GENERATION_ERROR[] = "Errore nella generazione delle chiavi sulla smartcard (error %lx)";

// The odd line break before the full stop is part of the text.
constexpr struct {
    CK_RV code;
    const char* sentence;
} REFUSALS[] = {
    {CKR_FUNCTION_FAILED,
     "Attenzione non e' possibile procedere con l'operazione di Rinnovo.\n\n"
     "Il PIN di firma e' differente dal PIN di carta\n"
     ".Provare a sbloccare il PIN di carta ed il PIN di firma al medesimo valore utilizzando la funzione "
     "\"Sblocco PIN\" del zvPennaro."},
    {CKR_DEVICE_ERROR, "Attenzione non e' possibile procedere con l'operazione di Rinnovo.\n\n"
                       "Errore nella comunicazione con il lettore di Smart Card.\n\n"
                       "Generazione delle chiavi di firma fallita."},
    {CKR_DEVICE_MEMORY,
     "Attenzione non e' possibile procedere con l'operazione di Rinnovo.\n\n"
     "La Smart Card non ha piu' spazio sufficiente per la registrazione del\nnuovo certificato.\n\n"
     "Si prega di rivolgersi al piu' vicino ufficio di registrazione per la richiesta\n"
     "di una nuova Smart Card."},
};

CK_RV generateOnce(const char* modulePath) {
    static constexpr unsigned char F4[] = {0x01, 0x00, 0x01};
    const CK_ULONG bits = keySize;
    const CK_BBOOL bTrue = CK_TRUE;
    const std::string_view label = pendingLabel;
    CK_ATTRIBUTE withExponent[] = {
        attributeOf(CKA_MODULUS_BITS, bits),
        attributeOf(CKA_PUBLIC_EXPONENT, F4),
        attributeOf(CKA_TOKEN, bTrue),
        attribute(CKA_LABEL, label),
        attribute(CKA_ID, label),
        attributeOf(CKA_VERIFY, bTrue),
    };
    CK_ATTRIBUTE plain[] = {withExponent[0], withExponent[2], withExponent[3], withExponent[4],
                            withExponent[5]};
    CK_ATTRIBUTE privateTemplate[] = {
        attributeOf(CKA_TOKEN, bTrue), attributeOf(CKA_PRIVATE, bTrue), attributeOf(CKA_SENSITIVE, bTrue),
        attribute(CKA_LABEL, label),   attribute(CKA_ID, label),        attributeOf(CKA_DECRYPT, bTrue),
        attributeOf(CKA_SIGN, bTrue),
    };
    // This module wants to be told the exponent; the others choose it.
    const bool tellExponent = std::strstr(modulePath, "libcardos11.dylib") != nullptr;
    const std::span publicTemplate =
        tellExponent ? std::span<CK_ATTRIBUTE>(withExponent) : std::span<CK_ATTRIBUTE>(plain);
    CK_MECHANISM mechanism = {CKM_RSA_PKCS_KEY_PAIR_GEN, nullptr, 0};
    traceSession(REQUEST_TITLE, STEP, hSession);
    return rv = call<&Functions::C_GenerateKeyPair>(
               hSession, &mechanism, publicTemplate.data(), CK_ULONG{publicTemplate.size()}, privateTemplate,
               CK_ULONG{std::size(privateTemplate)}, &hPublicKey, &hPrivateKey);
}

// A login that succeeds ends the request, one that fails leads to the second try: deliberate.
unsigned short generateAgain(const LoginData& login) {
    rv = static_cast<CK_RV>(reopenSession(login));
    if (rv == 0)
        return Failure(REQUEST_TITLE)
            .step("C_Login", rv)
            .sentence("Generazione chiavi fallita error inizializza (%s)", rv)
            .user("Errore nella generazione delle chiavi sulla smartcard (error inizializza %lx)", rv);
    if (generateOnce(login.modulePath) == CKR_OK) return 0;
    return Failure(REQUEST_TITLE)
        .step(STEP, rv)
        .sentence("Generazione chiavi fallita (%s)", rv)
        .user(GENERATION_ERROR, rv);
}

} // namespace

unsigned short generateKeyPair(const LoginData& login) {
    copyText(privateKeyId, pendingLabel);
    if (generateOnce(login.modulePath) == CKR_OK) return 0;
    reportCode(REQUEST_TITLE, STEP, rv);
    if (rv == CKR_USER_NOT_LOGGED_IN) return generateAgain(login);
    for (const auto& [code, sentence] : REFUSALS)
        if (rv == code) return Failure(REQUEST_TITLE).sentence(sentence).user(GENERATION_ERROR, rv);
    return 0;
}

} // namespace zv
