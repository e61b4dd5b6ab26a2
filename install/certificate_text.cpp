#include "install/certificate_text.h"

#include "diag/log.h"
#include "diag/report.h"
#include "util/numbers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

constexpr char TEXT_TITLE[] = " .... CrtB64ToDer FUN                .... ";
constexpr char BEGIN_MARKER[] = "-----BEGIN CERTIFICATE-----";
constexpr char END_MARKER[] = "-----END CERTIFICATE-----";
constexpr int DER_SIZE = 8191;
constexpr unsigned char INVALID = 0x80;

// Byte 0xFF is left at 0, and so decodes like "A" or "=".
constexpr auto build_table() {
    std::array<unsigned char, 256> values{};
    std::fill_n(values.begin(), 255, INVALID);
    unsigned char value = 0;
    for (const char digit :
         std::string_view("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/"))
        values[static_cast<unsigned char>(digit)] = value++;
    values[std::size_t{'='}] = 0;
    return values;
}

constexpr std::array DIGITS = build_table();

// The next four characters that the table knows. Returns how many there were.
int next_group(const char*& text, unsigned char (&group)[4]) {
    int taken = 0;
    for (; taken < 4 && *text != '\0'; ++text) {
        const auto byte = static_cast<unsigned char>(*text);
        if (DIGITS[byte] != INVALID) group[taken++] = byte;
    }
    return taken;
}

int bytes_of(const unsigned char (&group)[4]) {
    if (group[2] == '=') return 1;
    return group[3] == '=' ? 2 : 3;
}

// Where the base64 text starts, its end cut; null when a marker is missing.
const char* cut_body(char* pem) {
    char* end = std::strstr(pem, END_MARKER);
    if (end == nullptr) return nullptr;
    if (end != pem) end[-1] = '\0';
    const char* begin = std::strstr(pem, BEGIN_MARKER);
    return begin != nullptr ? begin + std::strlen(BEGIN_MARKER) : nullptr;
}

} // namespace

int zv::decode_certificate(char* pem, char* der) {
    trace(TEXT_TITLE, "I N I Z I O");
    trace(TEXT_TITLE, "Certificato =", pem);
    const char* text = pem != nullptr ? cut_body(pem) : nullptr;
    if (text == nullptr || der == nullptr) return 0;
    int total = 0;
    for (int bytes = 3; bytes == 3;) {
        unsigned char group[4] = {};
        const int taken = next_group(text, group);
        if (taken == 0) return total;
        if (taken < 4) return 0;
        bytes = bytes_of(group);
        if (total + bytes > DER_SIZE) return 0;
        const unsigned value = static_cast<unsigned>(DIGITS[group[0]]) << 18 |
                               static_cast<unsigned>(DIGITS[group[1]]) << 12 |
                               static_cast<unsigned>(DIGITS[group[2]]) << 6 | DIGITS[group[3]];
        for (int i = 0; i < bytes; ++i)
            der[total++] = static_cast<char>(value >> (16 - 8 * i));
    }
    write_entry(TEXT_TITLE, with_decimal("dimensione = ", total).text, std::string_view(der, DER_SIZE));
    trace(TEXT_TITLE, "F I N E");
    return total;
}
