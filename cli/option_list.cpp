#include "cli/option_list.h"

#include "cli/waiting.h"
#include "words/language.h"
#include "words/words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

namespace cli {
namespace {

// Turns the name of a kind into its number, which is what the parser reads into an enumeration.
std::string kind_number(std::string& word) {
    for (const zv::KindRow& row : zv::KINDS) {
        if (word != row.name) continue;
        word = std::to_string(static_cast<int>(row.id));
        return {};
    }
    return words::of(Sentence{"kind-unknown", {{"word", word}}});
}

constexpr int LONGEST_WAIT = 9999999;

// What --help shows in the place of a value that may be left out.
constexpr const char* FOR_EVER = N_("SECONDS");

bool is_number(const std::string& word, int most) {
    constexpr std::size_t longest = 7; // digits, which an int holds
    return !word.empty() && word.size() <= longest &&
           word.find_first_not_of("0123456789") == std::string::npos && std::stoi(word) <= most;
}

// Says what is wrong with a word that is no number.
std::string not_counted(const std::string& word, int most) {
    if (is_number(word, most)) return {};
    return words::of(Sentence{"number-wanted", {{"most", long{most}}, {"word", word}}});
}

CLI::Validator up_to(int most) {
    return CLI::Validator([most](const std::string& word) { return not_counted(word, most); }, "");
}

CLI::Validator one_of(const std::vector<std::string>& known) {
    const auto check = [known](const std::string& word) {
        if (std::find(known.begin(), known.end(), word) != known.end()) return std::string();
        return words::of(Sentence{"word-unknown", {{"known", known}, {"word", word}}});
    };
    return CLI::Validator(check, "");
}

} // namespace

void OptionList::flag(const char* name, bool& field, const char* meaning) {
    command_.add_flag(name, field, words::tr(meaning));
}

void OptionList::text(const char* name, const char* shown, std::string& field, const char* meaning) {
    command_.add_option(name, field, words::tr(meaning))->type_name(words::tr(shown));
}

void OptionList::descriptor(const char* name, int& field, const char* meaning) {
    constexpr int most = 65535;
    command_.add_option(name, field, words::tr(meaning))->type_name("N")->check(up_to(most));
}

void OptionList::wait(const char* name, std::function<bool(const Sentence&)>& field, const char* meaning) {
    const auto take = [&field](const std::string& value) {
        std::optional<std::chrono::seconds> longest;
        if (value != FOR_EVER) longest = std::chrono::seconds(std::stoul(value));
        field = waiting(longest);
    };
    const auto check = [](const std::string& value) {
        return value == FOR_EVER ? std::string() : not_counted(value, LONGEST_WAIT);
    };
    auto* option = command_.add_flag(fmt::format("{}{{{}}}", name, FOR_EVER));
    option->description(words::tr(meaning))->check(CLI::Validator(check, ""))->each(take);
}

void OptionList::days(const char* name, int& field, const char* meaning) {
    constexpr int most = 36500; // a century
    command_.add_option(name, field, words::tr(meaning))
        ->type_name("N")
        ->check(up_to(most))
        ->capture_default_str();
}

void OptionList::words(const char* name, const char* shown, std::vector<std::string>& field,
                       const std::vector<std::string>& known, const char* meaning) {
    command_.add_option(name, field, fmt::format("{}{}", words::tr(meaning), fmt::join(known, ", ")))
        ->type_name(words::tr(shown))
        ->delimiter(',')
        ->check(one_of(known));
}

void OptionList::argument(const char* shown, std::string& field, const char* meaning) {
    command_.add_option(shown, field, words::tr(meaning))->required()->type_name("");
}

void OptionList::language(const char* name, std::string& field) {
    const std::vector<std::string> known(words::LANGUAGES.begin(), words::LANGUAGES.end());
    command_.add_option(name, field, words::tr("Language of what is said (else that of the environment)"))
        ->type_name(fmt::format("{}", fmt::join(known, "|")))
        ->check(one_of(known));
}

void OptionList::kind(const char* shown, Kind& field, const char* meaning) {
    command_.add_option(shown, field, words::tr(meaning))
        ->required()
        ->type_name("")
        ->transform(CLI::Validator(kind_number, "", "kind"));
}

} // namespace cli
