#include "simcard/virtual/applet_keys.h"

#include "ossl/owners.h"
#include "simcard/authority/errors.h"

#include <openssl/core_names.h>
#include <openssl/err.h>
#include <openssl/rsa.h>

namespace simcard {
namespace {

enum Algorithm : std::uint8_t { rsa_pkcs1 = 0x11, generate_rsa_2048 = 0xF3 };
enum Operation : std::uint16_t { sign = 0x9E9A, decipher = 0x8086 };

Octets number_of(const EVP_PKEY& key, const char* name) {
    BIGNUM* raw = nullptr;
    EVP_PKEY_get_bn_param(&key, name, &raw);
    const ossl::BigNumber value = ossl::made(ossl::BigNumber(raw));
    Octets bytes(static_cast<std::size_t>(BN_num_bytes(value.get())));
    BN_bn2bin(value.get(), bytes.data());
    return bytes;
}

// One of OpenSSL's operations with a private key.
Octets with_key(EVP_PKEY& key, int (*begin)(EVP_PKEY_CTX*),
                int (*run)(EVP_PKEY_CTX*, unsigned char*, std::size_t*, const unsigned char*, std::size_t),
                std::span<const std::uint8_t> data) {
    const ossl::KeyContext context = ossl::made(ossl::KeyContext(EVP_PKEY_CTX_new(&key, nullptr)));
    Octets result(static_cast<std::size_t>(EVP_PKEY_get_size(&key)));
    std::size_t length = result.size();
    if (begin(context.get()) != 1 || EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) != 1 ||
        run(context.get(), result.data(), &length, data.data(), data.size()) != 1) {
        ERR_clear_error();
        throw Refused(Status::wrong_data);
    }
    result.resize(length);
    return result;
}

} // namespace

void CardKeys::choose(const Command& command) {
    const auto algorithm = find_object(command.data, 0x80);
    auto key = find_object(command.data, 0x84);
    if (!key) key = find_object(command.data, 0x83);
    if (command.p1 != 0x41 || !algorithm || !key || algorithm->size() != 1 || key->size() != 1)
        throw Refused(Status::wrong_data);
    if ((*key)[0] >= keys_.size()) throw Refused(Status::no_reference);
    algorithm_ = (*algorithm)[0];
    key_ = (*key)[0];
}

Octets CardKeys::generate() {
    if (algorithm_ != generate_rsa_2048) throw Refused(Status::unknown_function);
    keys_[key_] = KeySource().next();
    Octets numbers = object(0x81, number_of(*keys_[key_], OSSL_PKEY_PARAM_RSA_N));
    append(numbers, object(0x82, number_of(*keys_[key_], OSSL_PKEY_PARAM_RSA_E)));
    return object(0x7F49, numbers);
}

Octets CardKeys::perform(const Command& command) const {
    if (algorithm_ != rsa_pkcs1) throw Refused(Status::no_conditions);
    EVP_PKEY* key = keys_[key_].get();
    if (key == nullptr) throw Refused(Status::no_reference);
    std::span<const std::uint8_t> data = command.data;
    if (command.parameters() == sign) return with_key(*key, EVP_PKEY_sign_init, EVP_PKEY_sign, data);
    if (command.parameters() != decipher) throw Refused(Status::wrong_parameters);
    // Before what is deciphered stands how it is padded.
    if (data.empty() || data[0] != 0) throw Refused(Status::wrong_data);
    return with_key(*key, EVP_PKEY_decrypt_init, EVP_PKEY_decrypt, data.subspan(1));
}

} // namespace simcard
