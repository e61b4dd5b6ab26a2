#pragma once

#include <string_view>

// Fields in texts of name and value pairs, and their escapes.
namespace zv {

struct FieldForm {
    std::string_view pair_separator;
    std::string_view value_separator;
};

struct Field {
    enum class Result { found, no_field, no_separator } result = Result::no_field;
    std::string_view value; // without blanks around it
};

// A field counts where a pair starts or after one of "\n ,:;=".
[[nodiscard]] Field find_field(std::string_view text, std::string_view name, const FieldForm& form);

// Decodes "%" and two hexadecimal digits to a byte each. decoded may be the text itself.
void decode_escapes(const char* text, char* decoded);

// Replaces every "+" by a blank, then decodes the escapes, in place.
void decode_value(char* text);

} // namespace zv
