#pragma once

#include "pkcs11.h"
#include "simcard/tool/personalise.h"

#include <vector>

namespace simcard {

// What another card shows of an object without its PIN.
struct SeenObject {
    CK_OBJECT_CLASS object_class = CKO_DATA; // or certificate, or public key
    std::string id;
    std::string label;
    std::string value;       // a certificate in DER, a public key's modulus, data
    std::string application; // of data
};

// Makes a card like one that shows these objects: under the same identifiers and labels, with keys of the same sizes.
//
// The keys are its own, and its certificates, the same but for that, its authority's. A pair that shows a public key
// or a holder's certificate is taken to have its private key. Certificates of authorities, and what is no RSA
// certificate, are as they were.
// @throws as personalise_card(); Refusal also when a key has a size that it cannot have
[[nodiscard]] Card make_twin(const std::filesystem::path& home, const CardPlan& plan,
                             const std::vector<SeenObject>& objects, KeySource& keys);

} // namespace simcard
