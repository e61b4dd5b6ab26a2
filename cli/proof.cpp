#include "cli/proof.h"

#include "cli/note.h"
#include "cli/outcome.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>
#include <memory>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rand.h>

namespace cli {
namespace {

using Challenge = std::array<unsigned char, 64>;

// DigestInfo of SHA-256 (RFC 8017, 9.2), without the digest at its end.
constexpr std::array<unsigned char, 19> sha256_info{0x30, 0x31, 0x30, 0x0D, 0x06, 0x09, 0x60,
                                                    0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02,
                                                    0x01, 0x05, 0x00, 0x04, 0x20};

constexpr std::size_t sha256_size = 32;

Bytes digest_info(const Challenge& message) {
    Bytes info(sha256_info.size() + sha256_size);
    std::copy(sha256_info.begin(), sha256_info.end(), info.begin());
    unsigned char* digest = info.data() + sha256_info.size();
    if (EVP_Digest(message.data(), message.size(), digest, nullptr, EVP_sha256(), nullptr) != 1)
        throw Stop(Exit::failed, "A digest could not be made.");
    return info;
}

bool verifies(X509& certificate, const Challenge& message, const Bytes& signature) {
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    const bool right = EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr,
                                            X509_get0_pubkey(&certificate)) == 1 &&
                       EVP_DigestVerify(context.get(), signature.data(), signature.size(), message.data(),
                                        message.size()) == 1;
    ERR_clear_error();
    return right;
}

std::string prove(const Session& session, const std::string& id, const Bytes& expected_certificate) {
    const CardView view = view_in(session);
    const CardObject* stored = view.certificate(id, expected_certificate);
    const CardObject* key = view.find(CKO_PRIVATE_KEY, id);
    if (view.certificates(id).empty()) return fmt::format("there is no certificate {} on the card.", id);
    if (key == nullptr) return fmt::format("there is no private key {} on the card.", id);
    if (stored == nullptr) return fmt::format("the certificate {} on the card is another one.", id);
    const Certificate certificate = certificate_from(stored->value);
    if (certificate && key->wants_pin && key->value == modulus_of(*certificate)) {
        note(fmt::format(
            "The key {} wants the PIN before each signature: it was compared with its certificate, not "
            "tried.",
            id));
        return {};
    }
    Challenge message{};
    if (RAND_bytes(message.data(), static_cast<int>(message.size())) != 1)
        return "no random text could be made.";
    const Bytes signature = session.sign(key->handle, digest_info(message));
    if (!certificate || !verifies(*certificate, message, signature))
        return fmt::format("a signature of the key {} does not verify with its certificate.", id);
    return {};
}

} // namespace

std::string prove_pair(OpenedCard& card, const std::string& id, const Bytes& expected_certificate) {
    try {
        std::string reason;
        with_session(card,
                     [&](const Session& session) { reason = prove(session, id, expected_certificate); });
        return reason;
    } catch (const Stop& stop) {
        return fmt::format("the new key could not be tried. {}", stop.sentence);
    }
}

} // namespace cli
