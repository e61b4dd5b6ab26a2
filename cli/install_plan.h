#pragma once

#include "cli/card_view.h"
#include "cli/inventory.h"
#include "cli/key_material.h"
#include "cli/options.h"

#include <optional>
#include <string>
#include <vector>

namespace cli {

/// The files that an installation starts from.
struct IssuedFiles {
    std::vector<Certificate> certificates; ///< all that the authority's file holds
    Bytes request_key;                     ///< modulus of the request's key; empty without a request
};

/// What an installation is going to do to the card; made before anything is done.
struct InstallPlan {
    Bytes certificate; ///< DER of the one to store
    std::string pair;  ///< identifier of the pair it belongs to
    Kind kind = Kind::signature;
    std::optional<CertificateRecord> old; ///< the certificate that it replaces
    std::vector<std::string> removed;     ///< identifiers that go, with --remove-old
    std::string backup;                   ///< the certificates that go or are replaced, PEM
};

/// Reads the files, and refuses a certificate that is not for the request's key or that no card can store.
/// Nothing is asked of the card. @throws Stop
[[nodiscard]] IssuedFiles read_issued_files(const InstallOptions& options);

/// Finds the pair of the certificate and what it replaces, all among whole identifiers read from the card,
/// and refuses what would go wrong there. @throws Stop
[[nodiscard]] InstallPlan plan_install(const InstallOptions& options, const IssuedFiles& files,
                                       const Inventory& inventory, const CardView& view);

} // namespace cli
