#include "crypt/text.h"

#include "crypt/failure.h"

#include <algorithm>

namespace zvcrypt {
namespace {

bool is_continuation(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Where the last whole character within that many bytes of a longer text ends.
std::size_t whole_characters(std::string_view text, std::size_t room) {
    constexpr std::size_t short_escape = 4, long_escape = 6; // "\xNN", "\UNNNN"
    const std::size_t mark = text.substr(0, room).rfind('\\');
    if (mark != std::string_view::npos) {
        const char kind = text[mark + 1];
        const std::size_t length = kind == 'x' ? short_escape : kind == 'U' ? long_escape : 0;
        if (mark + length > room) return mark;
    }
    while (room > 0 && is_continuation(text[room]))
        --room;
    return room;
}

[[noreturn]] void fail_cut(std::span<char> buffer) {
    throw Failure(ZVC_ERR_CUT, "Il testo supera i " + std::to_string(buffer.size() - 1) +
                                   " byte previsti ed è stato troncato");
}

} // namespace

bool copy_text(std::string_view text, std::span<char> buffer) noexcept {
    const std::size_t room = buffer.size() - 1;
    const std::size_t length = text.size() > room ? whole_characters(text, room) : text.size();
    std::copy_n(text.begin(), length, buffer.begin());
    buffer[length] = '\0';
    return length == text.size();
}

std::span<char> output_buffer(char* buffer, int size) {
    require_arguments({buffer});
    if (size < 1) throw Failure(ZVC_ERR_ARGUMENT, "Dimensione del buffer non valida");
    buffer[0] = '\0';
    return {buffer, static_cast<std::size_t>(size)};
}

void write_text(std::string_view text, std::span<char> buffer) {
    if (!copy_text(text, buffer)) fail_cut(buffer);
}

void write_pieces(const std::vector<std::string>& pieces, std::span<char> buffer) {
    std::string text;
    for (const auto& piece : pieces) {
        if (text.size() + piece.size() >= buffer.size()) {
            write_text(text, buffer);
            fail_cut(buffer);
        }
        text += piece;
    }
    write_text(text, buffer);
}

std::string upper_hex(std::span<const unsigned char> bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string hex;
    hex.reserve(bytes.size() * 2);
    for (const unsigned char byte : bytes) {
        hex += digits[byte >> 4];
        hex += digits[byte & 0xF];
    }
    return hex;
}

std::string_view trimmed(std::string_view text) noexcept {
    static constexpr std::string_view blanks{" \t\r\n\0", 5};
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace zvcrypt
