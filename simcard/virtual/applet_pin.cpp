#include "simcard/virtual/applet_pin.h"

#include <openssl/crypto.h>

#include <algorithm>

namespace simcard {
namespace {

// A secret comes padded with zeros.
std::span<const std::uint8_t> unpadded(std::span<const std::uint8_t> secret) {
    while (!secret.empty() && secret.back() == 0)
        secret = secret.first(secret.size() - 1);
    return secret;
}

} // namespace

CardPin::~CardPin() {
    OPENSSL_cleanse(value_.data(), value_.size());
}

std::uint16_t CardPin::tries_status() const {
    return static_cast<std::uint16_t>(0x63C0 | tries_);
}

void CardPin::verify(std::span<const std::uint8_t> secret) {
    secret = unpadded(secret);
    if (!is_set()) throw Refused(Status::no_reference);
    if (tries_ == 0) throw Refused(Status::blocked);
    given_ =
        secret.size() == value_.size() && CRYPTO_memcmp(secret.data(), value_.data(), value_.size()) == 0;
    tries_ = given_ ? MOST_TRIES : tries_ - 1;
    if (!given_) throw Refused(tries_status());
}

void CardPin::ask() const {
    if (!is_set()) throw Refused(Status::no_reference);
    if (tries_ == 0) throw Refused(Status::blocked);
    if (!given_) throw Refused(tries_status());
}

void CardPin::set(std::span<const std::uint8_t> secret) {
    secret = unpadded(secret);
    constexpr std::size_t shortest = 4;
    if (secret.size() < shortest || secret.size() > LONGEST) throw Refused(Status::wrong_data);
    OPENSSL_cleanse(value_.data(), value_.size());
    value_.assign(secret.begin(), secret.end());
    tries_ = MOST_TRIES;
}

} // namespace simcard
