#include "simcard/authority/keys.h"

#include "ossl/memory_bio.h"
#include "simcard/authority/errors.h"
#include "simcard/authority/files.h"

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

namespace simcard {
namespace {

// Wipes a text that held key material when the step is over, however it ends.
struct WipeAtEnd {
    std::string& text;
    ~WipeAtEnd() { OPENSSL_cleanse(text.data(), text.size()); }
};

int no_passphrase(char*, int, int, void*) {
    return -1;
}

void check_is_usable(const EVP_PKEY& key, const std::filesystem::path& path) {
    if (!EVP_PKEY_is_a(&key, "RSA") || EVP_PKEY_get_bits(&key) != static_cast<int>(KEY_BITS))
        throw Refusal(path.string() + " holds a key that is not RSA of 2048 bits.");
}

} // namespace

KeySource KeySource::from_file(const std::filesystem::path& path) {
    std::string text = read_file(path);
    const WipeAtEnd wipe{text};
    const ossl::Bio source = ossl::reading(text);
    KeySource keys;
    while (ossl::Key key{PEM_read_bio_PrivateKey(source.get(), nullptr, no_passphrase, nullptr)}) {
        check_is_usable(*key, path);
        keys.ready_.push_back(std::move(key));
    }
    ERR_clear_error();
    if (keys.ready_.empty()) throw Refusal(path.string() + " holds no private key in PEM.");
    return keys;
}

ossl::Key KeySource::next(unsigned bits) {
    ossl::Key key;
    if (ready_.empty() || bits != KEY_BITS) {
        key.reset(EVP_RSA_gen(bits));
        if (!key) fail_with_openssl_reason("Making a key pair");
    } else {
        key = std::move(ready_.front());
        ready_.pop_front();
    }
    return key;
}

void write_private_key(const std::filesystem::path& path, EVP_PKEY& key) {
    const ossl::Bio target = ossl::writing();
    if (PEM_write_bio_PrivateKey(target.get(), &key, nullptr, nullptr, 0, nullptr, nullptr) != 1)
        fail_with_openssl_reason("Writing a private key");
    write_file(path, ossl::written(*target), Access::owner_only);
}

} // namespace simcard
