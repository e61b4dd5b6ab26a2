#include "simcard/tool/twin.h"

#include "simcard/authority/authority.h"
#include "simcard/authority/errors.h"
#include "simcard/tool/card_objects.h"
#include "simcard/tool/token_session.h"

#include <openssl/err.h>

#include <algorithm>
#include <map>
#include <set>

namespace simcard {
namespace {

constexpr unsigned SMALLEST_KEY = 1024;
constexpr unsigned LARGEST_KEY = 8192;

ossl::Certificate certificate_in(const SeenObject& object) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(object.value.data());
    ossl::Certificate certificate(d2i_X509(nullptr, &bytes, static_cast<long>(object.value.size())));
    ERR_clear_error();
    return certificate;
}

std::string bytes_of(const BIGNUM& number) {
    std::string bytes(static_cast<std::size_t>(BN_num_bytes(&number)), '\0');
    BN_bn2bin(&number, reinterpret_cast<unsigned char*>(bytes.data()));
    return bytes;
}

ossl::BigNumber number_in(const std::string& bytes) {
    return ossl::made(ossl::BigNumber(BN_bin2bn(reinterpret_cast<const unsigned char*>(bytes.data()),
                                                static_cast<int>(bytes.size()), nullptr)));
}

// The modulus of a holder's certificate; empty when it is an authority's, or has no RSA key.
std::string holders_modulus(X509& certificate) {
    const EVP_PKEY* key = X509_get0_pubkey(&certificate);
    if (X509_check_ca(&certificate) != 0 || key == nullptr || !EVP_PKEY_is_a(key, "RSA")) return {};
    BIGNUM* modulus = nullptr;
    EVP_PKEY_get_bn_param(key, "n", &modulus);
    return bytes_of(*ossl::made(ossl::BigNumber(modulus)));
}

// Stores the twins of the objects, one after the other.
class Twins {
  public:
    Twins(TokenSession& token, const Authority& authority, KeySource& source,
          const std::vector<SeenObject>& all)
        : token_(token), authority_(authority), source_(source), all_(all) {}

    void store(const SeenObject& object) {
        if (object.object_class == CKO_PUBLIC_KEY)
            store_pair(object);
        else if (object.object_class == CKO_CERTIFICATE)
            store_certificate(object);
        else
            token_.create(public_data_object(object.label, object.value, object.application));
    }

  private:
    void store_pair(const SeenObject& object) {
        const std::string modulus = bytes_of(*number_in(object.value)); // without zeros in front
        token_.create(public_key_object(key_for(modulus), object.id, object.label));
        store_private_key(object, modulus);
    }

    void store_certificate(const SeenObject& object) {
        const ossl::Certificate original = certificate_in(object);
        if (!original) return token_.create(broken_certificate_object(object.value, object.id, object.label));
        const std::string modulus = holders_modulus(*original);
        if (modulus.empty()) return token_.create(certificate_object(*original, object.id, object.label));
        if (!shows_public_key(object.id)) store_private_key(object, modulus);
        token_.create(
            certificate_object(*authority_.issue_like(*original, key_for(modulus)), object.id, object.label));
    }

    void store_private_key(const SeenObject& object, const std::string& modulus) {
        if (private_keys_.insert({object.id, modulus}).second)
            token_.create(private_key_object(key_for(modulus), object.id, false, object.label));
    }

    [[nodiscard]] bool shows_public_key(const std::string& id) const {
        return std::any_of(all_.begin(), all_.end(), [&](const SeenObject& object) {
            return object.object_class == CKO_PUBLIC_KEY && object.id == id;
        });
    }

    // The key that stands for the one of that modulus.
    EVP_PKEY& key_for(const std::string& modulus) {
        ossl::Key& key = keys_[modulus];
        if (key) return *key;
        const auto bits = static_cast<unsigned>(BN_num_bits(number_in(modulus).get()));
        if (bits < SMALLEST_KEY || bits > LARGEST_KEY)
            throw Refusal("A key of " + std::to_string(bits) + " bits cannot have a twin.");
        key = source_.next(bits);
        return *key;
    }

    TokenSession& token_;
    const Authority& authority_;
    KeySource& source_;
    const std::vector<SeenObject>& all_;
    std::map<std::string, ossl::Key> keys_;
    std::set<std::pair<std::string, std::string>> private_keys_;
};

} // namespace

Card make_twin(const std::filesystem::path& home, const CardPlan& plan,
               const std::vector<SeenObject>& objects, KeySource& keys) {
    return make_filled_card(home, plan, keys,
                            [&](TokenSession& token, const CardPlan&, const Authority& authority) {
                                Twins twins(token, authority, keys, objects);
                                for (const SeenObject& object : objects)
                                    twins.store(object);
                            });
}

} // namespace simcard
