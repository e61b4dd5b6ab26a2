#include "words/help_desk_file.h"

#include "words/card_json.h"
#include "words/examination.h"
#include "words/words.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace words {
namespace {

std::string section(const std::string& name, const std::string& text) {
    const char* end = text.empty() || text.back() == '\n' ? "" : "\n";
    return fmt::format("\n== {} ==\n{}{}", name, text, end);
}

std::string cards_text(const zvhost::Examination& examination) {
    Json cards = Json::array();
    for (const zvhost::CardStatus& card : examination.cards)
        cards.push_back(contents_json(card.list));
    return cards.dump(2, ' ', false, Json::error_handler_t::replace);
}

} // namespace

std::string help_desk_text(const zvhost::Examination& examination, bool with_names,
                           const std::string& program) {
    const zvhost::Mask mask(examination, with_names);
    std::string text =
        of(zvhost::Sentence(with_names ? "help-desk-with-names" : "help-desk-masked", {})) + "\n";
    text += section("program", program);
    text += section("findings", mask(in_lines(examination)));
    text += section("cards", mask(cards_text(examination)));
    for (const auto& [name, part] : zvhost::help_desk_texts())
        text += section(name, name == "log" ? mask.of_log(part) : mask(part));
    return text;
}

} // namespace words
