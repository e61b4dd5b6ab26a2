#include "host/install.h"

#include "cli/card_json.h"
#include "cli/carry_out.h"
#include "cli/commands.h"
#include "cli/pin_input.h"
#include "host/log_folder.h"
#include "words/on_card.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

Sentence proof_of(const Installed& installed) {
    return {installed.signed_with ? "renewal-proved" : "installed-compared", {{"pair", installed.pair}}};
}

Sentence old_of(const Installed& installed) {
    switch (installed.old) {
    case OldCertificateNow::none:
        return {};
    case OldCertificateNow::gone_before:
        return {"old-gone-before", {}};
    case OldCertificateNow::beside:
        return {"old-beside", {{"id", installed.replaces}}};
    case OldCertificateNow::under_the_same_identifier:
        return {"old-same-identifier", {{"id", installed.pair}}};
    case OldCertificateNow::removed:
        return installed.kind == Kind::services
                   ? Sentence{"installed-removed-certificate", {{"id", installed.pair}}}
                   : Sentence{"renewal-removed", {{"old", installed.removed}}};
    }
    return {};
}

std::string in_words(const Installed& installed) {
    std::string text = words::of({"renewal-done", {{"kind", installed.kind}, {"pair", installed.pair}}});
    std::vector<Sentence> lines{proof_of(installed), old_of(installed)};
    if (!installed.backup.empty()) lines.push_back({"renewal-backup", {{"backup", installed.backup}}});
    lines.push_back({"renewal-now", {{"now", words::of(installed.now)}}});
    for (const Sentence& line : lines)
        if (!line.empty()) text += "\n" + words::of(line);
    return text + "\nLog: " + log_path();
}

Json as_json(const Installed& installed) {
    Json json = cli::as_json(installed.card);
    json.update({{"kind", kind_name(installed.kind)},
                 {"stored", installed.pair},
                 {"verified", installed.signed_with},
                 {"replaces", or_null(installed.replaces)},
                 {"removed", installed.removed},
                 {"left", installed.left},
                 {"other_issuer", installed.other_issuer},
                 {"backup", or_null(installed.backup)},
                 {"on_card", cli::as_json(installed.now)},
                 {"mark_left", installed.mark_left}});
    return json;
}

Report installation_report(const Installed& installed) {
    Report report;
    report.json = as_json(installed);
    report.text = in_words(installed);
    report.advice = installed.advice;
    report.unsaid = [now = installed.now](Error& error) { error.card = now; };
    return report;
}

} // namespace

Report run_install(const InstallOptions& options) {
    PinInput pin(options);
    return carry_out(options, plan_install(options.wishes, options.choice, pin), installation_report);
}

} // namespace cli
