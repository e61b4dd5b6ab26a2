#include "host/install.h"

#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/on_card.h"
#include "cli/pin_input.h"
#include "cli/plan_shown.h"
#include "cli/progress_lines.h"
#include "host/log_folder.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <nlohmann/json.hpp>

namespace cli {
namespace {

std::string proved_in_words(const Installed& installed) {
    if (installed.signed_with)
        return fmt::format("Signed with {} and verified with the new certificate.", installed.pair);
    return fmt::format(
        "The key {} wants a PIN before each signature. The card's was refused, or not sent on its last "
        "try:\nthe key was compared with the new certificate instead. It may have a PIN of its own.",
        installed.pair);
}

std::string old_in_words(const Installed& installed) {
    switch (installed.old) {
    case OldCertificateNow::none:
        return {};
    case OldCertificateNow::gone_before:
        return "\nThe old certificate is no longer on the card.";
    case OldCertificateNow::beside:
        return fmt::format("\nThe old certificate {} is still on the card.", installed.replaces);
    case OldCertificateNow::under_the_same_identifier:
        return fmt::format("\nThe old certificate is still on the card, under the same identifier {}: "
                           "programs may take it for the new\none. Only the card's own software can "
                           "remove it now; --remove-old does so before storing.",
                           installed.pair);
    case OldCertificateNow::removed:
        return installed.kind == Kind::services
                   ? fmt::format("\nRemoved: the old certificate {}.", installed.pair)
                   : fmt::format("\nRemoved: {}.", fmt::join(installed.removed, ", "));
    }
    return {};
}

std::string in_words(const Installed& installed) {
    std::string text = fmt::format("The new {0} certificate is on the card, with its keys, as {1}.\n"
                                   "{2}{3}",
                                   kind_name(installed.kind), installed.pair, proved_in_words(installed),
                                   old_in_words(installed));
    if (!installed.backup.empty())
        text += fmt::format("\nA copy of the old certificate: {}", installed.backup);
    return text + fmt::format("\nNow on the card: {}\nLog: {}", cli::in_words(installed.now), log_path());
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

} // namespace

Report run_install(const InstallOptions& options) {
    PinInput pin(options);
    ProgressLines progress;
    PlannedInstall planned = plan_install(options.wishes, options.choice, pin);
    if (auto plan = plan_alone(options, planned.plan())) return *plan;
    const Installed installed = planned.apply(progress);
    Report report;
    report.json = as_json(installed);
    report.text = in_words(installed);
    report.advice = installed.advice;
    report.unsaid = [now = installed.now](Error& error) { error.card = now; };
    return report;
}

} // namespace cli
