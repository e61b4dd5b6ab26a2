// The C face of this folder.
#include "routines/util.h"
#include "util/fields.h"
#include "util/numbers.h"
#include "util/text.h"
#include "util/trim.h"

#include <cstdlib>
#include <cstring>

char ILtoAbuff[32];
char ILtoAbuffHex[32];
char CatILtoAbuff[128];
char CatILtoAbuffHex1[128];
char CatILtoAbuffHex2[128];
char CatSZtoSZbuff[256];
char x1[32], x2[32], x3[32];

namespace {

// Room for a number of each type.
constexpr std::size_t INT_DIGITS = 12, LONG_DIGITS = 21;

char* decimal(char* buffer, std::size_t size, long value) {
    if (buffer != nullptr) zv::write_decimal(buffer, size, value);
    return buffer;
}

template <std::size_t N> char* kept(char (&buffer)[N], const zv::FixedText<N>& text) {
    zv::copy_text(buffer, text.text);
    return buffer;
}

char* decimal_behind(const char* prefix, long value) {
    decimal(ILtoAbuff, LONG_DIGITS, value);
    return kept(CatILtoAbuff, zv::with_decimal(prefix, value));
}

char* hex_behind(char (&buffer)[128], const char* prefix, long value) {
    decimal(ILtoAbuffHex, LONG_DIGITS, value);
    return kept(buffer, zv::with_hex(prefix, value));
}

char* write_hex_behind(char* destination, const char* prefix, long value) {
    decimal(ILtoAbuffHex, LONG_DIGITS, value);
    return destination != nullptr ? zv::write_hex(destination, zv::or_empty(prefix), value) : nullptr;
}

char* encoded(const char* text, char* output) {
    if (output == nullptr) return nullptr;
    if (zv::or_empty(text)[0] != '\0') return decimal(output, LONG_DIGITS, zv::encoded_number(text));
    output[0] = '\0';
    return output;
}

constexpr int field_code(zv::Field::Result result) {
    if (result == zv::Field::Result::found) return 0;
    return result == zv::Field::Result::no_separator ? -4 : -1;
}

} // namespace

char* _itoa(int value, char* buffer, int) {
    return decimal(buffer, INT_DIGITS, value);
}

char* _ltoa(long value, char* buffer, int) {
    return decimal(buffer, LONG_DIGITS, value);
}

char* _strupr(char* text) {
    return zv::upper_case(text);
}

char* _strlwr(char* text) {
    return zv::lower_case(text);
}

char* RTrim(char* text) {
    return zv::strip_right(text);
}

char* LTrim(char* text) {
    return zv::strip_left(text);
}

char* AllTrim(char* text) {
    return zv::strip(text);
}

char* VirgolaToPunto(char* text) {
    return zv::commas_to_points(text);
}

char* Converte(char* text) {
    if (text != nullptr) zv::decode_value(text);
    return text;
}

char* ItoA(int value) {
    return decimal(ILtoAbuff, INT_DIGITS, value);
}

char* LtoA(long value) {
    return decimal(ILtoAbuff, LONG_DIGITS, value);
}

char* ItoAHex(int value) {
    return decimal(ILtoAbuffHex, INT_DIGITS, value);
}

char* LtoAHex(long value) {
    return decimal(ILtoAbuffHex, LONG_DIGITS, value);
}

char* CatItoA(const char* prefix, int value) {
    return decimal_behind(prefix, value);
}

char* CatLtoA(const char* prefix, long value) {
    return decimal_behind(prefix, value);
}

char* CatItoAHex(char* destination, const char* prefix, int value) {
    return write_hex_behind(destination, prefix, value);
}

char* CatLtoAHex(char* destination, const char* prefix, long value) {
    return write_hex_behind(destination, prefix, value);
}

char* CatItoAHex1(const char* prefix, int value) {
    return hex_behind(CatILtoAbuffHex1, prefix, value);
}

char* CatLtoAHex1(const char* prefix, long value) {
    return hex_behind(CatILtoAbuffHex1, prefix, value);
}

char* CatItoAHex2(const char* prefix, int value) {
    return hex_behind(CatILtoAbuffHex2, prefix, value);
}

char* CatLtoAHex2(const char* prefix, long value) {
    return hex_behind(CatILtoAbuffHex2, prefix, value);
}

char* CatSZtoSZ(const char* first, const char* second) {
    return kept(CatSZtoSZbuff, zv::join(first, second));
}

char* strstrICase(const char* haystack, const char* needle) {
    if (haystack == nullptr || needle == nullptr) return nullptr;
    const std::size_t place = zv::find_ignoring_case(haystack, needle);
    // As strstr: what is searched may be written by its owner.
    return place != std::string_view::npos ? const_cast<char*>(haystack) + place : nullptr;
}

int HexLen(char* buffer, int length) {
    if (buffer == nullptr) return 0;
    return length < 1
               ? length
               : static_cast<int>(zv::length_without_zeros({buffer, static_cast<std::size_t>(length)}));
}

char* UnEscape(char* text) {
    if (text == nullptr) return nullptr;
    char* decoded = static_cast<char*>(std::calloc(2 * std::strlen(text) + 10, 1));
    if (decoded != nullptr) zv::decode_escapes(text, decoded);
    return decoded;
}

int NWGetOpt(char* text, char* name, char* output, char* pair_separator, char* value_separator) {
    if (text == nullptr || name == nullptr || output == nullptr)
        return field_code(zv::Field::Result::no_field);
    output[0] = '\0';
    const zv::Field field =
        zv::find_field(text, name, {zv::or_empty(pair_separator), zv::or_empty(value_separator)});
    *std::copy(field.value.begin(), field.value.end(), output) = '\0';
    return field_code(field.result);
}

int Valore(char* text, char* name, char* output) {
    if (output == nullptr) return 0;
    output[0] = '\0';
    if (text == nullptr || name == nullptr) return 0;
    const std::string_view value = zv::find_field(text, name, {"&", "="}).value;
    *std::copy(value.begin(), value.end(), output) = '\0';
    zv::decode_value(output);
    zv::strip(output);
    return 0;
}

long DataToLong(char* date) {
    return zv::date_number(zv::or_empty(date));
}

char* XX(char* text, char* output) {
    return encoded(text, output);
}

char* X1(char* text) {
    return encoded(text, x1);
}

char* X2(char* text) {
    return encoded(text, x2);
}

char* X3(char* text) {
    return encoded(text, x3);
}
