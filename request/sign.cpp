// SignIt: SHA-1 here, the RSA operation on the card.
#include "card/session.h"
#include "diag/failure.h"
#include "diag/log.h"
#include "request/der.h"
#include "routines.h"
#include "util/guarded.h"

#include <array>
#include <cstdio>

namespace {

constexpr char SIGN_TITLE[] = " .... SignIt FUN                     .... ";
constexpr unsigned char OID_SHA1[] = {0x06, 0x05, 0x2B, 0x0E, 0x03, 0x02, 0x1A};

using Digest = std::array<unsigned char, 20>;

zv::der::Bytes digest_info(const Digest& digest) {
    namespace der = zv::der;
    return der::tlv(der::TAG_SEQUENCE, {der::algorithm(OID_SHA1), der::tlv(der::TAG_OCTET_STRING, {digest})});
}

void trace_digest(const Digest& digest) {
    char text[2 * sizeof(Digest) + 1];
    for (std::size_t i = 0; i < digest.size(); ++i)
        (void)std::snprintf(text + 2 * i, 3, "%02X", unsigned{digest[i]});
    zv::trace(SIGN_TITLE, "C_Sign", text);
}

unsigned short sign_info(zv::der::Bytes info, unsigned char* signature, unsigned long* signature_length,
                         CK_OBJECT_HANDLE private_key, const Digest& digest) {
    zv::trace_session(SIGN_TITLE, "C_SignInit", zv::hSession);
    CK_MECHANISM mechanism = {CKM_RSA_PKCS, nullptr, 0};
    zv::rv = zv::call<&zv::Functions::C_SignInit>(zv::hSession, &mechanism, private_key);
    if (zv::rv != CKR_OK)
        return zv::Failure(SIGN_TITLE)
            .step("C_SignInit", zv::rv)
            .sentence("Inizializzazione firma della sequenza di hash fallita (%s)", zv::rv);
    trace_digest(digest);
    zv::trace(SIGN_TITLE, "C_Sign");
    const unsigned long room = *signature_length;
    zv::rv = zv::call<&zv::Functions::C_Sign>(zv::hSession, info.data(), CK_ULONG{info.size()}, signature,
                                              signature_length);
    if (zv::rv == CKR_OK && *signature_length > room) zv::rv = CKR_BUFFER_TOO_SMALL;
    if (zv::rv == CKR_OK) {
        zv::trace(SIGN_TITLE, "F I N E");
        return 0;
    }
    zv::Failure(SIGN_TITLE).step("C_Sign", zv::rv);
    // The caller logs in again and says what came of it.
    if (zv::rv == CKR_USER_NOT_LOGGED_IN) return static_cast<unsigned short>(zv::rv);
    return zv::Failure(SIGN_TITLE).sentence("Firma della sequenza di hash fallita (%s)", zv::rv);
}

} // namespace

unsigned short SignIt(void*, unsigned char* data, unsigned long data_length, unsigned char* signature,
                      unsigned long* signature_length, unsigned long private_key) {
    zv::trace_session(SIGN_TITLE, "I N I Z I O", zv::hSession);
    zv::trace(SIGN_TITLE, "fndgstSha1");
    Digest digest{};
    Sha1Digest(static_cast<int>(data_length), data, digest.data());
    return zv::guarded<unsigned short>(ZV_FAILED, [&] {
        return sign_info(digest_info(digest), signature, signature_length, private_key, digest);
    });
}
