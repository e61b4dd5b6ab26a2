#include "simcard/module/rules.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace simcard {
namespace {

std::optional<CK_ULONG> number(std::string_view text) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    }
    CK_ULONG value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

// The part in front of a separator; the rest stays in `text`.
std::string_view take(std::string_view& text, std::string_view separators) {
    const auto end = std::min(text.find_first_of(separators), text.size());
    const auto part = trimmed(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
    return part;
}

bool parse_when(Rule& rule, std::string_view text) {
    rule.and_later = text == "*" || text.ends_with('+');
    if (text == "*") return true;
    if (rule.and_later) text.remove_suffix(1);
    rule.first = number(text).value_or(0);
    return rule.first != 0;
}

std::optional<Deed> absurdity(std::string_view kind) {
    constexpr std::pair<std::string_view, Absurdity> kinds[] = {{"count", Absurdity::count},
                                                                {"length", Absurdity::length},
                                                                {"unavailable", Absurdity::unavailable},
                                                                {"text", Absurdity::text},
                                                                {"brief", Absurdity::brief}};
    for (const auto& [name, value] : kinds)
        if (name == kind) return value;
    return std::nullopt;
}

template <class D> std::optional<Deed> with_number(std::string_view value) {
    const auto parsed = number(value);
    return parsed ? std::optional<Deed>(D{*parsed}) : std::nullopt;
}

template <class D> std::optional<Deed> with_slot(std::string_view value) {
    return value.empty() ? std::optional<Deed>(D{std::nullopt}) : with_number<D>(value);
}

template <class D> std::optional<Deed> alone(std::string_view value) {
    return value.empty() ? std::optional<Deed>(D{}) : std::nullopt;
}

std::optional<Deed> parse_deed(std::string_view name, std::string_view value) {
    using Reader = std::optional<Deed> (*)(std::string_view);
    constexpr std::pair<std::string_view, Reader> deeds[] = {
        {"answer", with_number<deed::Answer>},
        {"do-and-answer", with_number<deed::DoAndAnswer>},
        {"absurd", absurdity},
        {"take-out", with_slot<deed::TakeOut>},
        {"put-back", with_slot<deed::PutBack>},
        {"delay", with_number<deed::Delay>},
        {"kill-before", alone<deed::KillBefore>},
        {"kill-after", alone<deed::KillAfter>},
    };
    for (const auto& [known, read] : deeds)
        if (known == name) return read(value);
    return std::nullopt;
}

// Reads "FUNCTION:WHEN:DEED" or "FUNCTION:WHEN:DEED:VALUE".
std::optional<Rule> parse_rule(std::string_view text) {
    Rule rule;
    const auto function = take(text, ":");
    rule.function = pkcs11::function_named(function);
    if (!rule.function && function != "*") return std::nullopt;
    if (!parse_when(rule, take(text, ":"))) return std::nullopt;
    const auto name = take(text, ":");
    const auto deed = parse_deed(name, trimmed(text));
    if (!deed) return std::nullopt;
    rule.deed = *deed;
    return rule;
}

} // namespace

bool Rule::is_for(Function called) {
    if (function && *function != called) return false;
    ++seen;
    return seen == first || (and_later && seen > first);
}

ParsedRules parse_rules(std::string_view text) {
    ParsedRules parsed;
    for (int place = 1; !text.empty(); ++place) {
        const auto part = take(text, ";\n");
        if (part.empty()) continue;
        const auto rule = parse_rule(part);
        if (!rule) return {{}, place};
        parsed.rules.push_back(*rule);
    }
    return parsed;
}

} // namespace simcard
