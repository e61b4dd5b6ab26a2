#include "host/proof.h"

#include "host/advice.h"
#include "host/error.h"
#include "ossl/owners.h"

#include <openssl/err.h>
#include <openssl/rand.h>

#include <algorithm>
#include <array>

namespace zvhost {
namespace {

using Challenge = std::array<unsigned char, 64>;

// DigestInfo of SHA-256 (RFC 8017, 9.2), without the digest at its end.
constexpr std::array<unsigned char, 19> SHA256_INFO{0x30, 0x31, 0x30, 0x0D, 0x06, 0x09, 0x60,
                                                    0x86, 0x48, 0x01, 0x65, 0x03, 0x04, 0x02,
                                                    0x01, 0x05, 0x00, 0x04, 0x20};

constexpr std::size_t SHA256_SIZE = 32;

Bytes digest_info(const Challenge& message) {
    Bytes info(SHA256_INFO.size() + SHA256_SIZE);
    std::copy(SHA256_INFO.begin(), SHA256_INFO.end(), info.begin());
    unsigned char* digest = info.data() + SHA256_INFO.size();
    if (EVP_Digest(message.data(), message.size(), digest, nullptr, EVP_sha256(), nullptr) != 1)
        throw Error(Exit::failed, {"no-digest", {}});
    return info;
}

bool verifies(X509& certificate, const Challenge& message, const Bytes& signature) {
    const ossl::DigestContext context(EVP_MD_CTX_new());
    const bool right = EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr,
                                            X509_get0_pubkey(&certificate)) == 1 &&
                       EVP_DigestVerify(context.get(), signature.data(), signature.size(), message.data(),
                                        message.size()) == 1;
    ERR_clear_error();
    return right;
}

Proof failed(Sentence reason) {
    return {std::move(reason), false, std::nullopt, {}};
}

// A private key and the certificate that it is to fit.
struct Tried {
    const CardObject& key;
    X509& certificate;
};

Proof compare(const Tried& tried, KeyPin key_pin) {
    const std::string& id = tried.key.id;
    if (!tried.key.value.empty() && tried.key.value == modulus_of(tried.certificate))
        return {{}, false, {}, {}};
    Proof proof = failed({"key-neither-tried-nor-fitting", {{"key", id}}});
    if (key_pin == KeyPin::given) proof.advice = give_key_the_pin(id);
    return proof;
}

Proof try_key(const Session& session, const Tried& tried, OpenedCard& card, KeyPin key_pin) {
    const bool wants_pin = tried.key.wants_pin;
    if (wants_pin && (key_pin == KeyPin::kept || session.last_try())) return compare(tried, KeyPin::kept);
    Challenge message{};
    if (RAND_bytes(message.data(), static_cast<int>(message.size())) != 1)
        return failed({"no-random-text", {}});
    const auto signature =
        session.sign(tried.key.handle, digest_info(message), wants_pin ? &card.pin : nullptr);
    if (!signature) return compare(tried, KeyPin::given);
    if (!verifies(tried.certificate, message, *signature))
        return failed({"signature-does-not-verify", {{"key", tried.key.id}}});
    return {};
}

Proof prove(const Session& session, const CardView& view, const std::string& id,
            const Bytes& expected_certificate, OpenedCard& card, KeyPin key_pin) {
    const CardObject* stored = view.certificate(id, expected_certificate);
    const CardObject* key = view.find(CKO_PRIVATE_KEY, id);
    if (view.certificates(id).empty()) return failed({"certificate-missing", {{"id", id}}});
    if (key == nullptr) return failed({"private-key-missing", {{"id", id}}});
    const Certificate certificate = stored == nullptr ? Certificate() : certificate_from(stored->value);
    if (!certificate) return failed({"certificate-another", {{"id", id}}});
    return try_key(session, {*key, *certificate}, card, key_pin);
}

} // namespace

Proof prove_pair(OpenedCard& card, const std::string& id, const Bytes& expected_certificate, KeyPin key_pin) {
    try {
        Proof proof;
        with_session(card, [&](const Session& session) {
            CardView view = view_in(session);
            proof = prove(session, view, id, expected_certificate, card, key_pin);
            proof.now = card_now(card, std::move(view));
        });
        return proof;
    } catch (const Error& stop) {
        return failed({"key-untried", {{"reason", std::vector{stop.sentence}}}});
    }
}

} // namespace zvhost
