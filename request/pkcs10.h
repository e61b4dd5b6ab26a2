#ifndef ZV_REQUEST_PKCS10_H
#define ZV_REQUEST_PKCS10_H

#include <cstddef>

#include "pkcs11.h"
#include "request/subject.h"

/** What both kinds of request share: reading the public key, building, signing and writing the request (RFC
 * 2986). */
namespace zv {

inline constexpr char REQUEST_TITLE[] = " .... RequestCertificate FUN         .... ";
/** Bytes of the buffer that receives the PEM text. */
constexpr std::size_t PEM_SIZE = 8192;

/** Modulus and exponent as the card gives them, most significant byte first. */
struct PublicKey {
    static constexpr std::size_t MODULUS_SIZE = 2048, EXPONENT_SIZE = 32;
    unsigned char modulus[MODULUS_SIZE] = {};
    unsigned char exponent[EXPONENT_SIZE] = {};
    unsigned long modulusLength = 0, exponentLength = 0;

    /** Reads both from a private key, each with the given room. Returns the PKCS#11 result, logged when it is
     * a failure; a number that is none is one. */
    CK_RV read(CK_OBJECT_HANDLE privateKey, std::size_t modulusRoom, std::size_t exponentRoom);
    /** Bytes of the modulus, leading zeros not counted: those of a signature. */
    [[nodiscard]] std::size_t size() const;
    /** True when the first bytes are all 0xFF, as a failed generation leaves them. */
    [[nodiscard]] bool isBlank(std::size_t bytes) const;
};

inline constexpr char KEY_READ_ERROR[] =
    "Errore nella lettura del modulo/esponente delle chiavi generate sulla smartcard (error %lx)";

inline constexpr char REPEAT_GENERATION[] = "Generazione chiavi fallita (Ripetere l'operazione)";

/** Who to log in again when the card says that nobody is. */
struct LoginData {
    char* modulePath;
    char* pin;
};

/** Closes everything and opens the session anew; the result of inizializza. */
int reopenSession(const LoginData& login);

/** Builds the request for a key, has the card sign it and writes it as PEM. Returns 0 or ZV_FAILED. */
[[nodiscard]] unsigned short completeRequest(const PublicKey& key, const SubjectTable& table,
                                             const LoginData& login, char* pemOut);

/** Writes DER as PEM with one base64 line. False, nothing written, when it does not fit PEM_SIZE with its
 * lines broken. */
[[nodiscard]] bool writePem(der::View request, char* pemOut);

} // namespace zv

#endif
