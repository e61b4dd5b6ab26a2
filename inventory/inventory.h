#pragma once

#include "inventory/card_state.h"
#include "inventory/certificates.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a card holds, as values.
namespace zv {

// The certificates of one kind.
struct CertificateList {
    std::vector<std::string> records;
    std::optional<std::string> mark; // one more field of the first record
    std::optional<LastCertificate> last;
};

struct Inventory {
    ByKind<CertificateList> lists; // a services card's last own one counts as authentication's last
    CardState state;
};

// Reads a card that is not a services card. False when a PKCS#11 call failed while slot, token or certificates were
// read; the inventory then holds nothing of use. A search for pending pairs that fails is no failure.
[[nodiscard]] bool read_card(Inventory& inventory);

// The same of a services card; its calls leave no entries in the log. A certificate of no known kind is listed under
// the identifier of the last one of a known kind, at first last_id.
[[nodiscard]] bool read_services_card(Inventory& inventory, std::string_view last_id = {});

} // namespace zv
