#include "simcard/tool/personal_data.h"

#include <array>
#include <cstdio>

namespace simcard {
namespace {

constexpr const char* ISSUER = "ZVSIM";
constexpr std::size_t LONGEST_FIELD = 0xFF;

std::string length_in_digits(std::string_view text, int digits) {
    std::array<char, 17> number{};
    (void)std::snprintf(number.data(), number.size(), "%0*zX", digits, text.size());
    return number.data();
}

std::string field(std::string_view text) {
    text = text.substr(0, LONGEST_FIELD);
    return length_in_digits(text, 2) + std::string(text);
}

std::string day_of(std::time_t time) {
    std::tm broken_down{};
    std::array<char, 9> text{};
    gmtime_r(&time, &broken_down);
    (void)std::strftime(text.data(), text.size(), "%d%m%Y", &broken_down);
    return text.data();
}

} // namespace

std::string personal_data(const Holder& holder, Validity card) {
    const std::string fields = field(ISSUER) + field(day_of(card.from)) + field(day_of(card.to)) +
                               field(holder.surname) + field(holder.given_name) + field(holder.tax_code);
    return length_in_digits(fields, 6) + fields;
}

} // namespace simcard
