#pragma once

#include "inventory/identifiers.h"

#include <array>
#include <cstddef>
#include <cstring>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

// The certificates on the card and the records that describe them to the host.
namespace zv {

constexpr std::size_t MOST_CERTIFICATES = ZV_LIST_ENTRIES - 1;
constexpr std::size_t ID_SIZE = 64;

// A certificate object as read; texts fill their fields without a terminator when they are that long.
struct Certificate {
    char label[64];
    char unused[512];
    char serial_number[512];
    char id[ID_SIZE];
    unsigned char value[16384];
    unsigned long value_length;
};

// Not cleared between readings: a field that cannot be read keeps what it held.
extern Certificate Certificati[MOST_CERTIFICATES];
extern int numCertificate;

// Every certificate of one search, in the card's order: the first ten stand in the table.
class FoundCertificates {
  public:
    // Empties the table and reads the card's certificates.
    [[nodiscard]] bool read(const SearchLog& log, const Exits& exits);
    auto begin() const { return all_.begin(); }
    auto end() const { return all_.end(); }

  private:
    Certificate& next();

    std::vector<Certificate*> all_;
    std::deque<Certificate> beyond_;
};

// Told about a call, with its result.
using CallTrace = void (*)(const char* call, CK_RV result);

inline void no_trace(const char*, CK_RV) {}

// Slot and token are there; each call is only checked for success.
[[nodiscard]] bool probe_token(CallTrace trace);

// What the crypto library says of one certificate.
struct CertificateFields {
    char description[ZVC_DESCRIPTION_SIZE] = {};
    char issuer[ZV_RECORD_NAME_SIZE] = {}, subject[ZV_RECORD_NAME_SIZE] = {};
    char serial[128] = {}, iut[32] = {}, key_id[256] = {}, tax_code[128] = {}, policies[128] = {};
    char explicit_text[256] = {}, start[ZVC_DATE_SIZE] = {}, end[ZVC_DATE_SIZE] = {};

    // Fills every field; the holder's names are rewritten as those of a services card's own certificate, or as others.
    CertificateFields(Certificate& certificate, bool own);

    // 10 fields, the notice text as an eleventh where the kind has it; subject key identifier and tax code last.
    [[nodiscard]] std::string record(Kind kind, std::string_view id) const;
};

// The holder's description and the CKA_ID of a certificate, in buffers that a host keeps.
struct LastCertificate {
    std::array<char, ZVC_DESCRIPTION_SIZE> description;
    std::array<char, ID_SIZE> id;

    LastCertificate(const CertificateFields& fields, const Certificate& certificate);
};

inline std::string_view id_of(const char* id) {
    return {id, strnlen(id, ID_SIZE)};
}

} // namespace zv
