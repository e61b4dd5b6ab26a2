#include "cli/card_json.h"
#include "cli/commands.h"
#include "cli/inventory.h"

#include <algorithm>
#include <ctime>
#include <fmt/format.h>

namespace cli {
namespace {

/// A certificate that was replaced already is not due again.
struct Due {
    bool due = false;
    bool replaced = false;
};

Due due_of(const Inventory& inventory, const CertificateRecord& record, int days, std::time_t now) {
    const bool ending = ends_within(record.ends, days, now);
    const bool replaced = inventory.current(record.kind) != &record;
    return {ending && !replaced, replaced};
}

constexpr std::size_t longest_holder = 40;

// Cut between characters of UTF-8, not inside one.
std::string holder(const CertificateRecord& record) {
    std::string name = record.subject.value("CN");
    if (name.empty()) name = record.subject_text;
    if (name.size() <= longest_holder) return name;
    std::size_t end = longest_holder - 3;
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
            {"fiscal_code", record.fiscal_code},
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
        const bool under_way = record.kind == Kind::services && inventory.services_waiting;
        report.text += fmt::format("  {:<16}{:<{}}  {:<{}}  {:<10}  {:>5}{}\n", kind_name(record.kind),
                                   record.id, columns.id, holder(record), columns.name, day_of(record.ends),
                                   left, mark(due, left, under_way));
        report.json["certificates"].push_back(certificate_json(record, due, left));
    }
    if (inventory.certificates.empty()) report.text += "  (no certificates)\n";
    if (inventory.unreadable > 0)
        report.text += fmt::format("  ({} more cannot be read)\n", inventory.unreadable);
}

void say_what_is_due(std::string& text, const Json& certificates, const Inventory& inventory) {
    for (const Json& entry : certificates) {
        const bool services = entry["kind"] == kind_name(Kind::services);
        const bool waiting = services ? inventory.services_waiting : !inventory.waiting.empty();
        if (entry["due"].get<bool>() && !waiting)
            text += fmt::format("\nThe {0} certificate is due. Renew it:  zvrenew request {0} --out FILE",
                                entry["kind"].get<std::string>());
    }
}

void say_what_waits(std::string& text, const Inventory& inventory) {
    for (const WaitingPair& pair : inventory.waiting) {
        text += fmt::format("\nThe new {} pair {} waits for its certificate.\n"
                            "  When it has come:   zvrenew install CERTIFICATE",
                            kind_name(pair.kind), pair.id);
        if (inventory.current(pair.kind) != nullptr)
            text +=
                fmt::format("\n  To ask once more:   zvrenew request {} --out FILE   (the same pair is used)",
                            kind_name(pair.kind));
    }
    if (!inventory.services_waiting) return;
    const bool stored = inventory.current(Kind::services) != nullptr;
    text += "\nA request for the services certificate is under way.\n"
            "  When it has come:   zvrenew install CERTIFICATE";
    if (stored)
        text += " --remove-old\n"
                "  To ask once more:   zvrenew request services --out FILE   (the same keys are used)";
}

Report list_card(OpenedCard& card, const ListOptions& options) {
    const Inventory inventory = read_inventory(card, view_card(card));
    Report report;
    report.text = heading(card);
    report.json = card_json(card);
    report.json["certificates"] = Json::array();
    add_certificates(report, inventory, options.days);
    report.json["unreadable"] = inventory.unreadable;
    report.json["waiting"] = waiting_json(inventory);
    report.json["services_waiting"] = inventory.services_waiting;
    report.json["next"] = {{"signature", proposal_json(inventory.signature)},
                           {"authentication", proposal_json(inventory.authentication)}};
    say_what_is_due(report.text, report.json["certificates"], inventory);
    say_what_waits(report.text, inventory);
    return report;
}

} // namespace

Report run_list(const ListOptions& options) {
    OpenedCard card = open_card(options);
    return about_card(card, [&] { return list_card(card, options); });
}

} // namespace cli
