#include "cli/advice.h"
#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/inventory.h"

#include <fmt/format.h>

#include <algorithm>
#include <ctime>

namespace cli {
namespace {

// A certificate that was replaced already is not due again.
struct Due {
    bool due = false;
    bool replaced = false;
};

Due due_of(const Inventory& inventory, const CertificateRecord& record, int days, std::time_t now) {
    const bool ending = ends_within(record.ends, days, now);
    const bool replaced = inventory.current(record.kind) != &record;
    return {ending && !replaced, replaced};
}

constexpr std::size_t LONGEST_HOLDER = 40;

// Cut between characters of UTF-8, not inside one.
std::string holder(const CertificateRecord& record) {
    std::string name = record.subject.value("CN");
    if (name.empty()) name = record.subject_text;
    if (name.size() <= LONGEST_HOLDER) return name;
    std::size_t end = LONGEST_HOLDER - 3;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U)
        --end;
    return name.substr(0, end) + "...";
}

std::string mark(const Due& due, long days, bool under_way) {
    if (due.replaced) return "  replaced";
    const char* state = !due.due ? "" : days < 0 ? "  EXPIRED, due" : "  DUE";
    if (!under_way) return state;
    return fmt::format("{}{}request under way", state, due.due ? ", " : "  ");
}

struct Columns {
    std::size_t id = 10;
    std::size_t name = 6;
};

Columns widths(const Inventory& inventory) {
    Columns columns;
    for (const CertificateRecord& record : inventory.certificates) {
        columns.id = std::max(columns.id, record.id.size());
        columns.name = std::max(columns.name, holder(record).size());
    }
    return columns;
}

Json certificate_json(const CertificateRecord& record, const Due& due, long days) {
    return {{"kind", kind_name(record.kind)},
            {"id", record.id},
            {"subject", name_json(record.subject)},
            {"issuer", name_json(record.issuer)},
            {"serial", record.serial},
            {"tax_code", record.tax_code},
            {"iut", record.iut},
            {"policies", record.policies},
            {"notice", record.notice},
            {"key_identifier", record.key_identifier},
            {"not_before", instant(record.begins)},
            {"not_after", instant(record.ends)},
            {"days_left", days},
            {"due", due.due},
            {"replaced", due.replaced}};
}

std::string heading(const OpenedCard& card) {
    return fmt::format("Card {} (\"{}\") in {}\n", card.state.serial, card.state.label, card.place.reader);
}

void add_certificates(Report& report, const Inventory& inventory, int days) {
    const Columns columns = widths(inventory);
    const std::time_t now = std::time(nullptr);
    report.text += fmt::format("\n  {:<16}{:<{}}  {:<{}}  {:<10}  {:>5}\n", "KIND", "IDENTIFIER", columns.id,
                               "HOLDER", columns.name, "ENDS", "DAYS");
    for (const CertificateRecord& record : inventory.certificates) {
        const Due due = due_of(inventory, record, days, now);
        const long left = days_until(record.ends, now);
        const bool requested = record.kind == Kind::services && inventory.services_pending;
        report.text += fmt::format("  {:<16}{:<{}}  {:<{}}  {:<10}  {:>5}{}\n", kind_name(record.kind),
                                   record.id, columns.id, holder(record), columns.name, day_of(record.ends),
                                   left, mark(due, left, requested));
        report.json["certificates"].push_back(certificate_json(record, due, left));
    }
    if (inventory.certificates.empty()) report.text += "  (no certificates)\n";
    if (inventory.unreadable > 0)
        report.text += fmt::format("  ({} more cannot be read)\n", inventory.unreadable);
}

bool under_way(const Inventory& inventory, Kind kind) {
    return kind == Kind::services ? inventory.services_pending : inventory.pending_pair(kind) != nullptr;
}

bool none_free(const Inventory& inventory, Kind kind) {
    if (kind == Kind::services) return false;
    return (kind == Kind::signature ? inventory.signature : inventory.authentication).none_free;
}

Advice advice_on_due(const Inventory& inventory, Kind kind) {
    if (none_free(inventory, kind)) return free_an_identifier(kind);
    return {
        "request",
        fmt::format("The {0} certificate is due. Renew it:  zvrenew request {0} --out FILE", kind_name(kind)),
        {{"kind", kind_name(kind)}}};
}

void advise_on_pending(Report& report, const Inventory& inventory, const CardView& view,
                       const PendingPair& pair) {
    const Json values = {{"kind", kind_name(pair.kind)}, {"pair", pair.id}};
    report.advice.push_back({"install",
                             fmt::format("The new {} pair {} waits for its certificate.\n"
                                         "  When it has come:   zvrenew install CERTIFICATE",
                                         kind_name(pair.kind), pair.id),
                             values});
    if (view.wants_pin(pair.id))
        report.advice.push_back(leave_to_card_software(pair.id));
    else if (inventory.current(pair.kind) != nullptr)
        report.advice.push_back(
            {"request-again",
             fmt::format("  To ask once more:   zvrenew request {} --out FILE   (the same pair is used)",
                         kind_name(pair.kind)),
             values});
}

void advise_on_retired(Report& report, const RetiredPair& pair) {
    report.advice.push_back(
        {"card-software",
         fmt::format("The keys {} are what is left of a certificate that was removed (a copy: {}).\n"
                     "  The card's own software can remove them; nothing uses them.",
                     pair.id, pair.backup),
         {{"remove", Json::array({pair.id})}}});
}

void advise_on_services(Report& report, const Inventory& inventory) {
    const bool stored = inventory.current(Kind::services) != nullptr;
    const Json values = {{"kind", kind_name(Kind::services)}, {"pair", OWN_PAIR_ID}, {"remove_old", stored}};
    report.advice.push_back({"install",
                             fmt::format("A request for the services certificate is under way.\n"
                                         "  When it has come:   zvrenew install CERTIFICATE{}",
                                         stored ? " --remove-old" : ""),
                             values});
    if (stored)
        report.advice.push_back(
            {"request-again",
             "  To ask once more:   zvrenew request services --out FILE   (the same keys are used)",
             {{"kind", kind_name(Kind::services)}, {"pair", OWN_PAIR_ID}}});
}

Report list_card(OpenedCard& card, const ListOptions& options) {
    const CardView view = view_card(card);
    const Inventory inventory = read_inventory(card, view);
    Report report;
    report.text = heading(card);
    report.json = card_json(card);
    report.json["certificates"] = Json::array();
    add_certificates(report, inventory, options.days);
    report.json["unreadable"] = inventory.unreadable;
    report.json["pending"] = pending_json(inventory);
    report.json["retired"] = Json::array();
    for (const RetiredPair& pair : inventory.retired)
        report.json["retired"].push_back({{"id", pair.id}, {"backup", pair.backup}});
    report.json["services_pending"] = inventory.services_pending;
    report.json["next"] = {{"signature", proposal_json(inventory.signature)},
                           {"authentication", proposal_json(inventory.authentication)}};
    for (const CertificateRecord& record : inventory.certificates)
        if (due_of(inventory, record, options.days, std::time(nullptr)).due &&
            !under_way(inventory, record.kind))
            report.advice.push_back(advice_on_due(inventory, record.kind));
    for (const PendingPair& pair : inventory.pending)
        advise_on_pending(report, inventory, view, pair);
    for (const RetiredPair& pair : inventory.retired)
        advise_on_retired(report, pair);
    if (inventory.services_pending) advise_on_services(report, inventory);
    return report;
}

} // namespace

Report run_list(const ListOptions& options) {
    OpenedCard card = open_card(options);
    return about_card(card, [&] { return list_card(card, options); });
}

} // namespace cli
