// SHA-1 (FIPS 180-4) without a byte of memory of its own: nobody is told of a digest that fails, and the card would
// sign its zeros.
#include "zvCrypt.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace {

using Word = std::uint32_t;
using State = std::array<Word, 5>;
using Block = std::array<unsigned char, 64>;

constexpr std::size_t ROOM_FOR_LENGTH = 8;

struct Step {
    Word constant;
    Word (*mix)(Word b, Word c, Word d);
};

Word parity(Word b, Word c, Word d) {
    return b ^ c ^ d;
}

// One for each twenty rounds.
constexpr Step STEPS[] = {
    {0x5A827999, [](Word b, Word c, Word d) { return (b & c) | (~b & d); }},
    {0x6ED9EBA1, parity},
    {0x8F1BBCDC, [](Word b, Word c, Word d) { return (b & c) | (b & d) | (c & d); }},
    {0xCA62C1D6, parity},
};

std::array<Word, 80> schedule_of(std::span<const unsigned char, 64> block) {
    std::array<Word, 80> words{};
    for (std::size_t i = 0; i < block.size(); ++i)
        words[i / 4] = words[i / 4] << 8 | block[i];
    for (std::size_t i = 16; i < words.size(); ++i)
        words[i] = std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
    return words;
}

void take_block(State& state, std::span<const unsigned char, 64> block) {
    const auto words = schedule_of(block);
    auto [a, b, c, d, e] = state;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const Step& step = STEPS[i / 20];
        const Word next = std::rotl(a, 5) + step.mix(b, c, d) + e + step.constant + words[i];
        e = d, d = c, c = std::rotl(b, 30), b = a, a = next;
    }
    state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d, state[4] + e};
}

void put_big_endian(std::uint64_t number, std::span<unsigned char> bytes) {
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte, number >>= 8)
        *byte = static_cast<unsigned char>(number);
}

State state_after(std::span<const unsigned char> data) {
    State state{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    const std::uint64_t bits = std::uint64_t{data.size()} * 8;
    for (; data.size() >= Block().size(); data = data.subspan(Block().size()))
        take_block(state, data.first<64>());
    Block last{};
    *std::copy(data.begin(), data.end(), last.begin()) = 0x80;
    if (data.size() + 1 > last.size() - ROOM_FOR_LENGTH) {
        take_block(state, last);
        last = {};
    }
    put_big_endian(bits, std::span(last).last<ROOM_FOR_LENGTH>());
    take_block(state, last);
    return state;
}

} // namespace

void Sha1Digest(int length, unsigned char* data, unsigned char* digest) {
    if (digest == nullptr) return;
    std::fill_n(digest, ZVC_SHA1_SIZE, static_cast<unsigned char>(0));
    const auto size = static_cast<std::size_t>(std::max(length, 0));
    if (data == nullptr && size > 0) return;
    const State state = state_after({data, size});
    for (std::size_t i = 0; i < state.size(); ++i)
        put_big_endian(state[i], {digest + 4 * i, 4});
}
