#include "request/pkcs10.h"

#include <algorithm>
#include <cstdio>

#include "card/session.h"
#include "diag/failure.h"
#include "diag/log.h"
#include "store/renewal_state.h"
#include "store/traced.h"
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

der::Bytes publicKeyInfo(const PublicKey& key) {
    const der::Bytes modulus = der::integer({key.modulus, key.modulusLength});
    const der::Bytes exponent = der::integer({key.exponent, key.exponentLength});
    const der::Bytes numbers = der::tlv(der::TAG_SEQUENCE, {modulus, exponent});
    return der::tlv(der::TAG_SEQUENCE, {der::algorithm(RSA_ENCRYPTION), der::bitString(numbers)});
}

der::Bytes requestInfo(const der::Bytes& name, const PublicKey& key) {
    static constexpr unsigned char VERSION[] = {0x00};
    return der::tlv(der::TAG_SEQUENCE,
                    {der::integer(VERSION), name, publicKeyInfo(key), der::tlv(der::TAG_CONTEXT_0, {})});
}

std::size_t significant(const unsigned char* bytes, unsigned long length) {
    const auto* first = std::find_if(bytes, bytes + length, [](unsigned char byte) { return byte != 0; });
    return static_cast<std::size_t>(bytes + length - first);
}

unsigned short signOnce(der::Bytes& info, const PublicKey& key, Signature& signature) {
    signature.length = sizeof signature.bytes;
    const unsigned short code =
        SignIt(nullptr, info.data(), info.size(), signature.bytes, &signature.length, hPrivateKey);
    if (code != 0 || signature.length == key.size()) return code;
    // No authority would take the request.
    rv = CKR_SIGNATURE_LEN_RANGE;
    return Failure(REQUEST_TITLE)
        .step("C_Sign", rv)
        .sentence("Firma della sequenza di hash fallita (%s)", rv);
}

// The session is opened anew, the key looked for and the signature tried once more: with the same key, since
// another one's signature would not go with the public key in the request. A login that succeeds
// ends the request here, one that fails leads to the second try: deliberate.
unsigned short signAgain(der::Bytes& info, const PublicKey& key, const LoginData& login,
                         Signature& signature) {
    if (reopenSession(login) == 0) {
        return Failure(REQUEST_TITLE)
            .step("C_Login", CKR_OK)
            .sentence("Firma sequenza di hash fallita error inizializza (%s)", rv)
            .user("Firma sequenza di hash fallita (error login %lx)", rv);
    }
    if (const int missing = checkSameKey()) {
        const auto code = static_cast<CK_RV>(missing);
        return Failure(REQUEST_TITLE)
            .step("CheckPendingKeys", code)
            .user("Errore nella ricerca delle chiavi pending generate sulla smartcard (per SignIt error %lx)",
                  code);
    }
    const CK_RV code = signOnce(info, key, signature);
    if (code == 0) return 0;
    Sentence sentence;
    (void)std::snprintf(sentence, sizeof sentence, "Firma sequenza di hash fallita (error 2 %lx)", code);
    return Failure(REQUEST_TITLE)
        .step("SignIt", code)
        .sentence(sentence)
        .user("Errore nella operazione di firma richiesta certificato con chiavi pending sulla smartcard "
              "(error 2 %lx)",
              code);
}

unsigned short sign(der::Bytes& info, const PublicKey& key, const LoginData& login, Signature& signature) {
    const CK_RV code = signOnce(info, key, signature);
    if (code == 0) return 0;
    if (code == CKR_USER_NOT_LOGGED_IN) return signAgain(info, key, login, signature);
    return Failure(REQUEST_TITLE)
        .step("SignIt", code)
        .user("Errore nella operazione di firma richiesta certificato con chiavi pending sulla smartcard "
              "(error %lx)",
              code);
}

} // namespace

CK_RV PublicKey::read(CK_OBJECT_HANDLE privateKey, std::size_t modulusRoom, std::size_t exponentRoom) {
    CK_ATTRIBUTE tmpl[] = {{CKA_MODULUS, modulus, modulusRoom},
                           {CKA_PUBLIC_EXPONENT, exponent, exponentRoom}};
    const CK_RV result = readTraced(REQUEST_TITLE, hSession, privateKey, tmpl);
    modulusLength = tmpl[0].ulValueLen;
    exponentLength = tmpl[1].ulValueLen;
    if (result != CKR_OK || (size() != 0 && significant(exponent, exponentLength) != 0)) return result;
    rv = CKR_ATTRIBUTE_VALUE_INVALID;
    reportFailure(REQUEST_TITLE, "C_GetAttributeValue", rv, READ_ERROR);
    return rv;
}

std::size_t PublicKey::size() const {
    return significant(modulus, modulusLength);
}

bool PublicKey::isBlank(std::size_t bytes) const {
    return std::all_of(modulus, modulus + bytes, [](unsigned char byte) { return byte == 0xFF; });
}

int reopenSession(const LoginData& login) {
    finalizza();
    return inizializza(login.modulePath, login.pin, static_cast<unsigned>(slotUtente), nullptr, CKU_USER);
}

unsigned short completeRequest(const PublicKey& key, const SubjectTable& table, const LoginData& login,
                               char* pemOut) {
    const der::Bytes name = buildName(dName, table);
    if (name.empty()) return ZV_FAILED;
    der::Bytes info = requestInfo(name, key);
    Signature signature;
    if (sign(info, key, login, signature) != 0) return ZV_FAILED;
    const der::Bytes bits = der::bitString({signature.bytes, signature.length});
    const der::Bytes request = der::tlv(der::TAG_SEQUENCE, {info, der::algorithm(SHA1_WITH_RSA), bits});
    return writePem(request, pemOut) ? 0 : ZV_FAILED;
}

} // namespace zv
