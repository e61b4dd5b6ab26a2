#pragma once

#include "host/backup.h"
#include "host/card_view.h"
#include "host/install_plan.h"
#include "host/wishes.h"

#include <optional>
#include <string>
#include <vector>

namespace zvhost {

// What an installation is about, as far as it decides which certificate it replaces.
struct Replacing {
    const InstallWishes& wishes;
    const IssuedFiles& files;
    const CardView& view;
    const std::vector<Backup>& backups;
    const OpenedCard& card;
    Kind kind;
    std::string pair;
    const Bytes& certificate; // the new one, which never replaces itself
};

// Finds the certificate that is replaced: the one named with --replace; else the one that signed the request;
// else the only one of the kind. The same command finds the same one also when a run before it was broken off:
// what is no longer on the card is known by its backup or by the request.
//
// @return none when there is nothing to replace
// @throws Error when none is meant for certain and something would be removed
[[nodiscard]] std::optional<OldCertificate> find_old(const Replacing& replacing);

// Whether a certificate is one of authorities: such are never replaced.
[[nodiscard]] bool is_authority(const CardObject& certificate);

} // namespace zvhost
