#include "cli/listed.h"
#include "words/words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace cli {
namespace {

constexpr std::size_t LONGEST_HOLDER = 40;

// Cut between characters of UTF-8, not inside one.
std::string shown_holder(const CertificateRecord& record) {
    std::string name = record.subject.value("CN");
    if (name.empty()) name = record.subject.oid_form();
    if (name.size() <= LONGEST_HOLDER) return name;
    std::size_t end = LONGEST_HOLDER - 3;
    while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80U)
        --end;
    return name.substr(0, end) + "...";
}

const char* mark_of(const ListedCertificate& listed) {
    if (listed.replaced) return "mark-replaced";
    if (!listed.due) return listed.requested ? "mark-under-way" : "";
    if (listed.days_left < 0) return listed.requested ? "mark-expired-under-way" : "mark-expired";
    return listed.requested ? "mark-due-under-way" : "mark-due";
}

std::string word(const char* id) {
    return words::of(Sentence{id, {}});
}

using Row = std::array<std::string, 5>;

Row row_of(const ListedCertificate& listed) {
    return {words::of(listed.record.kind), listed.record.id, shown_holder(listed.record),
            words::day_of(listed.record.ends), std::to_string(listed.days_left)};
}

std::string line_of(const Row& row, const std::array<std::size_t, 5>& widths) {
    return fmt::format("  {:<{}}  {:<{}}  {:<{}}  {:<{}}  {:>{}}", row[0], widths[0], row[1], widths[1],
                       row[2], widths[2], row[3], widths[3], row[4], widths[4]);
}

std::string table_of(const std::vector<ListedCertificate>& certificates) {
    std::vector<Row> rows{{word("head-kind"), word("head-identifier"), word("head-holder"), word("head-ends"),
                           word("head-days")}};
    for (const ListedCertificate& listed : certificates)
        rows.push_back(row_of(listed));
    std::array<std::size_t, 5> widths{14, 10, 6, 10, 5};
    for (const Row& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    std::string table = "\n" + line_of(rows.front(), widths) + "\n";
    for (std::size_t i = 0; i < certificates.size(); ++i) {
        const std::string mark = mark_of(certificates[i]);
        table += line_of(rows[i + 1], widths) + (mark.empty() ? "" : "  " + word(mark.c_str())) + "\n";
    }
    return table;
}

Sentence heading(const CardFacts& card) {
    if (!card.state) return {"list-card-unknown", {{"reader", card.reader}}};
    return {"list-card",
            {{"serial", card.state->serial}, {"label", card.state->label}, {"reader", card.reader}}};
}

} // namespace

std::string in_words(const CardList& list) {
    std::string text = words::of(heading(list.card)) + "\n" + table_of(list.certificates);
    if (list.certificates.empty()) text += word("list-empty") + "\n";
    if (list.unreadable > 0)
        text +=
            words::of(Sentence{"list-unreadable", {{"count", static_cast<long>(list.unreadable)}}}) + "\n";
    return text;
}

} // namespace cli
