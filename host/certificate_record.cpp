#include "host/certificate_record.h"

#include <fmt/chrono.h>

#include <vector>

namespace zvhost {
namespace {

using Fields = std::vector<std::string_view>;

constexpr std::string_view DATE_FORM = "DD/MM/YYYY HH:MM:SS";
constexpr std::size_t FIELDS_BEFORE_DATES = 5; // subject, issuer, IUT, policies, serial number
constexpr long SECONDS_OF_DAY = 24L * 60 * 60;

Fields split(std::string_view text) {
    Fields fields;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find('#', at), text.size());
        fields.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return fields;
}

// Fields of the text stand next to each other in it: a run of them, separators included, is one piece of it.
std::string joined(const Fields& fields, std::size_t first, std::size_t last) {
    if (first >= last) return {};
    const char* begin = fields[first].data();
    const char* end = fields[last - 1].data() + fields[last - 1].size();
    return {begin, end};
}

std::optional<std::size_t> place_of_dates(const Fields& fields) {
    for (std::size_t at = FIELDS_BEFORE_DATES; at + 1 < fields.size(); ++at)
        if (parse_date(fields[at]) && parse_date(fields[at + 1])) return at;
    return std::nullopt;
}

// Where the issuer begins: names of authorities begin with an identifier, a piece behind a "#" in a subject
// hardly ever does.
std::size_t place_of_issuer(const Fields& fields, std::size_t end) {
    for (std::size_t at = 1; at < end; ++at)
        if (fields[at].starts_with("2.5.4.") || fields[at].starts_with("1.2.840.113549.1.9.1=")) return at;
    return 1;
}

} // namespace

std::optional<std::time_t> parse_date(std::string_view text) {
    const std::string whole(text);
    std::tm broken{};
    const char* end = ::strptime(whole.c_str(), "%d/%m/%Y %H:%M:%S", &broken);
    // strptime takes numbers of fewer digits, too.
    if (whole.size() != DATE_FORM.size() || end != whole.c_str() + whole.size()) return std::nullopt;
    return timegm(&broken);
}

std::string day_of(std::time_t time) {
    return fmt::format("{:%Y-%m-%d}", fmt::gmtime(time));
}

bool ends_within(std::time_t end, int days, std::time_t now) {
    return end - now <= days * SECONDS_OF_DAY;
}

long days_until(std::time_t time, std::time_t now) {
    const long seconds = time - now;
    return seconds >= 0 ? seconds / SECONDS_OF_DAY : -((SECONDS_OF_DAY - 1 - seconds) / SECONDS_OF_DAY);
}

std::optional<CertificateRecord> parse_record(std::string_view text, Kind kind, bool marked) {
    const Fields fields = split(text);
    const auto dates = place_of_dates(fields);
    if (!dates) return std::nullopt;
    const std::size_t names_end = *dates - 3;
    const std::size_t id = *dates + 2;
    const std::size_t end = fields.size() - (marked ? 1 : 0);
    const std::size_t behind_id = kind_row(kind).notice ? 3 : 2; // notice, key identifier, tax code
    if (end < id + 1 + behind_id) return std::nullopt;

    const std::size_t issuer = place_of_issuer(fields, names_end);
    CertificateRecord record;
    record.kind = kind;
    record.subject_text = joined(fields, 0, issuer);
    record.subject = DistinguishedName::from_oid_form(record.subject_text);
    record.issuer = DistinguishedName::from_oid_form(joined(fields, issuer, names_end));
    record.iut = fields[*dates - 3];
    record.policies = fields[*dates - 2];
    record.serial = fields[*dates - 1];
    record.begins = *parse_date(fields[*dates]);
    record.ends = *parse_date(fields[*dates + 1]);
    record.id = fields[id];
    record.notice = joined(fields, id + 1, end - 2);
    record.key_identifier = fields[end - 2];
    record.tax_code = fields[end - 1];
    return record;
}

} // namespace zvhost
