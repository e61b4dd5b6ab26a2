#include "crypt/base64.h"
#include "crypt/bundle.h"
#include "crypt/certificate.h"
#include "crypt/certificate_parts.h"
#include "crypt/failure.h"
#include "crypt/pem.h"
#include "crypt/text.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace zvcrypt {
namespace {

// Stands in the buffer for a text that it cannot hold: no part of such a text may pass for the whole.
constexpr std::string_view TOO_LONG_MARK = "(oltre 8191 caratteri)";
static_assert(ZVC_CERT_TEXT_MAX == 8191 && ZVC_CARD_NAME_SIZE == 512 && ZVC_CARD_SERIAL_SIZE == 256,
              "the texts here say these limits");

std::string_view bounded_text(const char* text) {
    const std::string_view bounded(text, ::strnlen(text, ZVC_CERT_TEXT_SIZE));
    if (bounded.size() == ZVC_CERT_TEXT_SIZE || bounded == TOO_LONG_MARK)
        throw Failure(ZVC_ERR_TEXT_LENGTH, "Il testo del certificato supera gli 8191 caratteri");
    return bounded;
}

using Reader = void (*)(const Bytes& der, std::vector<Certificate>& certificates);

struct Label {
    std::string_view text;
    Reader read;
};

constexpr Label LABELS[] = {
    {"CERTIFICATE", add_certificate},
    {"X509 CERTIFICATE", add_certificate},
    {"X.509 CERTIFICATE", add_certificate},
    {"TRUSTED CERTIFICATE", add_trusted_certificate},
    {"PKCS7", add_bundle},
    {"CMS", add_bundle},
    {"CERTIFICATE CHAIN", add_bundle},
};

Reader reader_of(const std::string& label) {
    const auto known = std::find_if(std::begin(LABELS), std::end(LABELS),
                                    [&](const Label& one) { return one.text == label; });
    if (known == std::end(LABELS))
        throw Failure(ZVC_ERR_TEXT_FORM, "Il testo contiene un blocco che non è un certificato: " + label);
    return known->read;
}

std::vector<Certificate> certificates_in(std::string_view text) {
    const auto blocks = pem_blocks(text);
    std::vector<Certificate> certificates;
    if (blocks.empty()) add_certificate_or_bundle(decode_base64(text), certificates);
    for (const auto& block : blocks)
        reader_of(block.label)(pem_content(block), certificates);
    return certificates;
}

// A renewal deletes the old certificate before it takes this one's names apart for the card.
void require_room_on_card(const Bytes& der) {
    const auto parts = take_apart({der.data(), der.size()});
    if (std::max(parts.subject.size(), parts.issuer.size()) > ZVC_CARD_NAME_SIZE)
        throw Failure(ZVC_ERR_ROOM, "Il nome del titolare o dell'emittente supera i 512 byte");
    if (parts.serial.size() > ZVC_CARD_SERIAL_SIZE)
        throw Failure(ZVC_ERR_ROOM, "Il numero di serie del certificato supera i 256 byte");
}

void split_certificate(const char* text, datiCert& out) {
    static constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
    auto bounded = bounded_text(text);
    if (bounded.starts_with(byte_order_mark)) bounded.remove_prefix(byte_order_mark.size());
    if (trimmed(bounded).empty()) throw Failure(ZVC_ERR_TEXT_FORM, "Il testo del certificato è vuoto");
    const auto certificates = certificates_in(bounded);
    const Bytes& der = holder_certificate(certificates).der;
    require_room_on_card(der);
    if (der.size() > sizeof out.der) throw Failure(ZVC_ERR_ROOM, "Il certificato supera gli 8192 byte");
    std::copy(der.begin(), der.end(), out.der);
    out.derLength = der.size();
}

} // namespace
} // namespace zvcrypt

void writeBuff(char* in, char* out) {
    if (out == nullptr) return;
    const std::string_view text = in == nullptr ? std::string_view() : std::string_view(in);
    (void)zvcrypt::copy_text(text.size() < ZVC_CERT_TEXT_SIZE ? text : zvcrypt::TOO_LONG_MARK,
                             {out, ZVC_CERT_TEXT_SIZE});
}

int SplitCert(char* text, datiCert* out, char* err_text, int err_size) {
    const int code = zvcrypt::run_operation([&] {
        zvcrypt::require_arguments({text, out});
        *out = {};
        zvcrypt::split_certificate(text, *out);
    });
    (void)kvLastError(err_text, err_size);
    return code;
}
