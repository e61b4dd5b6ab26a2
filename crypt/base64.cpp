#include "base64.h"

#include "failure.h"

namespace zvcrypt {
namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view blanks = " \t\r\n";

[[noreturn]] void fail() {
    throw Failure(ZVC_ERR_BASE64, "Il testo non è in base64");
}

} // namespace

std::string base64Line(std::span<const unsigned char> bytes) {
    unsigned char characters[base64LineLength + 1];
    const auto length = bytes.size() < bytesPerBase64Line ? bytes.size() : bytesPerBase64Line;
    const int written = EVP_EncodeBlock(characters, bytes.data(), static_cast<int>(length));
    return std::string(reinterpret_cast<char*>(characters), static_cast<std::size_t>(written)) + "\n";
}

void Base64Decoder::addGroup(Bytes& bytes) {
    const std::size_t digits = std::min(group_.find('='), group_.size());
    if (digits < 2 || group_.find_first_not_of('=', digits) != std::string::npos) fail();
    unsigned value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 6 | (i < digits ? static_cast<unsigned>(alphabet.find(group_[i])) : 0U);
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
        if (blanks.find(c) != std::string_view::npos) continue;
        if (padded_ || (c != '=' && alphabet.find(c) == std::string_view::npos)) fail();
        group_ += c;
        if (group_.size() == 4) addGroup(bytes);
    }
    return bytes;
}

void Base64Decoder::finish() const {
    if (!group_.empty())
        throw Failure(ZVC_ERR_BASE64, "Il testo in base64 è incompleto: finisce a metà di un gruppo");
}

Bytes decodeBase64(std::string_view text) {
    Base64Decoder decoder;
    Bytes bytes = decoder.decode(text);
    decoder.finish();
    return bytes;
}

} // namespace zvcrypt
