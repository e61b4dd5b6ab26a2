// The text of an issued certificate, in whatever form an authority sends it.
#include "fuzz/input.h"
#include "routines.h"

#include <openssl/evp.h>
#include <openssl/x509.h>

namespace {

constexpr int CODES[] = {0,
                         ZVC_ERR_TEXT_LENGTH,
                         ZVC_ERR_TEXT_FORM,
                         ZVC_ERR_BASE64,
                         ZVC_ERR_BAD_CERTIFICATE,
                         ZVC_ERR_NO_HOLDER,
                         ZVC_ERR_TWO_HOLDERS,
                         ZVC_ERR_ROOM};

struct Split {
    int code;
    std::unique_ptr<datiCert> record;
};

Split split(std::string text) {
    fuzz::Room copy(ZVC_CERT_TEXT_SIZE), reason(512);
    writeBuff(text.data(), copy.get());
    HOLDS(text.size() >= ZVC_CERT_TEXT_SIZE ? copy.text().size() < 64 : copy.text() == text);
    Split result{0, std::make_unique<datiCert>()};
    result.code = SplitCert(copy.get(), result.record.get(), reason.get(), 512);
    HOLDS(reason.text().empty() == (result.code == 0) && fuzz::is_utf8(reason.text()));
    // The mark that writeBuff leaves for a longer text may be a text too.
    HOLDS((result.code == ZVC_ERR_TEXT_LENGTH) ==
          (text.size() >= ZVC_CERT_TEXT_SIZE || text == "(oltre 8191 caratteri)"));
    const datiCert& out = *result.record;
    HOLDS(out.derLength <= sizeof out.der && (result.code == 0) == (out.derLength != 0));
    for (std::size_t i = out.derLength; i < sizeof out.der; ++i)
        HOLDS(out.der[i] == 0);
    HOLDS(std::find(std::begin(CODES), std::end(CODES), result.code) != std::end(CODES));
    return result;
}

// The certificate alone, in one line of base64 and as PEM, gives itself again.
void round_trip(const datiCert& certificate) {
    fuzz::Room name(ZVC_DESCRIPTION_SIZE);
    datiCert read = certificate;
    const int named = kvGetSubjectDN(read.der, read.derLength, name.get(), ZVC_DESCRIPTION_SIZE);
    HOLDS(named == 0 || named == ZVC_ERR_CUT || named == ZVC_ERR_BAD_CERTIFICATE);
    std::string base64(certificate.derLength / 3 * 4 + 8, '\0');
    const int length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(base64.data()), certificate.der,
                                       static_cast<int>(certificate.derLength));
    base64.resize(static_cast<std::size_t>(length));
    std::string pem = "-----BEGIN CERTIFICATE-----\n" + base64 + "\n-----END CERTIFICATE-----\n";
    for (const std::string& text : {base64, pem}) {
        if (text.size() >= ZVC_CERT_TEXT_SIZE) continue;
        const Split again = split(text);
        HOLDS(again.code == 0 && std::memcmp(again.record.get(), &certificate, sizeof certificate) == 0);
    }
    fuzz::Room der(8191);
    if (certificate.derLength > der.size()) return;
    HOLDS(CrtB64ToDer(pem.data(), der.get()) == static_cast<int>(certificate.derLength));
    HOLDS(std::memcmp(der.get(), certificate.der, certificate.derLength) == 0);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string text = fuzz::Input(data, size).text();
    const Split result = split(text);
    if (result.code == 0) round_trip(*result.record);
    fuzz::Room der(8191);
    const int length = CrtB64ToDer(text.data(), der.get());
    HOLDS(length >= 0 && length <= 8191);
    return 0;
}
