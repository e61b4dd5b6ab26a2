#include "request/pkcs10.h"

#include "card/full_opener.h"
#include "card/session.h"
#include "diag/failure.h"
#include "diag/report.h"
#include "request/sign.h"
#include "store/pending_pair.h"
#include "store/renewal_state.h"
#include "store/traced.h"
#include "util/text.h"
#include "zvRenew.h"

#include <algorithm>
#include <cstdio>

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

der::Bytes public_key_info(const PublicKey& key) {
    const der::Bytes modulus = der::integer({key.modulus, key.modulus_length});
    const der::Bytes exponent = der::integer({key.exponent, key.exponent_length});
    const der::Bytes numbers = der::tlv(der::TAG_SEQUENCE, {modulus, exponent});
    return der::tlv(der::TAG_SEQUENCE, {der::algorithm(RSA_ENCRYPTION), der::bit_string(numbers)});
}

der::Bytes request_info(const der::Bytes& name, const PublicKey& key) {
    static constexpr unsigned char version[] = {0x00};
    return der::tlv(der::TAG_SEQUENCE,
                    {der::integer(version), name, public_key_info(key), der::tlv(der::TAG_CONTEXT_0, {})});
}

std::size_t significant(const unsigned char* bytes, unsigned long length) {
    const auto* first = std::find_if(bytes, bytes + length, [](unsigned char byte) { return byte != 0; });
    return static_cast<std::size_t>(bytes + length - first);
}

unsigned short sign_once(der::Bytes& info, const PublicKey& key, Signature& signature) {
    signature.length = sizeof signature.bytes;
    const unsigned short code = sign_on_card(info, hPrivateKey, signature.bytes, &signature.length);
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
unsigned short sign_again(der::Bytes& info, const PublicKey& key, const LoginData& login,
                          Signature& signature) {
    if (reopen_session(login) == 0) {
        return Failure(REQUEST_TITLE)
            .step("C_Login", CKR_OK)
            .sentence("Firma sequenza di hash fallita error inizializza (%s)", rv)
            .user("Firma sequenza di hash fallita (error login %lx)", rv);
    }
    if (const PairSearch again = find_pair_again(key.id); again != PairSearch::found) {
        const auto code = static_cast<CK_RV>(again);
        return Failure(REQUEST_TITLE)
            .step("CheckPendingKeys", code)
            .user("Errore nella ricerca delle chiavi pending generate sulla smartcard (per SignIt error %lx)",
                  code);
    }
    const CK_RV code = sign_once(info, key, signature);
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
    const CK_RV code = sign_once(info, key, signature);
    if (code == 0) return 0;
    if (code == CKR_USER_NOT_LOGGED_IN) return sign_again(info, key, login, signature);
    return Failure(REQUEST_TITLE)
        .step("SignIt", code)
        .user("Errore nella operazione di firma richiesta certificato con chiavi pending sulla smartcard "
              "(error %lx)",
              code);
}

} // namespace

CK_RV PublicKey::read(CK_OBJECT_HANDLE private_key, std::size_t modulus_room, std::size_t exponent_room) {
    CK_ATTRIBUTE tmpl[] = {{CKA_MODULUS, modulus, modulus_room},
                           {CKA_PUBLIC_EXPONENT, exponent, exponent_room}};
    const CK_RV result = read_traced(REQUEST_TITLE, hSession, private_key, tmpl);
    modulus_length = tmpl[0].ulValueLen;
    exponent_length = tmpl[1].ulValueLen;
    if (result != CKR_OK || (size() != 0 && significant(exponent, exponent_length) != 0)) return result;
    rv = CKR_ATTRIBUTE_VALUE_INVALID;
    report_failure(REQUEST_TITLE, "C_GetAttributeValue", rv, READ_ERROR);
    return rv;
}

std::size_t PublicKey::size() const {
    return significant(modulus, modulus_length);
}

bool PublicKey::is_blank(std::size_t bytes) const {
    return std::all_of(modulus, modulus + bytes, [](unsigned char byte) { return byte == 0xFF; });
}

int reopen_session(const LoginData& login) {
    close_card();
    return static_cast<int>(open_slot_at(static_cast<unsigned>(slotUtente), login));
}

unsigned short complete_request(const PublicKey& key, const SubjectTable& table, const LoginData& login,
                                char* pem_out) {
    const der::Bytes name = build_name(dName, table);
    if (name.empty()) return ZV_FAILED;
    der::Bytes info = request_info(name, key);
    Signature signature;
    if (sign(info, key, login, signature) != 0) return ZV_FAILED;
    const der::Bytes bits = der::bit_string({signature.bytes, signature.length});
    const der::Bytes request = der::tlv(der::TAG_SEQUENCE, {info, der::algorithm(SHA1_WITH_RSA), bits});
    return write_pem(request, pem_out) ? 0 : ZV_FAILED;
}

} // namespace zv
