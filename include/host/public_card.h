#pragma once

#include "host/choice.h"

#include <string>
#include <vector>

namespace zvhost {

// An object as a card shows it without a login; what it has not is empty. Texts hold bytes as they are.
struct PublicObject {
    CK_OBJECT_CLASS type = CKO_DATA;
    std::string id;
    std::string label;
    std::string value;       // a certificate in DER, a public key's modulus, data
    std::string application; // of data
};

// What a card shows without a login: certificates, public keys and data, in its order.
struct PublicCard {
    CardFacts card;
    std::vector<PublicObject> objects;
};

// Reads what a card shows without a login. @throws Error
[[nodiscard]] PublicCard read_public_card(const CardChoice& choice);

} // namespace zvhost
