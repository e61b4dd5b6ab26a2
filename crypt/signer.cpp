#include "crypt/signer.h"

#include "crypt/card_objects.h"
#include "crypt/preference.h"
#include "ossl/owners.h"

#include <openssl/bn.h>
#include <openssl/core_names.h>

#include <algorithm>
#include <array>
#include <ctime>
#include <exception>
#include <utility>
#include <vector>

namespace zvcrypt {
namespace {

constexpr std::size_t ROOM_FOR_ID = 256;
constexpr std::size_t ROOM_FOR_CERTIFICATE = 16384;
constexpr std::size_t ROOM_FOR_MODULUS = 1024;

// As the card gives it: reading one takes a while, and few are wanted.
struct CardCertificate {
    Bytes id;
    Bytes value;
};

// Every certificate that the card gives. One that it does not, such as an entry whose file is gone, does
// not stand in the others' way; the first such failure is kept for the case that nothing else helps.
struct CardCertificates {
    std::vector<CardCertificate> all;
    std::exception_ptr failure;
};

CardCertificates card_certificates(const Session& session) {
    static constexpr CK_OBJECT_CLASS certificate_class = CKO_CERTIFICATE;
    const auto handles =
        find_objects(session, {attribute_of(CKA_CLASS, &certificate_class, sizeof certificate_class)});
    CardCertificates certificates;
    for (const auto handle : handles) {
        Bytes id(ROOM_FOR_ID);
        Bytes value(ROOM_FOR_CERTIFICATE);
        std::array attributes{attribute_into(CKA_ID, id), attribute_into(CKA_VALUE, value)};
        const CK_RV result = session.call(&CK_FUNCTION_LIST::C_GetAttributeValue, handle, attributes.data(),
                                          static_cast<CK_ULONG>(attributes.size()));
        if (!gave_something(result)) {
            if (!certificates.failure)
                certificates.failure = std::make_exception_ptr(module_failure("C_GetAttributeValue", result));
            continue;
        }
        certificates.all.push_back({value_of(attributes[0], id), value_of(attributes[1], value)});
    }
    return certificates;
}

std::vector<CK_OBJECT_HANDLE> private_keys(const Session& session, std::string_view key_id) {
    static constexpr CK_OBJECT_CLASS key_class = CKO_PRIVATE_KEY;
    if (key_id.empty()) throw Failure(ZVC_ERR_KEY, "Manca l'identificativo della chiave");
    auto keys = find_objects(session, {attribute_of(CKA_CLASS, &key_class, sizeof key_class),
                                       attribute_of(CKA_ID, key_id.data(), key_id.size())});
    if (keys.empty() && !session.logged_in())
        throw Failure(ZVC_ERR_NOT_LOGGED_IN, "La smart card richiede prima il PIN");
    if (keys.empty())
        throw Failure(ZVC_ERR_KEY, "Nessuna chiave privata \"" + std::string(key_id) + "\" sulla smart card");
    return keys;
}

bool is_rsa(const Certificate& certificate) {
    const EVP_PKEY* key = certificate.key();
    return key != nullptr && EVP_PKEY_get_base_id(key) == EVP_PKEY_RSA;
}

ossl::BigNumber modulus_of(const Certificate& certificate) {
    BIGNUM* modulus = nullptr;
    if (is_rsa(certificate)) (void)EVP_PKEY_get_bn_param(certificate.key(), OSSL_PKEY_PARAM_RSA_N, &modulus);
    return ossl::BigNumber(modulus);
}

ossl::BigNumber modulus_of(const Session& session, CK_OBJECT_HANDLE key) {
    Bytes room(ROOM_FOR_MODULUS);
    CK_ATTRIBUTE attribute = attribute_into(CKA_MODULUS, room);
    const CK_RV result = session.call(&CK_FUNCTION_LIST::C_GetAttributeValue, key, &attribute, CK_ULONG{1});
    if (result != CKR_OK) return nullptr;
    const Bytes modulus = value_of(attribute, room);
    return ossl::BigNumber(BN_bin2bn(modulus.data(), static_cast<int>(modulus.size()), nullptr));
}

bool have_one_key(const std::vector<Certificate>& certificates) {
    const EVP_PKEY* first = certificates.front().key();
    return std::all_of(certificates.begin(), certificates.end(),
                       [&](const Certificate& one) { return EVP_PKEY_eq(one.key(), first) == 1; });
}

// The first certificate that is one of the keys', and that key; the card is asked only when there is a choice
// of keys.
std::pair<CK_OBJECT_HANDLE, std::size_t> first_pair(const Session& session,
                                                    const std::vector<CK_OBJECT_HANDLE>& keys,
                                                    const std::vector<Certificate>& certificates) {
    if (keys.size() == 1 && have_one_key(certificates)) return {keys[0], 0};
    std::vector<ossl::BigNumber> moduli;
    moduli.reserve(keys.size());
    for (const auto key : keys)
        moduli.push_back(modulus_of(session, key));
    for (std::size_t i = 0; i < certificates.size(); ++i) {
        const auto wanted = modulus_of(certificates[i]);
        for (std::size_t k = 0; k < keys.size(); ++k)
            if (wanted && moduli[k] && BN_cmp(wanted.get(), moduli[k].get()) == 0) return {keys[k], i};
    }
    throw Failure(ZVC_ERR_CERTIFICATE, "Nessuno dei certificati con l'identificativo della chiave è il suo");
}

bool has_id(const CardCertificate& one, std::string_view id) {
    return std::string_view(reinterpret_cast<const char*>(one.id.data()), one.id.size()) == id;
}

// Those with the identifier that can be read, the best first.
std::vector<Certificate> own_certificates(const std::vector<CardCertificate>& all, std::string_view key_id) {
    std::vector<Certificate> own;
    for (const CardCertificate& one : all)
        if (has_id(one, key_id))
            if (Certificate certificate = read_certificate(one.value)) own.push_back(std::move(certificate));
    std::sort(own.begin(), own.end(), [now = std::time(nullptr)](const auto& one, const auto& other) {
        return preference_of(one, now) > preference_of(other, now);
    });
    return own;
}

bool has_subject(const CardCertificate& one, der::Span subject) {
    try {
        return std::ranges::equal(take_apart(one.value).subject, subject);
    } catch (const Failure&) {
        return false;
    }
}

// First those whose subject is the issuer byte by byte: a name can be written in several ways, but seldom is. A second copy
// of a certificate that signed itself is not its issuer's.
Certificate find_issuer(const Certificate& certificate, std::vector<CardCertificate> all,
                        std::string_view key_id) {
    std::stable_partition(all.begin(), all.end(), [&](const auto& one) { return !has_id(one, key_id); });
    const der::Span name = certificate.parts().issuer;
    std::stable_partition(all.begin(), all.end(), [&](const auto& one) { return has_subject(one, name); });
    for (const CardCertificate& one : all)
        if (Certificate other = read_certificate(one.value);
            other && other.der != certificate.der && is_issued_by(certificate, other))
            return other;
    return {};
}

} // namespace

CardSigner find_signer(const Session& session, std::string_view key_id) {
    const auto keys = private_keys(session, key_id);
    auto [all, failure] = card_certificates(session);
    auto own = own_certificates(all, key_id);
    if (own.empty() && failure) std::rethrow_exception(failure);
    if (own.empty())
        throw Failure(ZVC_ERR_CERTIFICATE,
                      "Nessun certificato \"" + std::string(key_id) + "\" leggibile sulla smart card");
    const auto [key, chosen] = first_pair(session, keys, own);
    CardSigner signer{key, std::move(own[chosen]), {}};
    if (!is_rsa(signer.certificate))
        throw Failure(ZVC_ERR_CERTIFICATE,
                      "Il certificato \"" + std::string(key_id) + "\" non è di una chiave RSA");
    signer.issuer = find_issuer(signer.certificate, std::move(all), key_id);
    return signer;
}

} // namespace zvcrypt
