#include "host/distinguished_name.h"

#include "host/error.h"
#include "name_attributes.h"
#include "zvRenew.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>

namespace zvhost {
namespace {

using Row = zv::NameAttributeRow;
using zv::NAME_ATTRIBUTES, zv::NameString;

// Inside a value the library would break the line at an identifier, at some also where no "=" follows, and
// would rewrite these names.
constexpr std::array<std::string_view, 6> TAKEN_APART{
    "2.5.4.", "1.2.840.113549.1.9.1=", "/OU=", "/emailAddress=", "/gn=", "/serialNumber="};

template <class Matches> const Row* row_that(Matches matches) {
    const auto* found = std::find_if(std::begin(NAME_ATTRIBUTES), std::end(NAME_ATTRIBUTES), matches);
    return found == std::end(NAME_ATTRIBUTES) ? nullptr : found;
}

const Row* by_name(std::string_view name) {
    return row_that([&](const Row& row) {
        return std::equal(name.begin(), name.end(), row.name().begin(), row.name().end(), [](char a, char b) {
            return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
        });
    });
}

struct Mark {
    std::size_t at = std::string_view::npos; // where the mark begins
    std::size_t value = 0;                   // where the value behind it begins
    const Row* row = nullptr;                // null: an attribute that requests do not carry
};

Mark next_oid(std::string_view text, std::size_t from) {
    Mark first;
    for (const Row& row : NAME_ATTRIBUTES) {
        const std::string_view oid = row.oid;
        const std::size_t at = text.find(oid, from);
        if (at < first.at) first = {at, at + oid.size(), &row};
    }
    return first;
}

// "/", a word of letters, "=".
Mark next_slash(std::string_view text, std::size_t from) {
    for (std::size_t at = text.find('/', from); at != std::string_view::npos; at = text.find('/', at + 1)) {
        std::size_t end = at + 1;
        while (end < text.size() && std::isalpha(static_cast<unsigned char>(text[end])) != 0)
            ++end;
        if (end > at + 1 && end < text.size() && text[end] == '=')
            return {at, end + 1, by_name(text.substr(at + 1, end - at - 1))};
    }
    return {};
}

long as_value(std::size_t number) {
    return static_cast<long>(number);
}

std::string trimmed(std::string_view value) {
    while (!value.empty() && value.back() == ' ')
        value.remove_suffix(1);
    return std::string(value);
}

bool is_printable(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           std::string_view(" '()+,-./:=?").find(c) != std::string_view::npos;
}

bool may_have(NameString type, const std::string& value) {
    const auto is_ascii = [](unsigned char c) { return c <= 0x7F; };
    if (type == NameString::utf8) return true;
    return type == NameString::printable ? std::all_of(value.begin(), value.end(), is_printable)
                                         : std::all_of(value.begin(), value.end(), is_ascii);
}

Sentence why_not(const NameAttribute& attribute) {
    const Row* row = by_name(attribute.name);
    if (row == nullptr) return {"attribute-not-carried", {{"name", attribute.name}}};
    const std::string name(row->name());
    const std::string& value = attribute.value;
    if (value.empty()) return {"attribute-empty", {{"name", name}}};
    if (value.size() > row->longest())
        return {"attribute-too-long",
                {{"name", name}, {"bytes", as_value(value.size())}, {"most", as_value(row->longest())}}};
    const auto is_control = [](unsigned char c) { return c < 0x20 || c == 0x7F; };
    if (std::any_of(value.begin(), value.end(), is_control))
        return {"attribute-control-character", {{"name", name}}};
    if (!may_have(row->type, value)) return {"attribute-character", {{"name", name}}};
    for (const std::string_view part : TAKEN_APART)
        if (value.find(part) != std::string::npos)
            return {"attribute-taken-apart", {{"name", name}, {"part", std::string(part)}}};
    return {};
}

// A text taken apart by the attributes that are known leaves the others inside the value before them.
Sentence why_swallowed(const std::string& value) {
    const Mark inner = next_slash(value, 0);
    if (inner.at == std::string_view::npos) return {};
    return {"attribute-not-carried", {{"name", value.substr(inner.at + 1, inner.value - inner.at - 2)}}};
}

} // namespace

DistinguishedName DistinguishedName::from_oid_form(std::string_view text) {
    DistinguishedName name;
    for (Mark mark = next_oid(text, 0); mark.row != nullptr;) {
        const Mark next = next_oid(text, mark.value);
        name.attributes_.push_back(
            {std::string(mark.row->name()), trimmed(text.substr(mark.value, next.at - mark.value))});
        mark = next;
    }
    return name;
}

DistinguishedName DistinguishedName::from_user(std::string_view text) {
    if (!text.empty() && std::isdigit(static_cast<unsigned char>(text.front())) != 0)
        return from_oid_form(text);
    DistinguishedName name;
    Mark mark = next_slash(text, 0);
    if (mark.at != 0) throw Error(Exit::refused, {"subject-form", {}});
    while (mark.at != std::string_view::npos) {
        const Mark next = next_slash(text, mark.value);
        const std::string word(text.substr(mark.at + 1, mark.value - mark.at - 2));
        if (mark.row == nullptr)
            throw Error(Exit::refused, {"subject-attribute-not-carried", {{"name", word}}});
        name.attributes_.push_back(
            {std::string(mark.row->name()), trimmed(text.substr(mark.value, next.at - mark.value))});
        mark = next;
    }
    return name;
}

DistinguishedName DistinguishedName::from_oids(std::vector<NameAttribute> attributes) {
    DistinguishedName name;
    name.exact_ = true;
    for (NameAttribute& attribute : attributes) {
        const Row* row = row_that([&](const Row& one) { return one.oid == attribute.name + "="; });
        if (row != nullptr) attribute.name = row->name();
        name.attributes_.push_back(std::move(attribute));
    }
    return name;
}

std::string DistinguishedName::oid_form() const {
    std::string text;
    for (const auto& [name, value] : attributes_) {
        const Row* row = by_name(name);
        if (row != nullptr)
            text.append(row->oid);
        else
            text.append(name).append("=");
        text.append(value);
    }
    return text;
}

std::string DistinguishedName::readable() const {
    std::vector<std::string> parts;
    for (const NameAttribute& attribute : attributes_)
        parts.push_back(attribute.name + "=" + attribute.value);
    return fmt::format("{}", fmt::join(parts, ", "));
}

std::string DistinguishedName::value(std::string_view name) const {
    const auto found = std::find_if(attributes_.begin(), attributes_.end(),
                                    [&](const NameAttribute& attribute) { return attribute.name == name; });
    return found == attributes_.end() ? std::string() : found->value;
}

Sentence DistinguishedName::why_not_requestable() const {
    if (attributes_.empty()) return {"subject-empty", {}};
    for (const NameAttribute& attribute : attributes_) {
        if (Sentence reason = why_not(attribute); !reason.empty()) return reason;
        Sentence swallowed = exact_ ? Sentence() : why_swallowed(attribute.value);
        if (!swallowed.empty()) return swallowed;
        const auto times =
            std::count_if(attributes_.begin(), attributes_.end(),
                          [&](const NameAttribute& other) { return other.name == attribute.name; });
        if (attribute.name == "OU" ? times > ZV_ORG_UNITS : times > 1)
            return {"attribute-repeated", {{"name", attribute.name}, {"times", long{times}}}};
    }
    const std::size_t length = oid_form().size() + attributes_.size();
    if (length > ZV_SUBJECT_MAX)
        return {"subject-too-long",
                {{"characters", as_value(length)}, {"over", as_value(length - ZV_SUBJECT_MAX)}}};
    return {};
}

} // namespace zvhost
