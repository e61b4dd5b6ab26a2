#pragma once

#include "host/distinguished_name.h"
#include "host/kind.h"

#include <ctime>
#include <string>

namespace zvhost {

// One certificate of the card.
struct CertificateRecord {
    Kind kind = Kind::signature;
    DistinguishedName subject;
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
    std::string der; // all of it
};

// Whose it is, for a person: the common name, of which a services card has the tax code before a slash; else all of the
// subject.
[[nodiscard]] std::string holder_of(const CertificateRecord& record);

// "YYYY-MM-DD", UTC.
[[nodiscard]] std::string day_of(std::time_t time);

// Whether a certificate ends within that many days, or has ended.
[[nodiscard]] bool ends_within(std::time_t end, int days, std::time_t now);

// Whole days from now to a time, rounded down: -1 when it was in the last 24 hours.
[[nodiscard]] long days_until(std::time_t time, std::time_t now);

} // namespace zvhost
