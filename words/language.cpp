#include "words/language.h"

#include <libintl.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <initializer_list>
#include <string_view>

namespace words {
namespace {

constexpr const char* DOMAIN = "zvrenew";

const char* spoken = LANGUAGES.front();

bool is_english() {
    return std::string_view(spoken) == LANGUAGES.front();
}

// The first of these that is set to something.
std::string_view setting(std::initializer_list<const char*> variables) {
    for (const char* variable : variables)
        if (const char* value = std::getenv(variable); value != nullptr && *value != '\0') return value;
    return {};
}

// "it" of "it_IT.UTF-8".
std::string_view language_in(std::string_view locale) {
    return locale.substr(0, locale.find_first_of("_.@"));
}

// The first of "it_IT:en" that there is; null: none.
const char* first_known(std::string_view wanted) {
    while (!wanted.empty()) {
        const std::string_view one = wanted.substr(0, wanted.find(':'));
        wanted.remove_prefix(std::min(one.size() + 1, wanted.size()));
        const auto* known = std::find(LANGUAGES.begin(), LANGUAGES.end(), language_in(one));
        if (known != LANGUAGES.end()) return *known;
    }
    return nullptr;
}

// gettext translates in any locale but "C". The user's own may be one that this machine does not have.
void leave_plain_locale() {
    for (const char* locale : {"C.UTF-8", "", "it_IT.UTF-8", "en_US.UTF-8"}) {
        const char* set = std::setlocale(LC_MESSAGES, locale);
        if (set != nullptr && std::string_view(set) != "C" && std::string_view(set) != "POSIX") return;
    }
}

} // namespace

std::string usual_language() {
    const std::string_view locale = setting({"LC_ALL", "LC_MESSAGES", "LANG"});
    if (locale.empty() || locale == "C" || locale == "POSIX") return LANGUAGES.front();
    const char* known = first_known(setting({"LANGUAGE"}));
    if (known == nullptr) known = first_known(locale);
    return known == nullptr ? LANGUAGES.front() : known;
}

void speak(const std::string& language, const std::filesystem::path& folder) {
    const auto* known = std::find(LANGUAGES.begin(), LANGUAGES.end(), language);
    spoken = known == LANGUAGES.end() ? LANGUAGES.front() : *known;
    if (is_english()) return;
    leave_plain_locale();
    (void)::setenv("LANGUAGE", language.c_str(), 1);
    (void)::bindtextdomain(DOMAIN, folder.c_str());
    // Whatever the locale's characters are: terminals and JSON take these.
    (void)::bind_textdomain_codeset(DOMAIN, "UTF-8");
    (void)::bind_textdomain_codeset("libc", "UTF-8");
}

std::string spoken_language() {
    return spoken;
}

std::string tr(const char* english) {
    return !is_english() && *english != '\0' ? ::dgettext(DOMAIN, english) : english;
}

} // namespace words
