#include "host/doctor.h"

#include "host/doctor_looks.h"

#include <algorithm>

namespace zvhost {

const char* word_for(Health health) {
    switch (health) {
    case Health::right:
        return "right";
    case Health::warning:
        return "warning";
    case Health::wrong:
        return "wrong";
    case Health::unknown:
        return "unknown";
    }
    return "";
}

bool Examination::any_wrong() const {
    return std::any_of(findings.begin(), findings.end(),
                       [](const Finding& finding) { return finding.health == Health::wrong; });
}

void Looks::add(const char* topic, Health health, const char* sentence, Values values,
                std::vector<Advice> advice) {
    examination.findings.push_back({topic, health, Sentence(sentence, std::move(values)), std::move(advice)});
}

void Looks::add(const char* topic, Health health, const Error& error) {
    examination.findings.push_back({topic, health, error.sentence, error.advice});
}

Advice advise(const char* key, const char* sentence, const Values& values) {
    return {key, Sentence(sentence, values), values};
}

Examination examine(const std::string& module_dir) {
    Looks looks{.module_dir = module_dir, .now = std::time(nullptr)};
    look_at_service(looks);
    look_at_table(looks);
    look_at_readers(looks);
    look_at_modules(looks);
    look_at_cards(looks);
    look_at_clock(looks);
    look_at_log(looks);
    look_at_temporary_files(looks);
    look_at_programs(looks);
    look_at_versions(looks);
    return std::move(looks.examination);
}

} // namespace zvhost
