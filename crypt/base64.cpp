#include "crypt/base64.h"

#include "crypt/failure.h"

#include <openssl/evp.h>

namespace zvcrypt {
namespace {

constexpr std::string_view ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view BLANKS = " \t\r\n";

[[noreturn]] void fail() {
    throw Failure(ZVC_ERR_BASE64, "Il testo non è in base64");
}

} // namespace

std::string base64_line(std::span<const unsigned char> bytes) {
    unsigned char characters[BASE64_LINE_LENGTH + 1]; // the encoder ends them with a zero byte
    const auto length = bytes.size() < BYTES_PER_BASE64_LINE ? bytes.size() : BYTES_PER_BASE64_LINE;
    const int written = EVP_EncodeBlock(characters, bytes.data(), static_cast<int>(length));
    characters[written] = '\n';
    return {reinterpret_cast<char*>(characters), static_cast<std::size_t>(written) + 1};
}

void Base64Decoder::add_group(Bytes& bytes) {
    const std::size_t digits = std::min(group_.find('='), group_.size());
    if (digits < 2 || group_.find_first_not_of('=', digits) != std::string::npos) fail();
    unsigned value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 6 | (i < digits ? static_cast<unsigned>(ALPHABET.find(group_[i])) : 0U);
    const std::size_t count = digits - 1;
    if (count < 3 && (value & (0xFFFFFFU >> (8 * count))) != 0) fail();
    for (std::size_t i = 0; i < count; ++i)
        bytes.push_back(static_cast<unsigned char>(value >> (16 - 8 * i)));
    padded_ = digits < 4;
    group_.clear();
}

Bytes Base64Decoder::decode(std::string_view text) {
    Bytes bytes;
    for (const char c : text) {
        if (BLANKS.find(c) != std::string_view::npos) continue;
        if (padded_ || (c != '=' && ALPHABET.find(c) == std::string_view::npos)) fail();
        group_ += c;
        if (group_.size() == 4) add_group(bytes);
    }
    return bytes;
}

void Base64Decoder::finish() const {
    if (!group_.empty())
        throw Failure(ZVC_ERR_BASE64, "Il testo in base64 è incompleto: finisce a metà di un gruppo");
}

Bytes decode_base64(std::string_view text) {
    Base64Decoder decoder;
    Bytes bytes = decoder.decode(text);
    decoder.finish();
    return bytes;
}

} // namespace zvcrypt
