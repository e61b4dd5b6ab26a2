#include "host/help_desk.h"
#include "name_attributes.h"

#include <algorithm>
#include <cctype>

namespace zvhost {
namespace {

bool is_word(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

bool begins_alike(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(), [](char a, char b) {
               return std::tolower(static_cast<unsigned char>(a)) ==
                      std::tolower(static_cast<unsigned char>(b));
           });
}

// Keys of the forms that a name has in a log beside those of name_attributes.h.
constexpr std::string_view OTHER_KEYS[] = {"G=",           "S=",
                                           "D=",           "T=",
                                           "E=",           "UID=",
                                           "street=",      "Email=",
                                           "givenName=",   "surname=",
                                           "commonname:",  "description:",
                                           "dnqualifier:", "email:",
                                           "givenname:",   "organization:",
                                           "sernum:",      "surname:",
                                           "locality:",    "title:",
                                           "pseudonym:",   "stateOrProvince:",
                                           "CN:",          "orgunit0:",
                                           "orgunit1:",    "orgunit2:",
                                           "orgunit3:",    "orgunit4:"};

constexpr std::string_view OIDS[] = {"2.5.4.", "1.2.840.113549.1.9.", "0.9.2342.19200300.100.1."};

struct AttributeKey {
    std::size_t size = 0; // 0: there is none
    bool personal = true;
};

AttributeKey oid_key(std::string_view text) {
    for (const std::string_view oid : OIDS) {
        if (!text.starts_with(oid)) continue;
        const auto end = text.find_first_not_of("0123456789.", oid.size());
        if (end != std::string_view::npos && text[end] == '=' && end > oid.size())
            return {end + 1, text.substr(0, end + 1) != name_attribute(zv::NameAttribute::country).oid};
    }
    return {};
}

// "DN_surname = "
AttributeKey log_key(std::string_view text) {
    if (!text.starts_with("DN_")) return {};
    const auto end = text.find(" = ");
    if (end == std::string_view::npos || text.substr(0, end).find_first_of("\n ") != std::string_view::npos)
        return {};
    return {end + 3, !text.starts_with("DN_country")};
}

AttributeKey short_key(std::string_view text) {
    for (const zv::NameAttributeRow& row : zv::NAME_ATTRIBUTES) {
        const std::string_view key = std::string_view(row.slash).substr(1);
        if (begins_alike(text, key)) return {key.size(), row.id != zv::NameAttribute::country};
    }
    const auto found = std::find_if(std::begin(OTHER_KEYS), std::end(OTHER_KEYS),
                                    [&](std::string_view key) { return begins_alike(text, key); });
    return found == std::end(OTHER_KEYS) ? AttributeKey() : AttributeKey{found->size(), true};
}

// An attribute of a name that begins at a place.
AttributeKey key_at(std::string_view text, std::size_t at) {
    const auto rest = text.substr(at);
    if (const AttributeKey key = oid_key(rest); key.size != 0) return key;
    if (at > 0 && is_word(text[at - 1])) return {};
    if (const AttributeKey key = log_key(rest); key.size != 0) return key;
    return short_key(rest);
}

bool ends_value(char c) {
    return (static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == '#' || c == '"';
}

// Where the value that begins at a place ends: with the line or the record, or where another attribute begins.
std::size_t end_of_value(std::string_view text, std::size_t at) {
    const std::size_t first = at;
    for (; at < text.size() && !ends_value(text[at]); ++at)
        if (key_at(text, at).size != 0) break;
    while (at > first && at < text.size() &&
           (text[at - 1] == ' ' || text[at - 1] == ',' || text[at - 1] == '/' || text[at - 1] == '+'))
        --at;
    return at;
}

} // namespace

std::string without_name_attributes(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const AttributeKey key = key_at(text, at);
        if (key.size == 0) {
            out += text[at++];
            continue;
        }
        const std::size_t value = at + key.size, end = end_of_value(text, value);
        out.append(text.substr(at, key.size));
        if (key.personal && end > value) out += "[name]";
        if (!key.personal) out.append(text.substr(value, end - value));
        at = end;
    }
    return out;
}

} // namespace zvhost
