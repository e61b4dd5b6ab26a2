#pragma once

#include "host/card_view.h"
#include "host/certificate.h"
#include "ossl/pem_blocks.h"

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// A file with what a card held under an identifier before an installation replaced it: the certificate first,
// then the public keys, then what else goes with it. It shows a later run of the same command what is gone, and
// that keys without a certificate are left over and do not wait for one.
struct Backup {
    std::string file;
    std::string heading; // says which card and which identifier
    std::vector<ossl::PemBlock> blocks;

    [[nodiscard]] std::string text() const;
    void add(const char* name, const Bytes& der);
    // The old certificate, DER.
    [[nodiscard]] Bytes certificate() const;
    // Whether a public key with that modulus is in it.
    [[nodiscard]] bool has_key(const Bytes& modulus) const;
    // Whether all of another one is in this one.
    [[nodiscard]] bool covers(const Backup& other) const;
};

// Makes its file; one that holds all of it already will do. Returns its name. @throws Error
std::string save(const Backup& backup);

[[nodiscard]] std::string backup_heading(const std::string& card, const std::string& id);

// Reads a file; none when it is no backup.
[[nodiscard]] std::optional<Backup> read_backup(const std::string& file);

// The backups of a card in the working folder, and the one given by name.
[[nodiscard]] std::vector<Backup> backups_of(const std::string& card, const std::string& given);

// Whether the keys of a pair are what a removal left: a backup has them, and the certificate is gone.
[[nodiscard]] const Backup* backup_of_leftover(const std::vector<Backup>& backups, const CardView& view,
                                               const std::string& card, const std::string& id);

} // namespace zvhost
