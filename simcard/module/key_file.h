#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

namespace simcard {

// An RSA key pair as unsigned big-endian numbers, in the order of RsaKey::parts.
struct RsaKey {
    // modulus, public exponent, private exponent, the two primes, the two exponents, coefficient
    static constexpr std::size_t PARTS = 8;
    std::array<std::string, PARTS> numbers;

    [[nodiscard]] const std::string& modulus() const { return numbers[0]; }
    [[nodiscard]] std::size_t bits() const { return 8 * modulus().size(); }
};

// Reads a file of ready-made key pairs: a line each, its numbers in hexadecimal with blanks between. No file
// is no key; a line that is none is left out.
[[nodiscard]] std::vector<RsaKey> read_keys(const std::filesystem::path& file);

// Adds a key pair at the end of the file, made if need be (mode 0600). @throws CardProblem
void append_key(const std::filesystem::path& file, const RsaKey& key);

} // namespace simcard
