#include "request/pkcs10.h"

#include <algorithm>
#include <cstdio>

#include "card/session.h"
#include "diag/log.h"
#include "request/der.h"
#include "store/renewal_state.h"
#include "util/text.h"

namespace zv {

namespace {

// PKCS#1: 1.2.840.113549.1.1.x.
constexpr unsigned char RSA_ENCRYPTION[] = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x01};
constexpr unsigned char SHA1_WITH_RSA[] = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x01, 0x05};
constexpr std::size_t SIGNATURE_SIZE = 2048;

struct Signature {
    unsigned char bytes[SIGNATURE_SIZE] = {};
    unsigned long length = sizeof bytes;
};

ADATA* algorithm(std::span<const unsigned char> oid) {
    return SEQUENCE(leaf(oid), nullParameters(), END);
}

// A BIT STRING whose bytes are all used.
ADATA* bitString(ADATA* content) {
    static constexpr unsigned char noUnusedBits[] = {0x00};
    return var_tlv(TAG_BIT_STRING, leaf(noUnusedBits), content, END);
}

ADATA* integer(const unsigned char* bytes, unsigned long length) {
    return _INTEGER(const_cast<unsigned char*>(bytes), length);
}

ADATA* publicKeyInfo(const PublicKey& key) {
    ADATA* numbers =
        SEQUENCE(integer(key.modulus, key.modulusLength), integer(key.exponent, key.exponentLength), END);
    return SEQUENCE(algorithm(RSA_ENCRYPTION), bitString(numbers), END);
}

ADATA* requestInfo(ADATA* name, const PublicKey& key) {
    static constexpr unsigned char version[] = {0x00};
    return SEQUENCE(integer(version, sizeof version), name, publicKeyInfo(key), var_tlv(TAG_CONTEXT_0, END),
                    END);
}

CK_RV reportOwn(const char* step, CK_RV code, const char* format) {
    reportFailure(REQUEST_TITLE, step, code, format);
    return rv = code;
}

std::size_t significant(const unsigned char* bytes, unsigned long length) {
    const auto* first = std::find_if(bytes, bytes + length, [](unsigned char byte) { return byte != 0; });
    return static_cast<std::size_t>(bytes + length - first);
}

unsigned short signOnce(const ADATA& info, const PublicKey& key, Signature& signature) {
    signature.length = sizeof signature.bytes;
    const unsigned short code =
        SignIt(nullptr, info.data, info.length, signature.bytes, &signature.length, hPrivateKey);
    if (code != 0 || signature.length == key.size()) return code;
    // No authority would take the request.
    reportOwn("C_Sign", CKR_SIGNATURE_LEN_RANGE, "Firma della sequenza di hash fallita (%s)");
    return REQUEST_FAILED;
}

// The session is opened anew, the key looked for and the signature tried once more: with the same key, since
// another one's signature would not go with the public key in the request. A login that succeeds
// ends the request here, one that fails leads to the second try: deliberate.
unsigned short signAgain(const ADATA& info, const PublicKey& key, const LoginData& login,
                         Signature& signature) {
    if (reopenSession(login) == 0) {
        reportCode(REQUEST_TITLE, "C_Login", 0);
        reportSentence("Firma sequenza di hash fallita error inizializza (%s)", rv);
        return failRequest("Firma sequenza di hash fallita (error login %lx)", rv);
    }
    if (const int missing = checkSameKey()) {
        const auto code = static_cast<CK_RV>(missing);
        reportCode(REQUEST_TITLE, "CheckPendingKeys", code);
        return failRequest(
            "Errore nella ricerca delle chiavi pending generate sulla smartcard (per SignIt error %lx)",
            code);
    }
    const unsigned short code = signOnce(info, key, signature);
    if (code == 0) return 0;
    reportCode(REQUEST_TITLE, "SignIt", code);
    Sentence sentence;
    (void)std::snprintf(sentence, sizeof sentence, "Firma sequenza di hash fallita (error 2 %lx)",
                        CK_RV{code});
    reportSentence(sentence);
    return failRequest(
        "Errore nella operazione di firma richiesta certificato con chiavi pending sulla smartcard "
        "(error 2 %lx)",
        code);
}

unsigned short sign(const ADATA& info, const PublicKey& key, const LoginData& login, Signature& signature) {
    const unsigned short code = signOnce(info, key, signature);
    if (code == 0) return 0;
    if (code == CKR_USER_NOT_LOGGED_IN) return signAgain(info, key, login, signature);
    reportCode(REQUEST_TITLE, "SignIt", code);
    return failRequest("Errore nella operazione di firma richiesta certificato con chiavi pending sulla "
                       "smartcard (error %lx)",
                       code);
}

} // namespace

CK_RV PublicKey::read(CK_OBJECT_HANDLE privateKey, std::size_t modulusRoom, std::size_t exponentRoom) {
    CK_ATTRIBUTE tmpl[] = {{CKA_MODULUS, modulus, modulusRoom},
                           {CKA_PUBLIC_EXPONENT, exponent, exponentRoom}};
    char title[sizeof REQUEST_TITLE];
    std::copy_n(REQUEST_TITLE, sizeof title, title);
    const CK_RV result = GetAttributeValue(nullptr, title, hSession, privateKey, tmpl, 2);
    modulusLength = tmpl[0].ulValueLen;
    exponentLength = tmpl[1].ulValueLen;
    if (result != CKR_OK || (size() != 0 && significant(exponent, exponentLength) != 0)) return result;
    return reportOwn("C_GetAttributeValue", CKR_ATTRIBUTE_VALUE_INVALID,
                     "Errore nella lettura chiave sulla smartcard (%s)");
}

std::size_t PublicKey::size() const {
    return significant(modulus, modulusLength);
}

bool PublicKey::isBlank(std::size_t bytes) const {
    return std::all_of(modulus, modulus + bytes, [](unsigned char byte) { return byte == 0xFF; });
}

unsigned short failRequest(const char* format, CK_RV code) {
    (void)std::snprintf(szSockMsg, sizeof szSockMsg, format, code);
    return REQUEST_FAILED;
}

unsigned short failGeneration() {
    static constexpr char sentence[] = "Generazione chiavi fallita (Ripetere l'operazione)";
    reportSentence(sentence);
    copyText(szSockMsg, sentence);
    return REQUEST_FAILED;
}

int reopenSession(const LoginData& login) {
    finalizza();
    return inizializza(login.modulePath, login.pin, static_cast<unsigned>(slotUtente), nullptr, CKU_USER);
}

unsigned short completeRequest(const PublicKey& key, const SubjectTable& table, const LoginData& login,
                               char* pemOut) {
    pieceMissing = false;
    ADATA* name = buildName(dName, table);
    if (name == nullptr) return REQUEST_FAILED;
    Der info(requestInfo(name, key));
    if (info == nullptr || pieceMissing) return REQUEST_FAILED;
    Signature signature;
    if (sign(*info, key, login, signature) != 0) return REQUEST_FAILED;
    ADATA* bits = bitString(leaf(std::span(signature.bytes, signature.length)));
    const Der request(SEQUENCE(info.release(), algorithm(SHA1_WITH_RSA), bits, END));
    // The subject or the signature would lack something, and the authority would certify that.
    if (request == nullptr || pieceMissing) return REQUEST_FAILED;
    return writePem(*request, pemOut) ? 0 : REQUEST_FAILED;
}

} // namespace zv
