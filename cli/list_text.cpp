#include "cli/listed.h"

#include <fmt/format.h>

#include <algorithm>

namespace cli {
namespace {

constexpr std::size_t LONGEST_HOLDER = 40;

// Cut between characters of UTF-8, not inside one.
std::string shown_holder(const CertificateRecord& record) {
    std::string name = record.subject.value("CN");
    if (name.empty()) name = record.subject_text;
    if (name.size() <= LONGEST_HOLDER) return name;
    std::size_t end = LONGEST_HOLDER - 3;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U)
        --end;
    return name.substr(0, end) + "...";
}

std::string mark(const ListedCertificate& listed) {
    if (listed.replaced) return "  replaced";
    const char* state = !listed.due ? "" : listed.days_left < 0 ? "  EXPIRED, due" : "  DUE";
    if (!listed.requested) return state;
    return fmt::format("{}{}request under way", state, listed.due ? ", " : "  ");
}

struct Columns {
    std::size_t id = 10;
    std::size_t name = 6;
};

Columns widths(const std::vector<ListedCertificate>& certificates) {
    Columns columns;
    for (const ListedCertificate& listed : certificates) {
        columns.id = std::max(columns.id, listed.record.id.size());
        columns.name = std::max(columns.name, shown_holder(listed.record).size());
    }
    return columns;
}

std::string table_of(const std::vector<ListedCertificate>& certificates) {
    const Columns columns = widths(certificates);
    std::string table = fmt::format("\n  {:<16}{:<{}}  {:<{}}  {:<10}  {:>5}\n", "KIND", "IDENTIFIER",
                                    columns.id, "HOLDER", columns.name, "ENDS", "DAYS");
    for (const ListedCertificate& listed : certificates)
        table += fmt::format("  {:<16}{:<{}}  {:<{}}  {:<10}  {:>5}{}\n", kind_name(listed.record.kind),
                             listed.record.id, columns.id, shown_holder(listed.record), columns.name,
                             day_of(listed.record.ends), listed.days_left, mark(listed));
    return table;
}

} // namespace

std::string in_words(const CardList& list) {
    const std::string card =
        list.card.state ? fmt::format("Card {} (\"{}\")", list.card.state->serial, list.card.state->label)
                        : "Card";
    std::string text = fmt::format("{} in {}\n{}", card, list.card.reader, table_of(list.certificates));
    if (list.certificates.empty()) text += "  (no certificates)\n";
    if (list.unreadable > 0) text += fmt::format("  ({} more cannot be read)\n", list.unreadable);
    return text;
}

} // namespace cli
