#include "simcard/common/card.h"

#include "simcard/common/problem.h"

#include <ini.h>

#include <algorithm>
#include <charconv>
#include <exception>
#include <variant>

namespace simcard {
namespace {

struct TextField {
    std::string Card::*member;
    std::size_t limit;
};
using NumberField = unsigned long Card::*;
using OptionalNumberField = std::optional<unsigned long> Card::*;
using FlagField = bool Card::*;

struct Field {
    const char* key;
    std::variant<TextField, NumberField, OptionalNumberField, FlagField> member;
};

constexpr std::size_t UNBOUNDED = 1000;

const Field FIELDS[] = {
    {"reader", TextField{&Card::reader, 64}},
    {"atr", TextField{&Card::atr, UNBOUNDED}},
    {"serial", TextField{&Card::serial, 16}},
    {"profile", TextField{&Card::profile, UNBOUNDED}},
    {"label", TextField{&Card::label, 32}},
    {"token", TextField{&Card::token, 16}},
    {"pin_tries_left", &Card::pin_tries_left},
    {"pin_tries_max", &Card::pin_tries_max},
    {"inserted", &Card::inserted},
    {"insertions", &Card::insertions},
    {"latency_us", &Card::latency_us},
    {"capacity", &Card::capacity},
    {"memory_left", &Card::memory_left},
    {"pin_each_signature", TextField{&Card::pin_each_signature, UNBOUNDED}},
    {"signature_pin", TextField{&Card::signature_pin, UNBOUNDED}},
    {"keypad", &Card::keypad},
};

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

[[noreturn]] void refuse(std::string_view key, const std::string& why) {
    throw CardProblem("card.ini: \"" + std::string(key) + "\" " + why + ".");
}

// Puts a value into the member that it is for, and gives a member's value as text.
struct Access {
    Card& card;
    const char* key;

    void put(const TextField& field, std::string_view value) const {
        if (value.size() > field.limit)
            refuse(key, "is longer than " + std::to_string(field.limit) + " bytes");
        card.*field.member = value;
    }
    void put(NumberField field, std::string_view value) const { card.*field = number(value); }
    void put(OptionalNumberField field, std::string_view value) const {
        card.*field = value.empty() ? std::optional<unsigned long>() : number(value);
    }
    void put(FlagField field, std::string_view value) const {
        if (value != "yes" && value != "no") refuse(key, "is neither yes nor no");
        card.*field = value == "yes";
    }

    [[nodiscard]] unsigned long number(std::string_view value) const {
        unsigned long read = 0;
        const char* end = value.data() + value.size();
        const auto [rest, error] = std::from_chars(value.data(), end, read);
        if (error != std::errc{} || rest != end) refuse(key, "is not a number");
        return read;
    }
};

std::string value_of(const Card& card, const Field& field) {
    if (const auto* text = std::get_if<TextField>(&field.member)) return card.*text->member;
    if (const auto* number = std::get_if<NumberField>(&field.member)) return std::to_string(card.**number);
    if (const auto* number = std::get_if<OptionalNumberField>(&field.member))
        return card.**number ? std::to_string(*(card.**number)) : "";
    return card.*std::get<FlagField>(field.member) ? "yes" : "no";
}

void put_line(Card& card, std::string_view key, std::string_view value) {
    for (const Field& field : FIELDS)
        if (key == field.key) {
            const Access access{card, field.key};
            return std::visit([&](const auto& member) { access.put(member, value); }, field.member);
        }
    card.others.emplace_back(key, value);
}

// What inih has read so far. It is C: an exception stops here, and ends the reading.
struct Reading {
    std::string_view rest;
    std::vector<std::string_view> lines;
    Card card;
    std::exception_ptr problem;
};

// Gives inih the next line: without the blanks in front, by which it would take it for the rest of the one before, and
// whole, or not at all.
char* next_line(char* room, int size, void* self) {
    auto& reading = *static_cast<Reading*>(self);
    if (reading.rest.empty() || reading.problem) return nullptr;
    const auto end = std::min(reading.rest.find('\n'), reading.rest.size());
    const auto line = reading.lines.emplace_back(trimmed(reading.rest.substr(0, end)));
    reading.rest.remove_prefix(std::min(end + 1, reading.rest.size()));
    const auto longest = static_cast<std::size_t>(size) - 3;
    if (line.size() > longest)
        reading.problem = std::make_exception_ptr(
            CardProblem("card.ini: a line is longer than " + std::to_string(longest) + " bytes."));
    *std::copy_n(line.begin(), std::min(line.size(), longest), room) = '\0';
    return room;
}

int take(void* self, const char* section, const char* key, const char* value) {
    auto& reading = *static_cast<Reading*>(self);
    try {
        if (*section != '\0') refuse("[" + std::string(section) + "]", "has no value");
        put_line(reading.card, key, value);
    } catch (...) {
        if (!reading.problem) reading.problem = std::current_exception();
    }
    return 1;
}

void append_line(std::string& text, std::string_view key, const std::string& value) {
    if (value.find_first_of("\r\n") != std::string::npos) refuse(key, "has a line break");
    if (value != trimmed(value)) refuse(key, "starts or ends with a blank");
    text.append(key).append(" = ").append(value).append("\n");
}

} // namespace

Card parse_card(std::string_view text) {
    Reading reading{text, {}, {}, nullptr};
    const int wrong = ini_parse_stream(next_line, &reading, take, &reading);
    if (reading.problem) std::rethrow_exception(reading.problem);
    if (wrong != 0) refuse(reading.lines.at(static_cast<std::size_t>(wrong) - 1), "has no value");
    const Card& card = reading.card;
    if (card.reader.empty()) refuse("reader", "is missing");
    if (card.pin_tries_left > card.pin_tries_max) refuse("pin_tries_left", "is above pin_tries_max");
    return card;
}

std::string card_text(const Card& card) {
    std::string text;
    for (const Field& field : FIELDS)
        append_line(text, field.key, value_of(card, field));
    for (const auto& [key, value] : card.others)
        append_line(text, key, value);
    Card read = parse_card(text);
    read.folder = card.folder;
    if (read != card) throw CardProblem("card.ini: a value has a semicolon behind a blank.");
    return text;
}

} // namespace simcard
