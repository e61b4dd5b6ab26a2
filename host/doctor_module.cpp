#include "host/doctor_looks.h"
#include "host/front.h"
#include "host/module_folder.h"

#include <algorithm>
#include <filesystem>

namespace zvhost {
namespace {

using Stage = ModuleFacts::Stage;

const char* step_sentence(Stage step) {
    switch (step) {
    case Stage::loading:
        return "doctor-step-loading";
    case Stage::starting:
        return "doctor-step-starting";
    case Stage::listing:
        return "doctor-step-listing";
    case Stage::reading:
        return "doctor-step-reading";
    case Stage::ending:
    case Stage::done:
        return "doctor-step-ending";
    }
    return "";
}

bool is_own_folder(const std::filesystem::path& folder) {
    const auto own = own_folders();
    return std::any_of(own.begin(), own.end(),
                       [&](const auto& one) { return one.lexically_normal() == folder; });
}

// Where it was found says by which rule.
void tell_where(Looks& looks, const ExaminedCard& card) {
    const std::string folder = std::filesystem::path(card.module_path).parent_path();
    const char* sentence = "doctor-module-in-system";
    if (!looks.module_dir.empty())
        sentence = "doctor-module-where-told";
    else if (is_own_folder(folder))
        sentence = "doctor-module-beside-program";
    looks.add("module", Health::right, sentence, {{"module", card.module}, {"folder", folder}});
}

// False when there is no such module.
bool find_module(Looks& looks, ExaminedCard& card) {
    try {
        card.module_path = folder_of_module(card.module, looks.module_dir) / card.module;
        return true;
    } catch (const Error& error) {
        looks.add("module", Health::wrong, error);
        return false;
    }
}

void add_wrong(Looks& looks, const char* sentence, const Values& values, const char* advice) {
    looks.add("module", Health::wrong, sentence, values, {advise("module-software", advice, values)});
}

void tell_problem(Looks& looks, const std::string& path, const ModuleFacts& facts) {
    const Values where = {{"module", path}};
    const auto with = [&](const char* name, Value value) {
        Values values = where;
        values.emplace_back(name, std::move(value));
        return values;
    };
    if (facts.late)
        return add_wrong(looks, "doctor-module-hangs", with("seconds", long{MOST_SECONDS_OF_A_MODULE}),
                         "doctor-mend-module");
    if (facts.signal != 0) {
        Values values = with("signal", long{facts.signal});
        values.emplace_back("step", std::vector<Sentence>{Sentence(step_sentence(facts.reached), {})});
        return add_wrong(looks, "doctor-module-crashes", values, "doctor-mend-module");
    }
    if (!facts.is_module) return add_wrong(looks, "doctor-module-none", where, "doctor-mend-module");
    if (facts.reached == Stage::loading)
        return add_wrong(looks, "doctor-module-not-loaded", with("reason", facts.problem),
                         "doctor-complete-module");
    if (facts.started != CKR_OK)
        return add_wrong(looks, "doctor-module-not-started", with("code", static_cast<long>(facts.started)),
                         "doctor-mend-module");
    add_wrong(looks, "doctor-module-silent", where, "doctor-mend-module");
}

void use(Looks& looks, const std::string& path) {
    if (looks.modules.contains(path)) return;
    const ModuleFacts& facts = looks.modules[path] = ask_module(path);
    if (!facts.usable()) return tell_problem(looks, path, facts);
    looks.add("module", Health::right, "doctor-module", {{"module", path}});
    const std::string front = front_file();
    looks.add("module", Health::right, front.empty() ? "doctor-no-front" : "doctor-front",
              {{"module", path}, {"front", front}});
}

} // namespace

void look_at_modules(Looks& looks) {
    for (ExaminedCard& card : looks.cards) {
        if (card.module.empty() || !find_module(looks, card)) continue;
        tell_where(looks, card);
        use(looks, card.module_path);
    }
}

} // namespace zvhost
