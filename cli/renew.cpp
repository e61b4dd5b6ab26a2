#include "cli/authority.h"
#include "cli/card_json.h"
#include "cli/carry_out.h"
#include "cli/commands.h"
#include "cli/pin_input.h"
#include "words/on_card.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

#include <memory>

namespace cli {
namespace {

std::unique_ptr<Authority> authority_of(const RenewOptions& options) {
    if (options.ca_command.empty()) return std::make_unique<AuthorityByFile>(options.from);
    return std::make_unique<AuthorityByCommand>(options.ca_command, options.answer());
}

std::string in_words(const Renewal& renewal) {
    const Values about = {{"kind", renewal.kind},     {"pair", renewal.pair},
                          {"file", renewal.request},  {"old", renewal.removed},
                          {"backup", renewal.backup}, {"now", words::of(renewal.now)}};
    if (!renewal.done) return words::of(Sentence{"renewal-under-way", about});
    std::string text = words::of(Sentence{"renewal-done", about});
    if (renewal.installed)
        text += "\n" + words::of(Sentence{
                           renewal.installed->signed_with ? "renewal-proved" : "renewal-compared", about});
    if (!renewal.removed.empty()) text += "\n" + words::of(Sentence{"renewal-removed", about});
    if (!renewal.backup.empty()) text += "\n" + words::of(Sentence{"renewal-backup", about});
    return text + "\n" + words::of(Sentence{"renewal-now", about});
}

Json as_json(const Renewal& renewal) {
    Json json = cli::as_json(renewal.card);
    json.update({{"kind", kind_name(renewal.kind)},
                 {"pair", renewal.pair},
                 {"request", renewal.request},
                 {"installed", renewal.installed.has_value()},
                 {"verified", renewal.installed ? Json(renewal.installed->signed_with) : Json()},
                 {"removed", or_null(renewal.removed)},
                 {"backup", or_null(renewal.backup)},
                 {"on_card", cli::as_json(renewal.now)}});
    return json;
}

Report renewal_report(const Renewal& renewal) {
    Report report;
    report.exit = renewal.done ? Exit::done : Exit::under_way;
    report.json = as_json(renewal);
    report.text = in_words(renewal);
    report.advice = renewal.advice;
    report.logged = true;
    report.unsaid = [now = renewal.now](Error& error) { error.card = now; };
    return report;
}

} // namespace

Report run_renew(const RenewOptions& options) {
    options.check();
    PinInput pin(options);
    const auto authority = authority_of(options);
    return carry_out(options, plan_renewal(options.renewal(), options.choice, pin, *authority),
                     [&](const Renewal& renewal) {
                         if (renewal.done) options.tidy();
                         return renewal_report(renewal);
                     });
}

} // namespace cli
