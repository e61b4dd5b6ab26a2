#include "desktop/remedies.h"

#include "desktop/text.h"

#include <algorithm>
#include <functional>

namespace desktop {
namespace {

using zvhost::Advice;

// What is wanted otherwise, where an advice of that name is followed.
struct Change {
    const char* advice;
    const char* label; // of the button, as the advice's sentence names it
    std::function<void(Errand&)> make;
};

const std::vector<Change>& changes() {
    static const std::vector<Change> all = {
        {"force", "window-renew-anyway", [](Errand& errand) { errand.wishes.request.force = true; }},
        {"new-pair", "window-new-pair", [](Errand& errand) { errand.wishes.request.new_pair = true; }},
        {"without-new-pair", "window-without-new-pair",
         [](Errand& errand) { errand.wishes.request.new_pair = false; }},
        {"remove-old", "window-remove-old", [](Errand& errand) { errand.wishes.remove_old = true; }},
        {"without-remove-old", "window-keep-old", [](Errand& errand) { errand.wishes.remove_old = false; }},
    };
    return all;
}

const std::vector<std::string>& names_in(const Advice& advice, const char* value) {
    static const std::vector<std::string> none;
    for (const auto& [name, held] : advice.values)
        if (const auto* names = std::get_if<std::vector<std::string>>(&held);
            name == value && names != nullptr)
            return *names;
    return none;
}

void add_choices(std::vector<Remedy>& remedies, const Advice& advice, const Errand& errand) {
    for (const std::string& id : names_in(advice, "ids")) {
        remedies.push_back({text("window-replace", {{"id", id}}), Remedy::Goes::to_errand, errand});
        remedies.back().errand.wishes.replace = id;
    }
}

void add_remedies(std::vector<Remedy>& remedies, const Advice& advice, const Errand& errand) {
    if (advice.key == "new-pair") // which discards the one that waits: the last resort
        remedies.push_back({text("window-try-again"), Remedy::Goes::to_errand, errand});
    for (const Change& change : changes())
        if (advice.key == change.advice) {
            remedies.push_back({text(change.label), Remedy::Goes::to_errand, errand});
            change.make(remedies.back().errand);
        }
    if (advice.key == "replace") add_choices(remedies, advice, errand);
    if (advice.key == "accept") {
        remedies.push_back({text("window-install-anyway"), Remedy::Goes::to_errand, errand});
        remedies.back().errand.wishes.accept = names_in(advice, "accept");
    }
}

// The certificate was looked at, and is of no use as it is: nothing else was advised.
bool is_no_answer(const zvhost::Error& error) {
    return error.exit == zvhost::Exit::refused && error.advice.size() == 1 &&
           error.advice.front().key == "other-file";
}

} // namespace

std::vector<Remedy> remedies_for(const zvhost::Error& error, const Errand& errand) {
    std::vector<Remedy> remedies;
    for (const Advice& advice : error.advice)
        add_remedies(remedies, advice, errand);
    if (error.exit == zvhost::Exit::nothing_due) return remedies;
    if (remedies.empty()) remedies.push_back({text("window-try-again"), Remedy::Goes::to_errand, errand});
    if (errand.certificate.empty()) return remedies;
    Remedy other{text("window-other-certificate"), Remedy::Goes::to_certificate, errand};
    other.errand.certificate.clear();
    remedies.insert(is_no_answer(error) ? remedies.begin() : remedies.end(), other);
    return remedies;
}

} // namespace desktop
