#include "cli/rehearsal.h"

#include "words/language.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <utility>

namespace cli {
namespace {

constexpr const char* REQUEST_FILE = "request.b64";
constexpr const char* CERTIFICATE_FILE = "certificate.pem";

constexpr const char* RENEW = "renew";
constexpr const char* ISSUE = "issue";

using Words = std::vector<std::string>;

Words renew_words(const RehearseOptions& options) {
    Words words = {RENEW, kind_name(options.kind), "--to", REQUEST_FILE, "--from", CERTIFICATE_FILE};
    if (!options.certificate.empty()) words.insert(words.end(), {"--certificate", options.certificate});
    if (options.force) words.emplace_back("--force");
    if (options.remove_old) words.emplace_back("--remove-old");
    if (const std::string spoken = words::spoken_language(); spoken != words::usual_language())
        words.insert(words.end(), {"--lang", spoken});
    if (options.days != USUAL_DAYS) words.insert(words.end(), {"--days", std::to_string(options.days)});
    return words;
}

// The simulated authority's name of a kind.
std::string kind_at_authority(Kind kind) {
    return kind == Kind::services ? "cns" : kind_name(kind);
}

// As a person does it: the command that ends when the authority is to answer, the answer, the same command again.
std::vector<RehearsedStep> renew_on(const Twin& twin, const RehearseOptions& options) {
    const Words words = renew_words(options);
    const std::string command = fmt::format("zvrenew {}", fmt::join(words, " "));
    std::vector<RehearsedStep> steps{RehearsedStep{RENEW, command, twin.renew(words)}};
    if (steps.back().result.exit != static_cast<int>(Exit::under_way)) return steps;
    steps.push_back({ISSUE, {}, twin.issue(REQUEST_FILE, kind_at_authority(options.kind), CERTIFICATE_FILE)});
    if (steps.back().result.exit == 0) steps.push_back({RENEW, command, twin.renew(words)});
    return steps;
}

} // namespace

Exit Rehearsal::exit() const {
    switch (steps.back().result.exit) {
    case 0:
        return Exit::done;
    case static_cast<int>(Exit::refused):
        return Exit::refused;
    case static_cast<int>(Exit::nothing_due):
        return Exit::nothing_due;
    default:
        return Exit::failed;
    }
}

Rehearsal rehearse(const RehearseOptions& options, PublicCard card, const SimulatedCard& programs,
                   const HeldSignals& signals) {
    const Twin twin(card, programs, signals);
    Rehearsal rehearsal{std::move(card), options.kind, {}, twin.objects(), {}};
    rehearsal.steps = renew_on(twin, options);
    rehearsal.after = twin.objects();
    return rehearsal;
}

} // namespace cli
