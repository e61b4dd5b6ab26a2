#pragma once

#include "host/distinguished_name.h"
#include "host/kind.h"

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace zvhost {

// One certificate of the card, from the library's record.
struct CertificateRecord {
    Kind kind = Kind::signature;
    std::string subject_text; // as the record has it
    DistinguishedName subject;
    bool subject_exact = false; // the subject was read from the certificate itself
    DistinguishedName issuer;
    std::string iut;
    std::string policies;
    std::string serial;
    std::time_t begins = 0;
    std::time_t ends = 0;
    std::string id;
    std::string notice; // signature certificates only
    std::string key_identifier;
    std::string tax_code;
};

// Reads a record of a certificate list. Texts from the certificate may hold the separator "#" themselves: the
// two dates and the number of fields behind them say where each field is.
//
// @param marked  whether the record ends with the identifier of a pending pair
// @return none for a text that is no record
[[nodiscard]] std::optional<CertificateRecord> parse_record(std::string_view text, Kind kind, bool marked);

// Seconds since 1970 of a date "DD/MM/YYYY HH:MM:SS", UTC; none for anything else.
[[nodiscard]] std::optional<std::time_t> parse_date(std::string_view text);

// "YYYY-MM-DD", UTC.
[[nodiscard]] std::string day_of(std::time_t time);

// Whether a certificate ends within that many days, or has ended.
[[nodiscard]] bool ends_within(std::time_t end, int days, std::time_t now);

// Whole days from now to a time, rounded down: -1 when it was in the last 24 hours.
[[nodiscard]] long days_until(std::time_t time, std::time_t now);

} // namespace zvhost
