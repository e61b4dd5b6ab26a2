#include "request/sign.h"

#include "card/session.h"
#include "diag/failure.h"
#include "diag/report.h"
#include "request/der.h"
#include "zvCrypt.h"

#include <array>
#include <cstdio>

namespace zv {

namespace {

constexpr char SIGN_TITLE[] = " .... SignIt FUN                     .... ";
constexpr unsigned char OID_SHA1[] = {0x06, 0x05, 0x2B, 0x0E, 0x03, 0x02, 0x1A};

using Digest = std::array<unsigned char, 20>;

der::Bytes digest_info(const Digest& digest) {
    return der::tlv(der::TAG_SEQUENCE, {der::algorithm(OID_SHA1), der::tlv(der::TAG_OCTET_STRING, {digest})});
}

void trace_digest(const Digest& digest) {
    char text[2 * sizeof(Digest) + 1];
    for (std::size_t i = 0; i < digest.size(); ++i)
        (void)std::snprintf(text + 2 * i, 3, "%02X", unsigned{digest[i]});
    trace(SIGN_TITLE, "C_Sign", text);
}

unsigned short sign_digest(const Digest& digest, CK_OBJECT_HANDLE private_key, unsigned char* signature,
                           unsigned long* length) {
    der::Bytes info = digest_info(digest);
    trace_session(SIGN_TITLE, "C_SignInit", hSession);
    CK_MECHANISM mechanism = {CKM_RSA_PKCS, nullptr, 0};
    rv = call<&Functions::C_SignInit>(hSession, &mechanism, private_key);
    if (rv != CKR_OK)
        return Failure(SIGN_TITLE)
            .step("C_SignInit", rv)
            .sentence("Inizializzazione firma della sequenza di hash fallita (%s)", rv);
    trace_digest(digest);
    trace(SIGN_TITLE, "C_Sign");
    const unsigned long room = *length;
    rv = call<&Functions::C_Sign>(hSession, info.data(), CK_ULONG{info.size()}, signature, length);
    if (rv == CKR_OK && *length > room) rv = CKR_BUFFER_TOO_SMALL;
    if (rv == CKR_OK) {
        trace(SIGN_TITLE, "F I N E");
        return 0;
    }
    Failure(SIGN_TITLE).step("C_Sign", rv);
    // The caller logs in again and says what came of it.
    if (rv == CKR_USER_NOT_LOGGED_IN) return static_cast<unsigned short>(rv);
    return Failure(SIGN_TITLE).sentence("Firma della sequenza di hash fallita (%s)", rv);
}

} // namespace

unsigned short sign_on_card(std::span<unsigned char> data, CK_OBJECT_HANDLE private_key,
                            unsigned char* signature, unsigned long* length) {
    trace_session(SIGN_TITLE, "I N I Z I O", hSession);
    trace(SIGN_TITLE, "fndgstSha1");
    Digest digest{};
    Sha1Digest(static_cast<int>(data.size()), data.data(), digest.data());
    return sign_digest(digest, private_key, signature, length);
}

} // namespace zv
