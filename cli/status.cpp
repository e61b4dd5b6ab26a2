#include "cli/commands.h"
#include "cli/listed.h"
#include "words/words.h"

#include <nlohmann/json.hpp>

namespace cli {
namespace {

std::string status_in_words(const CardStatus& status) {
    std::string text = cli::in_words(status.list);
    if (!status.uncertified.empty())
        text += words::of({"list-uncertified", {{"keys", status.uncertified}}}) + "\n";
    if (status.services_pending) text += words::of(Sentence("list-services-by-journal", {})) + "\n";
    return text;
}

Json status_json(const CardStatus& status) {
    Json json = contents_json(status.list);
    if (status.list.card.services_card) json["services_pending"] = nullptr;
    json["journal"] =
        status.list.card.services_card ? Json{{"services_pending", status.services_pending}} : Json();
    json["uncertified"] = status.uncertified;
    return json;
}

} // namespace

Report run_status(const StatusOptions& options) {
    const CardStatus status = look_at_card(options.choice, options.days);
    Report report;
    report.exit = status.exit;
    report.text = status_in_words(status);
    report.json = status_json(status);
    report.advice = status.list.advice;
    return report;
}

} // namespace cli
