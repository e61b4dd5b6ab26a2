#include "words/quotes.h"

#include "words/quotes_table.h"

#include <optional>
#include <vector>

namespace words {
namespace {

constexpr std::string_view PLACE = "{}";

using Pieces = std::vector<std::string_view>;

// What stands between the places of a pattern.
Pieces pieces_of(std::string_view pattern) {
    Pieces pieces;
    for (std::size_t at = 0; (at = pattern.find(PLACE)) != std::string_view::npos;) {
        pieces.push_back(pattern.substr(0, at));
        pattern.remove_prefix(at + PLACE.size());
    }
    pieces.push_back(pattern);
    return pieces;
}

// What a text has at the places: its first piece begins the text, its last ends it, the others follow each other.
std::optional<Pieces> held_between(const Pieces& pieces, std::string_view text) {
    if (!text.starts_with(pieces.front())) return std::nullopt;
    text.remove_prefix(pieces.front().size());
    Pieces held;
    for (std::size_t i = 1; i < pieces.size(); ++i) {
        const bool last = i + 1 == pieces.size();
        if (last && !text.ends_with(pieces[i])) return std::nullopt;
        const std::size_t at = last ? text.size() - pieces[i].size() : text.find(pieces[i]);
        if (at == std::string_view::npos) return std::nullopt;
        held.push_back(text.substr(0, at));
        text.remove_prefix(at + pieces[i].size());
    }
    return text.empty() ? std::optional(held) : std::nullopt;
}

std::size_t length_of(const Pieces& pieces) {
    std::size_t length = 0;
    for (const std::string_view piece : pieces)
        length += piece.size();
    return length;
}

std::string understood(std::string_view text) {
    std::string meaning = meaning_of(text);
    return meaning.empty() ? std::string(text) : meaning;
}

std::string filled(const char* meaning, const Pieces& held) {
    const Pieces pieces = pieces_of(meaning);
    std::string text(pieces.front());
    for (std::size_t i = 1; i < pieces.size(); ++i)
        text.append(understood(held.at(i - 1))).append(pieces[i]);
    return text;
}

} // namespace

// Of several that fit, the one that says most.
std::string meaning_of(std::string_view italian) {
    std::string meaning;
    std::size_t most = 0;
    for (const Quote& quote : quotes()) {
        const Pieces pieces = pieces_of(quote.italian);
        const auto held = held_between(pieces, italian);
        if (!held || length_of(pieces) <= most) continue;
        most = length_of(pieces);
        meaning = filled(quote.meaning, *held);
    }
    return meaning == italian ? std::string() : meaning;
}

} // namespace words
