#include "install/certificate.h"

#include "card/session.h"
#include "diag/failure.h"
#include "diag/report.h"
#include "install/certificate_object.h"
#include "install/label.h"
#include "store/marker.h"
#include "store/objects.h"
#include "store/renewal_state.h"
#include "zvRenew.h"

namespace {

constexpr char USER_TITLE[] = " .... InstallUserCertificate FUN     .... ";

// The pair gets its pending text back. The sentence's "%s" is the message of the code.
int undone(const char* label, char* module_path, const char* sentence = "", CK_RV code = CKR_OK) {
    if (zv::may_label_back(module_path)) zv::change_labels(label, zv::pendingLabel);
    return zv::Failure(USER_TITLE).sentence(sentence, code);
}

// One pass without going back: a byte that differs starts the count anew and is not tried as a start itself.
bool contains(std::span<const unsigned char> der, std::span<const unsigned char> modulus) {
    std::size_t matched = 0;
    for (std::size_t i = 0; i < der.size() && matched < modulus.size(); ++i)
        matched = der[i] == modulus[matched] ? matched + 1 : 0;
    return matched == modulus.size();
}

enum class Match { yes, no, unreadable };

Match match_pending_key(std::span<const unsigned char> der) {
    unsigned char modulus[256];
    const zv::Read read = zv::read_attribute(zv::hSession, zv::hPrivateKey, CKA_MODULUS,
                                             std::as_writable_bytes(std::span(modulus)), zv::TooLong::fails);
    if (read.code == CKR_OK)
        return contains(der, std::span(modulus).first(read.length)) ? Match::yes : Match::no;
    zv::report_code(USER_TITLE, "C_GetAttributeValue", read.code);
    // Some modules do not read keys at all: the certificate is then taken as it is.
    return read.code == CKR_FUNCTION_FAILED ? Match::yes : Match::unreadable;
}

} // namespace

int zv::install_user_certificate(std::span<unsigned char> der, const char* label, char* module_path) {
    trace(USER_TITLE, "I N I Z I O");
    trace_session(USER_TITLE, "C_GetAttributeValue", hSession);
    if (der.data() == nullptr) return ZV_FAILED;
    switch (match_pending_key(der)) {
    case Match::yes:
        break;
    case Match::unreadable:
        return undone(label, module_path);
    case Match::no:
        zv::trace(USER_TITLE, "C_CreateObject",
                  "Certificato non corrispondente alle chiavi presenti sulla smartcard");
        return undone(label, module_path,
                      "Il certificato non corrisponde alla coppia di chiavi presente sulla smartcard");
    }
    if (fill_template(USER_TITLE, der, label, Serial::trimmed) != 0) return undone(label, module_path);
    if (create_certificate(USER_TITLE) != CKR_OK)
        return undone(label, module_path, "Certificato non memorizzato correttamente sulla smartcard (%s)",
                      rv);
    trace(USER_TITLE, "F I N E");
    // A marker is on a services card only, but is looked for on every card.
    delete_data(hSession, ZV_PENDING_MARKER);
    return 0;
}

int zv::install_authority_certificate(std::span<unsigned char> der, const char* label) {
    static constexpr char title[] = " .... InstallCACertificate FUN       .... ";
    trace(title, "I N I Z I O");
    if (der.data() == nullptr) return ZV_FAILED;
    if (fill_template(title, der, label, Serial::as_given) != 0)
        return Failure(title).sentence("Problemi in Conversione ISSUER e SUBJECT a DER");
    if (create_certificate(title) != CKR_OK)
        return Failure(title).sentence("Certificato CA non memorizzato correttamente sulla smartcard (%s)",
                                       rv);
    trace(title, "F I N E");
    return 0;
}
