#include "simcard/module/space.h"

#include "simcard/common/card_folder.h"
#include "simcard/module/forward.h"
#include "simcard/module/state.h"

#include <algorithm>
#include <system_error>

namespace fs = std::filesystem;

namespace simcard {
namespace {

// The modulus, the private exponent of its size, and five numbers of half of it.
CK_ULONG private_key_bytes(CK_ULONG modulus) {
    return 2 * modulus + 5 * modulus / 2;
}

const CK_ATTRIBUTE* entry_in(const CK_ATTRIBUTE* attributes, CK_ULONG count, CK_ATTRIBUTE_TYPE type) {
    const auto* found = std::find_if(attributes, attributes + count,
                                     [type](const CK_ATTRIBUTE& entry) { return entry.type == type; });
    return found == attributes + count ? nullptr : found;
}

CK_ULONG length_in(const CK_ATTRIBUTE* attributes, CK_ULONG count, CK_ATTRIBUTE_TYPE type) {
    const CK_ATTRIBUTE* entry = entry_in(attributes, count, type);
    return entry ? entry->ulValueLen : 0;
}

// A pair that is generated is asked for in the template of its public key.
CK_ULONG generated_bytes(const CK_ATTRIBUTE* attributes, CK_ULONG count) {
    const CK_ATTRIBUTE* entry = entry_in(attributes, count, CKA_MODULUS_BITS);
    if (!entry || !entry->pValue || entry->ulValueLen != sizeof(CK_ULONG)) return 0;
    CK_ULONG bits = 0;
    std::copy_n(static_cast<const char*>(entry->pValue), sizeof bits, reinterpret_cast<char*>(&bits));
    return bits / 8 + private_key_bytes(bits / 8);
}

CK_ULONG bytes_in(const CK_ATTRIBUTE* attributes, CK_ULONG count) {
    const CK_ULONG modulus = length_in(attributes, count, CKA_MODULUS);
    const bool is_private = entry_in(attributes, count, CKA_PRIVATE_EXPONENT) != nullptr;
    return length_in(attributes, count, CKA_VALUE) + (is_private ? private_key_bytes(modulus) : modulus) +
           generated_bytes(attributes, count);
}

CK_ULONG length_on_card(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, CK_ATTRIBUTE_TYPE type) {
    CK_ATTRIBUTE entry{type, nullptr, 0};
    const CK_RV result = (*state().hsm)->C_GetAttributeValue(session, object, &entry, 1);
    return result == CKR_OK && entry.ulValueLen != CK_UNAVAILABLE_INFORMATION ? entry.ulValueLen : 0;
}

CK_ULONG bytes_on_card(CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object) {
    CK_OBJECT_CLASS object_class = 0;
    CK_ATTRIBUTE entry{CKA_CLASS, &object_class, sizeof object_class};
    if ((*state().hsm)->C_GetAttributeValue(session, object, &entry, 1) != CKR_OK) return 0;
    if (object_class == CKO_PRIVATE_KEY)
        return private_key_bytes(length_on_card(session, object, CKA_MODULUS));
    const bool is_key = object_class == CKO_PUBLIC_KEY;
    return length_on_card(session, object, is_key ? CKA_MODULUS : CKA_VALUE);
}

// The objects on a card, also those that nobody has seen because nobody is logged in: a file each, beside
// the token's own.
CK_ULONG objects_on(const fs::path& folder) {
    std::error_code error;
    CK_ULONG found = 0;
    for (const auto& entry : fs::directory_iterator(folder, error))
        if (entry.path().extension() == ".object" && entry.path().stem() != "token") ++found;
    return found;
}

} // namespace

Space::Space(const Card& card, const Call& call, CK_SESSION_HANDLE session) : card_(card) {
    if (call.function == Function::C_DestroyObject && card.memory_left)
        given_back_ = bytes_on_card(session, call.arguments[1]);
    if (!pkcs11::makes_objects(call.function)) return;
    const auto& parameters = call.parameters();
    const bool unsaid = call.function == Function::C_CopyObject; // one unless its template says no
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        if (parameters[i].role != Role::attributes) continue;
        const auto* attributes = call.pointer<CK_ATTRIBUTE>(i);
        const CK_ULONG count = attributes ? call.arguments[i + 1] : 0;
        if (!flag_in(attributes, count, CKA_TOKEN).value_or(unsaid)) continue;
        ++objects_;
        taken_ += bytes_in(attributes, count);
    }
}

bool Space::is_there() const {
    if (objects_ == 0) return true;
    return (card_.capacity == 0 || objects_on(card_.folder) + objects_ <= card_.capacity) &&
           (!card_.memory_left || taken_ <= *card_.memory_left);
}

void Space::settle() const {
    if (!card_.memory_left || taken_ == given_back_) return;
    update_card(card_.folder, [this](Card& card) {
        if (card.memory_left) *card.memory_left = *card.memory_left + given_back_ - taken_;
    });
}

} // namespace simcard
