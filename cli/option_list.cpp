#include "cli/option_list.h"

#include "cli/waiting.h"
#include "words/language.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

namespace cli {
namespace {

// Turns the name of a kind into its number, which is what the parser reads into an enumeration.
std::string kind_number(std::string& word) {
    for (const zv::KindRow& row : zv::KINDS) {
        if (word != row.name) continue;
        word = std::to_string(static_cast<int>(row.id));
        return {};
    }
    return "signature, authentication or services, not \"" + word + "\"";
}

// What --help shows in the place of a value that may be left out.
constexpr const char* FOR_EVER = "SECONDS";

} // namespace

void OptionList::flag(const char* name, bool& field, const char* meaning) {
    command_.add_flag(name, field, words::tr(meaning));
}

void OptionList::text(const char* name, const char* shown, std::string& field, const char* meaning) {
    command_.add_option(name, field, words::tr(meaning))->type_name(shown);
}

void OptionList::descriptor(const char* name, int& field, const char* meaning) {
    command_.add_option(name, field, words::tr(meaning))
        ->type_name("N")
        ->check(CLI::NonNegativeNumber.description(""));
}

void OptionList::wait(const char* name, std::function<bool(const Sentence&)>& field, const char* meaning) {
    const auto take = [&field](const std::string& value) {
        std::optional<std::chrono::seconds> longest;
        if (value != FOR_EVER) longest = std::chrono::seconds(std::stoul(value));
        field = waiting(longest);
    };
    const auto check = [](const std::string& value) {
        const bool number = value.size() < 8 && value.find_first_not_of("0123456789") == std::string::npos;
        return number || value == FOR_EVER ? std::string() : "a number of seconds, not \"" + value + "\"";
    };
    auto* option = command_.add_flag(fmt::format("{}{{{}}}", name, FOR_EVER));
    option->description(words::tr(meaning))->check(CLI::Validator(check, ""))->each(take);
}

void OptionList::days(const char* name, int& field, const char* meaning) {
    constexpr int most = 36500; // a century
    command_.add_option(name, field, words::tr(meaning))
        ->type_name("N")
        ->check(CLI::Range(0, most).description(""))
        ->capture_default_str();
}

void OptionList::words(const char* name, const char* shown, std::vector<std::string>& field,
                       const std::vector<std::string>& known, const char* meaning) {
    command_.add_option(name, field, fmt::format("{}{}", words::tr(meaning), fmt::join(known, ", ")))
        ->type_name(shown)
        ->delimiter(',')
        ->check(CLI::IsMember(known).description(""));
}

void OptionList::argument(const char* shown, std::string& field, const char* meaning) {
    command_.add_option(shown, field, words::tr(meaning))->required()->type_name("");
}

void OptionList::language(const char* name, std::string& field) {
    const std::vector<std::string> known(words::LANGUAGES.begin(), words::LANGUAGES.end());
    command_.add_option(name, field, words::tr("Language of what is said (else that of the environment)"))
        ->type_name(fmt::format("{}", fmt::join(known, "|")))
        ->check(CLI::IsMember(known).description(""));
}

void OptionList::kind(const char* shown, Kind& field, const char* meaning) {
    command_.add_option(shown, field, words::tr(meaning))
        ->required()
        ->type_name("")
        ->transform(CLI::Validator(kind_number, "", "kind"));
}

} // namespace cli
