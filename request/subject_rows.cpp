// The order of the rows is the order of the RDNs in a request.
#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>

#include "request/der.h"
#include "request/subject.h"

namespace zv {

namespace {

// X.520 attributes: 2.5.4.x.
constexpr unsigned char COUNTRY[] = {0x06, 0x03, 0x55, 0x04, 0x06};
constexpr unsigned char ORGANIZATION[] = {0x06, 0x03, 0x55, 0x04, 0x0A};
constexpr unsigned char ORG_UNIT[] = {0x06, 0x03, 0x55, 0x04, 0x0B};
constexpr unsigned char COMMON_NAME[] = {0x06, 0x03, 0x55, 0x04, 0x03};
constexpr unsigned char DESCRIPTION[] = {0x06, 0x03, 0x55, 0x04, 0x0D};
constexpr unsigned char DN_QUALIFIER[] = {0x06, 0x03, 0x55, 0x04, 0x2E};
constexpr unsigned char SERIAL_NUMBER[] = {0x06, 0x03, 0x55, 0x04, 0x05};
constexpr unsigned char SURNAME[] = {0x06, 0x03, 0x55, 0x04, 0x04};
constexpr unsigned char GIVEN_NAME[] = {0x06, 0x03, 0x55, 0x04, 0x2A};
constexpr unsigned char LOCALITY[] = {0x06, 0x03, 0x55, 0x04, 0x07};
constexpr unsigned char TITLE[] = {0x06, 0x03, 0x55, 0x04, 0x0C};
constexpr unsigned char PSEUDONYM[] = {0x06, 0x03, 0x55, 0x04, 0x41};
constexpr unsigned char STATE_OR_PROVINCE[] = {0x06, 0x03, 0x55, 0x04, 0x08};
// PKCS#9: 1.2.840.113549.1.9.1.
constexpr unsigned char EMAIL[] = {0x06, 0x09, 0x2A, 0x86, 0x48, 0x86, 0xF7, 0x0D, 0x01, 0x09, 0x01};

constexpr std::size_t orgUnit(std::size_t index) {
    return offsetof(datiDN, orgUnit) + index * sizeof datiDN::orgUnit[0];
}

// Title and pseudonym stand before the last row, so that the services card's table is the rest in the same
// order.
constexpr SubjectRow ROWS[] = {
    {COUNTRY, TAG_PRINTABLE_STRING, offsetof(datiDN, country)},
    {ORGANIZATION, TAG_UTF8_STRING, offsetof(datiDN, organization)},
    {ORG_UNIT, TAG_UTF8_STRING, orgUnit(0)},
    {ORG_UNIT, TAG_UTF8_STRING, orgUnit(1)},
    {ORG_UNIT, TAG_UTF8_STRING, orgUnit(2)},
    {ORG_UNIT, TAG_UTF8_STRING, orgUnit(3)},
    {ORG_UNIT, TAG_UTF8_STRING, orgUnit(4)},
    {COMMON_NAME, TAG_UTF8_STRING, offsetof(datiDN, commonName)},
    {EMAIL, TAG_IA5_STRING, offsetof(datiDN, email)},
    {DESCRIPTION, TAG_UTF8_STRING, offsetof(datiDN, description)},
    {DN_QUALIFIER, TAG_UTF8_STRING, offsetof(datiDN, dnQualifier)},
    {SERIAL_NUMBER, TAG_PRINTABLE_STRING, offsetof(datiDN, serialNumber)},
    {SURNAME, TAG_UTF8_STRING, offsetof(datiDN, surname)},
    {GIVEN_NAME, TAG_UTF8_STRING, offsetof(datiDN, givenName)},
    {LOCALITY, TAG_UTF8_STRING, offsetof(datiDN, locality)},
    {TITLE, TAG_UTF8_STRING, offsetof(datiDN, title)},
    {PSEUDONYM, TAG_UTF8_STRING, offsetof(datiDN, pseudonym)},
    {STATE_OR_PROVINCE, TAG_UTF8_STRING, offsetof(datiDN, stateOrProvince)},
};

constexpr std::size_t ROWS_BEFORE_TITLE = 15;

constexpr auto withoutTitleAndPseudonym() {
    std::array<SubjectRow, ROWS_BEFORE_TITLE + 1> rows{};
    std::copy_n(ROWS, ROWS_BEFORE_TITLE, rows.begin());
    rows.back() = ROWS[std::size(ROWS) - 1];
    return rows;
}

constexpr std::array CNS_ROWS = withoutTitleAndPseudonym();

} // namespace

constinit const SubjectTable SUBJECT_TABLE = {ROWS, 18};
constinit const SubjectTable SUBJECT_TABLE_CNS = {CNS_ROWS, 16};

} // namespace zv
