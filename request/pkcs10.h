#pragma once

#include "card/full_opener.h"
#include "pkcs11.h"
#include "request/subject.h"

#include <cstddef>

// What both kinds of request share: reading the public key, building, signing and writing the request (RFC
// 2986).
namespace zv {

inline constexpr char REQUEST_TITLE[] = " .... RequestCertificate FUN         .... ";
// Bytes of the buffer that receives the PEM text.
constexpr std::size_t PEM_SIZE = 8192;

// Modulus and exponent as the card gives them, most significant byte first.
struct PublicKey {
    static constexpr std::size_t MODULUS_SIZE = 2048, EXPONENT_SIZE = 32;
    unsigned char modulus[MODULUS_SIZE] = {};
    unsigned char exponent[EXPONENT_SIZE] = {};
    unsigned long modulus_length = 0, exponent_length = 0;
    char id[256] = ""; // identifier of its private key: the one that was looked for, or made

    // Reads both from a private key, each with the given room. Returns the PKCS#11 result, logged when it is
    // a failure; a number that is none is one.
    CK_RV read(CK_OBJECT_HANDLE private_key, std::size_t modulus_room, std::size_t exponent_room);
    // Bytes of the modulus, leading zeros not counted: those of a signature.
    [[nodiscard]] std::size_t size() const;
    // True when the first bytes are all 0xFF, as a failed generation leaves them.
    [[nodiscard]] bool is_blank(std::size_t bytes) const;
};

inline constexpr char KEY_READ_ERROR[] =
    "Errore nella lettura del modulo/esponente delle chiavi generate sulla smartcard (error %lx)";

inline constexpr char REPEAT_GENERATION[] = "Generazione chiavi fallita (Ripetere l'operazione)";

// Closes everything and opens the session anew; the value of its Opening.
int reopen_session(const LoginData& login);

// Builds the request for a key, has the card sign it and writes it as PEM. Returns 0 or ZV_FAILED.
[[nodiscard]] unsigned short complete_request(const PublicKey& key, const SubjectTable& table,
                                              const LoginData& login, char* pem_out);

// Writes DER as PEM with one base64 line. False, nothing written, when it does not fit PEM_SIZE with its
// lines broken.
[[nodiscard]] bool write_pem(der::View request, char* pem_out);

} // namespace zv
