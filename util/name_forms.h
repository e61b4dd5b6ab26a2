#pragma once

#include "records.h"
#include "util/name_record.h"

#include <array>

namespace zv {

// A value, and how a form of a name spells its attribute.
struct NameSpelling {
    const char* text;
    NamePlace place;
};

// The forms that names have: which attributes each carries, in which order. The orders are rules; so is a
// spelling that is not the table's.
namespace forms {

using enum NameAttribute;

constexpr NameSpelling slash(NameAttribute attribute) {
    return {name_attribute(attribute).slash, attribute};
}

constexpr std::string_view oid(NameAttribute attribute) {
    return name_attribute(attribute).oid;
}

constexpr std::string_view bare_oid(NameAttribute attribute) {
    return oid(attribute).substr(0, oid(attribute).size() - 1);
}

// Short names known in a host's subject; each becomes its OID, one after the other.
inline constexpr NameSpelling HOST_NAMES[] = {
    slash(orgUnit), slash(email), {"/gn=", givenName}, slash(serialNumber)};

// A host's subject is broken into lines in front of these, one after the other.
inline constexpr std::string_view HOST_LINE_STARTS[] = {
    oid(country),        oid(organization),
    oid(orgUnit),        oid(commonName),
    oid(description),    oid(dnQualifier),
    oid(email),          oid(serialNumber),
    oid(givenName),      oid(surname),
    oid(locality),       bare_oid(title),
    bare_oid(pseudonym), bare_oid(stateOrProvince),
};

// Looked for in each line of a host's subject; the first that is found, in this order, takes the line.
inline constexpr NameAttribute HOST_LINE[] = {
    commonName,   country, locality,     description, dnQualifier, email,     givenName,
    organization, orgUnit, serialNumber, surname,     title,       pseudonym, stateOrProvince,
};

// Keys of a command block, written and looked for in this order.
inline constexpr NameSpelling BLOCK[] = {
    {"commonname:", commonName},
    {"country:", country},
    {"description:", description},
    {"dnqualifier:", dnQualifier},
    {"email:", email},
    {"givenname:", givenName},
    {"organization:", organization},
    {"orgunit0:", {orgUnit, 0}},
    {"orgunit1:", {orgUnit, 1}},
    {"orgunit2:", {orgUnit, 2}},
    {"orgunit3:", {orgUnit, 3}},
    {"orgunit4:", {orgUnit, 4}},
    {"sernum:", serialNumber},
    {"surname:", surname},
    {"locality:", locality},
    {"title:", title},
    {"pseudonym:", pseudonym},
    {"stateOrProvince:", stateOrProvince},
};

// RDNs of a request, in this order.
inline constexpr NamePlace REQUEST[] = {
    country,      organization, {orgUnit, 0}, {orgUnit, 1}, {orgUnit, 2}, {orgUnit, 3},
    {orgUnit, 4}, commonName,   email,        description,  dnQualifier,  serialNumber,
    surname,      givenName,    locality,     title,        pseudonym,    stateOrProvince,
};

// What a services card's request leaves out.
inline constexpr NameAttribute NOT_ON_SERVICES_CARD[] = {title, pseudonym};

// RDNs of a services card's request.
inline constexpr auto SERVICES_CARD_REQUEST = [] {
    std::array<NamePlace, std::size(REQUEST) - std::size(NOT_ON_SERVICES_CARD)> places;
    std::copy_if(std::begin(REQUEST), std::end(REQUEST), places.begin(), [](const NamePlace& place) {
        return std::find(std::begin(NOT_ON_SERVICES_CARD), std::end(NOT_ON_SERVICES_CARD), place.attribute) ==
               std::end(NOT_ON_SERVICES_CARD);
    });
    return places;
}();

// Short names in the names of a card's certificates; each becomes its OID, one after the other.
inline constexpr NameAttribute CARD[] = {
    commonName, dnQualifier,  email,   pseudonym, title,   description, serialNumber,
    orgUnit,    organization, surname, givenName, country, locality,    stateOrProvince,
};

// Short names behind the blank or slash that separates attributes; "SN" is another attribute here than on a
// card.
inline constexpr NameSpelling COMMA_SEPARATED[] = {
    {" dnQualifier=", dnQualifier},
    {"/dnQualifier=", dnQualifier},
    {"/Email=", email},
    {" D=", description},
    {" SN=", serialNumber},
    {" CN=", commonName},
    {" OU=", orgUnit},
    {" O=", organization},
    {" S=", surname},
    {" G=", givenName},
    {" C=", country},
};

// Lines of a name in the log.
inline constexpr NameSpelling LOG[] = {
    {"DN_country = ", country},         {"DN_organization = ", organization},
    {"DN_orgUnit[0] = ", {orgUnit, 0}}, {"DN_orgUnit[1] = ", {orgUnit, 1}},
    {"DN_orgUnit[2] = ", {orgUnit, 2}}, {"DN_orgUnit[3] = ", {orgUnit, 3}},
    {"DN_orgUnit[4] = ", {orgUnit, 4}}, {"DN_commonName = ", commonName},
    {"DN_description = ", description}, {"DN_dnQualifier = ", dnQualifier},
    {"DN_SerNum = ", serialNumber},     {"DN_givenName = ", givenName},
    {"DN_surname = ", surname},         {"DN_eMail = ", email},
};

constexpr std::size_t KNOWN = std::size(NAME_ATTRIBUTES), VALUES = KNOWN - 1 + ZV_ORG_UNITS;
static_assert(std::size(BLOCK) == VALUES && std::size(REQUEST) == VALUES, "a value would be lost on its way");
static_assert(std::size(HOST_LINE_STARTS) == KNOWN && std::size(HOST_LINE) == KNOWN);

} // namespace forms

} // namespace zv
