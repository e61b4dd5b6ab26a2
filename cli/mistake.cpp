#include "cli/mistake.h"

#include "cli/engine.h"
#include "words/language.h"

#include <CLI/CLI.hpp>

namespace cli {
namespace {

constexpr std::string_view MIDDLE = ": ";

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

std::string behind(const std::string& text, std::string_view mark) {
    const std::size_t at = text.find(mark);
    return at == std::string::npos ? text : text.substr(at + mark.size());
}

// "--days" of "--days: 1 required INT missing", "KIND" of "KIND is required".
std::string name_in(const std::string& text) {
    return words::tr(text.substr(0, text.find_first_of(": ")).c_str());
}

Sentence about(const char* id, const std::string& text) {
    return {id, {{"name", name_in(text)}}};
}

Sentence missing(const CLI::App& parser, const std::string& text) {
    if (!contains(text, "subcommand")) return about("argument-missing", text);
    const std::vector<std::string> words = parser.remaining();
    return words.empty() ? Sentence{"command-missing", {}}
                         : Sentence{"command-unknown", {{"word", words.front()}}};
}

Sentence wrong_number(const std::string& text) {
    if (contains(text, "override")) return about("takes-no-value", text);
    return about(contains(text, "At Most") ? "given-again" : "value-missing", text);
}

// "Could not convert: --pin-fd = x", "--json: Should be true/false or a number"
Sentence unfit(const std::string& text) {
    const std::string rest = behind(text, MIDDLE);
    if (!contains(rest, " = ")) return about("takes-no-value", text);
    return {"value-unfit", {{"name", name_in(rest)}, {"value", behind(rest, " = ")}}};
}

} // namespace

// The parser's kinds of mistakes are told apart by their types; what they are about stands in its English texts alone.
Sentence mistake_in(const CLI::App& parser, const CLI::ParseError& error) {
    const std::string text = error.what();
    if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr)
        return {"words-unexpected", {{"words", parser.remaining(true)}}};
    if (dynamic_cast<const CLI::RequiredError*>(&error) != nullptr) return missing(parser, text);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) return wrong_number(text);
    if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr) return unfit(text);
    if (dynamic_cast<const CLI::ValidationError*>(&error) != nullptr)
        return {"value-refused", {{"name", name_in(text)}, {"reason", behind(text, MIDDLE)}}};
    return {"mistyped", {{"text", text}}};
}

} // namespace cli
