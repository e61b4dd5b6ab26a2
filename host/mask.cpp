#include "host/help_desk.h"
#include "host/mask_words.h"

#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

namespace zvhost {
namespace {

constexpr std::size_t SHORTEST_NAME = 3;

void add_user(std::vector<std::string>& users, const char* name) {
    if (name != nullptr && std::string_view(name).size() > 1 && std::string_view(name) != "root")
        users.emplace_back(name);
}

void add_folder(std::vector<std::string>& homes, const char* folder) {
    if (folder != nullptr && std::string_view(folder).size() > 1) homes.emplace_back(folder);
}

// A full name in the user database ends at the first comma.
void add_full_name(std::vector<std::string>& names, const char* text) {
    const std::string full = text == nullptr ? "" : text;
    if (const auto end = std::min(full.find(','), full.size()); end > 0) add_name(names, full.substr(0, end));
}

void sort_by_length(std::vector<std::string>& texts) {
    std::sort(texts.begin(), texts.end(), [](const std::string& a, const std::string& b) {
        return a.size() != b.size() ? a.size() > b.size() : a < b;
    });
    texts.erase(std::unique(texts.begin(), texts.end()), texts.end());
}

// What the findings say of other users of this computer.
void add_owners(std::vector<std::string>& users, const Examination& examination) {
    for (const Finding& finding : examination.findings)
        for (const auto& [name, value] : finding.says.values)
            if (name == "owner")
                if (const auto* owner = std::get_if<std::string>(&value)) add_user(users, owner->c_str());
}

} // namespace

void add_name(std::vector<std::string>& names, const std::string& name) {
    if (name.size() >= SHORTEST_NAME) names.push_back(name);
    for (std::size_t at = 0; at < name.size();) {
        const auto end = std::min(name.find_first_of(" ,;/'", at), name.size());
        if (end - at >= SHORTEST_NAME) names.push_back(name.substr(at, end - at));
        at = end + 1;
    }
}

Mask::Mask(const Examination& examination, bool with_names) : with_names_(with_names) {
    for (const std::string& value : examination.personal)
        if (value.size() >= SHORTEST_NAME) names_.push_back(value);
    if (const passwd* entry = ::getpwuid(::getuid())) {
        add_user(users_, entry->pw_name);
        add_folder(homes_, entry->pw_dir);
        add_full_name(names_, entry->pw_gecos);
    }
    add_folder(homes_, std::getenv("HOME"));
    for (const char* variable : {"USER", "LOGNAME", "SUDO_USER"})
        add_user(users_, std::getenv(variable));
    add_owners(users_, examination);
    for (std::vector<std::string>* list : {&names_, &homes_, &users_})
        sort_by_length(*list);
}

std::string Mask::operator()(std::string text) const {
    text = without_pins(text);
    if (with_names_) return text;
    for (const std::string& home : homes_)
        text = replaced(text, home, "~", Where::anywhere);
    text = without_addresses(without_tax_codes(text));
    text = without_name_attributes(text);
    for (const std::string& name : names_)
        for (const std::string& form : forms_of(name))
            text = replaced(text, form, "[name]", Where::whole_word);
    for (const std::string& user : users_)
        text = replaced(text, user, "[user]", Where::whole_word);
    return text;
}

std::string Mask::of_log(std::string text) const {
    if (!with_names_) text = without_encoded(text);
    return (*this)(std::move(text));
}

} // namespace zvhost
