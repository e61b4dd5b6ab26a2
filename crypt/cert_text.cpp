#include "base64.h"
#include "bundle.h"
#include "certificate.h"
#include "certificate_parts.h"
#include "failure.h"
#include "pem.h"
#include "text.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace zvcrypt {
namespace {

// Stands in the buffer for a text that it cannot hold: no part of such a text may pass for the whole.
constexpr std::string_view tooLongMark = "(oltre 8191 caratteri)";

std::string_view boundedText(const char* text) {
    const std::string_view bounded(text, ::strnlen(text, ZVC_CERT_TEXT_SIZE));
    if (bounded.size() == ZVC_CERT_TEXT_SIZE || bounded == tooLongMark)
        throw Failure(ZVC_ERR_TEXT_LENGTH, "Il testo del certificato supera gli 8191 caratteri");
    return bounded;
}

using Reader = void (*)(const Bytes& der, std::vector<Certificate>& certificates);

struct Label {
    std::string_view text;
    Reader read;
};

constexpr Label labels[] = {
    {"CERTIFICATE", addCertificate},
    {"X509 CERTIFICATE", addCertificate},
    {"X.509 CERTIFICATE", addCertificate},
    {"TRUSTED CERTIFICATE", addTrustedCertificate},
    {"PKCS7", addBundle},
    {"CMS", addBundle},
    {"CERTIFICATE CHAIN", addBundle},
};

Reader readerOf(const std::string& label) {
    const auto known = std::find_if(std::begin(labels), std::end(labels),
                                    [&](const Label& one) { return one.text == label; });
    if (known == std::end(labels))
        throw Failure(ZVC_ERR_TEXT_FORM, "Il testo contiene un blocco che non è un certificato: " + label);
    return known->read;
}

std::vector<Certificate> certificatesIn(std::string_view text) {
    const auto blocks = pemBlocks(text);
    std::vector<Certificate> certificates;
    if (blocks.empty()) addCertificateOrBundle(decodeBase64(text), certificates);
    for (const auto& block : blocks)
        readerOf(block.label)(pemContent(block), certificates);
    return certificates;
}

// A renewal deletes the old certificate before it takes this one's names apart for the card.
void requireRoomOnCard(const Bytes& der) {
    const auto parts = takeApart({der.data(), der.size()});
    if (std::max(parts.subject.size(), parts.issuer.size()) > ZVC_CARD_NAME_SIZE)
        throw Failure(ZVC_ERR_ROOM, "Il nome del titolare o dell'emittente supera i 512 byte");
    if (parts.serial.size() > ZVC_CARD_SERIAL_SIZE)
        throw Failure(ZVC_ERR_ROOM, "Il numero di serie del certificato supera i 256 byte");
}

void splitCertificate(const char* text, datiCert& out) {
    static constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    auto bounded = boundedText(text);
    if (bounded.starts_with(byteOrderMark)) bounded.remove_prefix(byteOrderMark.size());
    if (trimmed(bounded).empty()) throw Failure(ZVC_ERR_TEXT_FORM, "Il testo del certificato è vuoto");
    const auto certificates = certificatesIn(bounded);
    const Bytes& der = holderCertificate(certificates).der;
    requireRoomOnCard(der);
    if (der.size() > sizeof out.der) throw Failure(ZVC_ERR_ROOM, "Il certificato supera gli 8192 byte");
    std::copy(der.begin(), der.end(), out.der);
    out.derLength = der.size();
}

} // namespace
} // namespace zvcrypt

void writeBuff(char* in, char* out) {
    if (out == nullptr) return;
    const std::string_view text = in == nullptr ? std::string_view() : std::string_view(in);
    (void)zvcrypt::copyText(text.size() < ZVC_CERT_TEXT_SIZE ? text : zvcrypt::tooLongMark,
                            {out, ZVC_CERT_TEXT_SIZE});
}

int SplitCert(char* text, datiCert* out, char* errText, int errSize) {
    const int code = zvcrypt::runOperation([&] {
        zvcrypt::requireArguments({text, out});
        *out = {};
        zvcrypt::splitCertificate(text, *out);
    });
    (void)kvLastError(errText, errSize);
    return code;
}
