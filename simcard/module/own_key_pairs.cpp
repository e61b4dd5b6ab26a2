#include "simcard/common/card_folder.h"
#include "simcard/module/control.h"
#include "simcard/module/forward.h"
#include "simcard/module/key_creation.h"
#include "simcard/module/key_parts.h"
#include "simcard/module/own_functions.h"
#include "simcard/module/side_session.h"

#include <algorithm>

// Ready-made key pairs: where a key file is in use, a key pair is not generated but taken from the file and
// written to the card. It is the first one of the size asked for that the card does not hold; past the end of
// the file one is generated and added.
namespace simcard::own {
namespace {

// The size of the key pair asked for, when it is one that the file can serve.
std::optional<CK_ULONG> size_asked(const CK_MECHANISM* mechanism, const CK_ATTRIBUTE* attributes,
                                   CK_ULONG count) {
    if (!mechanism || mechanism->mechanism != CKM_RSA_PKCS_KEY_PAIR_GEN) return std::nullopt;
    std::optional<CK_ULONG> bits;
    for (const CK_ATTRIBUTE* entry = attributes; entry != attributes + count; ++entry) {
        const std::string_view value(static_cast<const char*>(entry->pValue),
                                     entry->pValue ? entry->ulValueLen : 0);
        if (entry->type == CKA_PUBLIC_EXPONENT && value != USUAL_EXPONENT) return std::nullopt;
        if (entry->type == CKA_MODULUS_BITS && value.size() == sizeof(CK_ULONG)) {
            bits.emplace();
            std::copy(value.begin(), value.end(), reinterpret_cast<char*>(&*bits));
        }
    }
    return bits;
}

std::optional<RsaKey> ready_made(const Session& session, CK_ULONG bits) {
    SideSession side(session);
    for (const RsaKey& key : read_keys(control().key_file()))
        if (key.bits() == bits && !side.holds(key.modulus())) return key;
    auto made = side.generate(bits);
    if (made) append_key(control().key_file(), *made);
    return made;
}

// Writes a key pair to the card, both keys or none.
CK_RV write_pair(CK_SESSION_HANDLE session, const RsaKey& key, Creation& open, CK_OBJECT_HANDLE* public_key,
                 Creation& secret, CK_OBJECT_HANDLE* private_key) {
    CK_RV result = open.create(session, key, 2, public_key);
    if (result != CKR_OK) return result;
    result = secret.create(session, key, RsaKey::PARTS, private_key);
    if (result != CKR_OK) static_cast<void>(destroy_object(session, *public_key));
    return result;
}

// The template of a private key, with what the card makes of it: such a key may want the PIN before each signature.
std::vector<CK_ATTRIBUTE> as_the_card_makes_it(const Session& session, const CK_ATTRIBUTE* attributes,
                                               CK_ULONG count) {
    static constexpr CK_BBOOL yes = CK_TRUE;
    std::vector<CK_ATTRIBUTE> entries(attributes, attributes + count);
    const std::string asking = load_card(folder_of(session)).pin_each_signature;
    const auto asks = [&](const CK_ATTRIBUTE& entry) {
        return entry.type == CKA_ID && !asking.empty() && entry.ulValueLen >= asking.size() &&
               std::equal(asking.begin(), asking.end(), static_cast<const char*>(entry.pValue));
    };
    if (std::any_of(attributes, attributes + count, asks))
        entries.push_back(entry_for(CKA_ALWAYS_AUTHENTICATE, yes));
    return entries;
}

} // namespace

CK_RV generate_key_pair(CK_SESSION_HANDLE session, CK_MECHANISM_PTR mechanism,
                        CK_ATTRIBUTE_PTR public_attributes, CK_ULONG public_count,
                        CK_ATTRIBUTE_PTR private_attributes, CK_ULONG private_count,
                        CK_OBJECT_HANDLE_PTR public_key, CK_OBJECT_HANDLE_PTR private_key) {
    const CK_RV reached = state().reach_session(session);
    if (reached != CKR_OK) return reached;
    const bool complete = public_attributes && private_attributes && public_key && private_key;
    std::vector<CK_ATTRIBUTE> secret_entries;
    if (private_attributes)
        secret_entries = as_the_card_makes_it(*state().session(session), private_attributes, private_count);
    const auto bits = complete && !control().key_file().empty()
                          ? size_asked(mechanism, public_attributes, public_count)
                          : std::nullopt;
    const auto key = bits ? ready_made(*state().session(session), *bits) : std::nullopt;
    if (!key)
        return forward<Function::C_GenerateKeyPair>(
            session, mechanism, public_attributes, public_count,
            private_attributes ? secret_entries.data() : nullptr,
            private_attributes ? CK_ULONG{secret_entries.size()} : private_count, public_key, private_key);
    Creation open(public_attributes, public_count, CKO_PUBLIC_KEY, false);
    Creation secret(secret_entries.data(), CK_ULONG{secret_entries.size()}, CKO_PRIVATE_KEY, true);
    return write_pair(session, *key, open, public_key, secret, private_key);
}

} // namespace simcard::own
