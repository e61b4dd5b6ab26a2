#include "request/key_pair.h"

#include "card/session.h"
#include "diag/failure.h"
#include "diag/report.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "util/text.h"

#include <cstring>
#include <string_view>

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

CK_RV generate_once(const char* module_path) {
    static constexpr unsigned char f4[] = {0x01, 0x00, 0x01};
    const CK_ULONG bits = keySize;
    const CK_BBOOL b_true = CK_TRUE;
    const std::string_view label = pendingLabel;
    CK_ATTRIBUTE with_exponent[] = {
        attribute_of(CKA_MODULUS_BITS, bits),
        attribute_of(CKA_PUBLIC_EXPONENT, f4),
        attribute_of(CKA_TOKEN, b_true),
        attribute(CKA_LABEL, label),
        attribute(CKA_ID, label),
        attribute_of(CKA_VERIFY, b_true),
    };
    CK_ATTRIBUTE plain[] = {with_exponent[0], with_exponent[2], with_exponent[3], with_exponent[4],
                            with_exponent[5]};
    CK_ATTRIBUTE private_template[] = {
        attribute_of(CKA_TOKEN, b_true),
        attribute_of(CKA_PRIVATE, b_true),
        attribute_of(CKA_SENSITIVE, b_true),
        attribute(CKA_LABEL, label),
        attribute(CKA_ID, label),
        attribute_of(CKA_DECRYPT, b_true),
        attribute_of(CKA_SIGN, b_true),
    };
    // This module wants to be told the exponent; the others choose it.
    const bool tell_exponent = std::strstr(or_empty(module_path), "libcardos11.dylib") != nullptr;
    const std::span public_template =
        tell_exponent ? std::span<CK_ATTRIBUTE>(with_exponent) : std::span<CK_ATTRIBUTE>(plain);
    CK_MECHANISM mechanism = {CKM_RSA_PKCS_KEY_PAIR_GEN, nullptr, 0};
    trace_session(REQUEST_TITLE, STEP, hSession);
    return rv = call<&Functions::C_GenerateKeyPair>(
               hSession, &mechanism, public_template.data(), CK_ULONG{public_template.size()},
               private_template, CK_ULONG{std::size(private_template)}, &hPublicKey, &hPrivateKey);
}

// A login that succeeds ends the request, one that fails leads to the second try: deliberate.
unsigned short generate_again(const LoginData& login) {
    rv = static_cast<CK_RV>(reopen_session(login));
    if (rv == 0)
        return Failure(REQUEST_TITLE)
            .step("C_Login", rv)
            .sentence("Generazione chiavi fallita error inizializza (%s)", rv)
            .user("Errore nella generazione delle chiavi sulla smartcard (error inizializza %lx)", rv);
    if (generate_once(login.module_path) == CKR_OK) return 0;
    return Failure(REQUEST_TITLE)
        .step(STEP, rv)
        .sentence("Generazione chiavi fallita (%s)", rv)
        .user(GENERATION_ERROR, rv);
}

} // namespace

unsigned short generate_key_pair(const LoginData& login) {
    if (generate_once(login.module_path) == CKR_OK) return 0;
    report_code(REQUEST_TITLE, STEP, rv);
    if (rv == CKR_USER_NOT_LOGGED_IN) return generate_again(login);
    for (const auto& [code, sentence] : REFUSALS)
        if (rv == code) return Failure(REQUEST_TITLE).sentence(sentence).user(GENERATION_ERROR, rv);
    return 0;
}

} // namespace zv
