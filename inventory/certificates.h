#pragma once

#include "inventory/identifiers.h"
#include "inventory/names.h"

#include <cstddef>
#include <cstring>
#include <deque>
#include <string_view>
#include <vector>

// The certificates on the card and the records that describe them to the host.
namespace zv {

constexpr std::size_t MOST_CERTIFICATES = 10;
constexpr std::size_t DESCRIPTION_SIZE = 2048;
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
    char description[DESCRIPTION_SIZE];
    char issuer[512], subject[512];
    char serial[128], iut[32], key_id[256], cod_fisc[128], policies[128], explicit_text[256];
    char start[24], end[24];

    // Clears and fills every field; rewrites the names, the holder's with rewrite_holder.
    void read(Certificate& certificate, NameRewrite rewrite_holder);
};

// A host's list with its work buffers: records are assembled in one and appended to the list's entries.
class RecordList {
  public:
    RecordList(char** list, char* record, long record_size);

    // 11 fields: notice text, subject key identifier, codice fiscale last.
    void add_signature(const CertificateFields& fields, std::string_view id);
    // 10 fields: subject key identifier, codice fiscale last.
    void add_authentication(const CertificateFields& fields, std::string_view id);

    [[nodiscard]] int count() const { return count_; }
    // Appends the count to entry 0.
    void write_count();
    // Appends one more field to the first record, if there is one.
    void mark(std::string_view field);

  private:
    void assemble(const CertificateFields& fields, std::string_view id);
    void add_field(std::string_view field);
    void finish();

    char** list_;
    char* record_;
    std::size_t size_;
    int count_ = 0;
};

// Copies a description and an identifier to where the host's side keeps the last ones.
void keep_last(const CertificateFields& fields, const Certificate& certificate, char* subject, char* id);

inline std::string_view id_of(const char* id) {
    return {id, strnlen(id, ID_SIZE)};
}

} // namespace zv
