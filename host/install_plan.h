#pragma once

#include "host/backup.h"
#include "host/card_view.h"
#include "host/certificate.h"
#include "host/inventory.h"
#include "host/wishes.h"

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// Storing, and trying the key.
inline constexpr int STEPS_OF_AN_INSTALLATION = 2;

// The files that an installation starts from.
struct IssuedFiles {
    std::vector<Certificate> certificates; // all that the authority's file holds
    Bytes request_key;                     // modulus of the request's key; empty without a request
    Bytes signer;                          // the certificate that signed the request; empty when unknown
};

// A certificate that is replaced.
struct OldCertificate {
    std::string id; // empty when nothing of it is on the card
    Bytes der;
    bool on_card = false;
    std::string backup; // a file that has it, when it is no longer on the card
};

// What an installation is going to do to the card; made before anything is done.
struct InstallPlan {
    Bytes certificate; // DER of the one to install
    std::string pair;  // identifier of the pair it belongs to
    Kind kind = Kind::signature;
    std::optional<OldCertificate> old;
    std::vector<std::string> removed; // identifiers that go, with --remove-old
    std::vector<std::string> left;    // identifiers of what a removal before this run left for good
    std::optional<CardObject>
        first;     // the old certificate, which makes room for the new one and leaves its keys
    Backup backup; // what goes or is replaced; nothing in it: none is needed
};

// Reads the files, and refuses a certificate that is not for the request's key or that no card can store.
// Nothing is asked of the card. @throws Error
[[nodiscard]] IssuedFiles read_issued_files(const InstallWishes& wishes);

// The identifier under which the certificate that is meant is on the card with its key; empty when it is not.
// Where a file holds several, what a pair still waits for is meant, else the one that ends last.
[[nodiscard]] std::string stored_already(const IssuedFiles& files, const Inventory& inventory,
                                         const CardView& view);

// Finds the pair of the certificate and what it replaces, all among whole identifiers read from the card,
// and refuses what would go wrong there. @throws Error
[[nodiscard]] InstallPlan plan_install(const InstallWishes& wishes, const IssuedFiles& files,
                                       const OpenedCard& card, const Inventory& inventory,
                                       const CardView& view);

// What a person should know before it is carried out.
[[nodiscard]] std::vector<Sentence> notices_of(const InstallPlan& plan);

} // namespace zvhost
