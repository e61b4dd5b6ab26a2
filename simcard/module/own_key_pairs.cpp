#include "simcard/common/card_folder.h"
#include "simcard/module/control.h"
#include "simcard/module/forward.h"
#include "simcard/module/key_file.h"
#include "simcard/module/own_functions.h"
#include "simcard/module/state.h"

#include <algorithm>

// Ready-made key pairs: where a key file is in use, a key pair is not generated but taken from the file and
// written to the card. It is the first one of the size asked for that the card does not hold; past the end of
// the file one is generated and added.
namespace simcard::own {
namespace {

constexpr CK_ATTRIBUTE_TYPE PART_TYPES[RsaKey::PARTS] = {
    CKA_MODULUS, CKA_PUBLIC_EXPONENT, CKA_PRIVATE_EXPONENT, CKA_PRIME_1,
    CKA_PRIME_2, CKA_EXPONENT_1,      CKA_EXPONENT_2,       CKA_COEFFICIENT,
};

// The public exponent of the keys in the file, 65537.
constexpr std::string_view USUAL_EXPONENT("\x01\x00\x01", 3);

CK_ATTRIBUTE entry_of(CK_ATTRIBUTE_TYPE type, const std::string& value) {
    return {type, const_cast<char*>(value.data()), value.size()};
}

template <class T> CK_ATTRIBUTE entry_for(CK_ATTRIBUTE_TYPE type, T& value) {
    return {type, &value, sizeof value};
}

// A session of SoftHSM's own beside the caller's: what the caller has under way stays as it is.
class SideSession {
  public:
    explicit SideSession(const Session& beside) {
        const auto& token = state().slots[beside.slot].token();
        result_ = hsm().C_OpenSession(*token, CKF_SERIAL_SESSION, nullptr, nullptr, &session_);
    }
    ~SideSession() {
        if (result_ == CKR_OK) hsm().C_CloseSession(session_);
    }
    SideSession(const SideSession&) = delete;
    SideSession& operator=(const SideSession&) = delete;

    [[nodiscard]] bool holds(const std::string& modulus);
    [[nodiscard]] std::optional<RsaKey> generate(CK_ULONG bits);

  private:
    static const CK_FUNCTION_LIST& hsm() { return *state().hsm->get(); }
    [[nodiscard]] bool read_part(CK_OBJECT_HANDLE key, CK_ATTRIBUTE_TYPE type, std::string& number);

    CK_SESSION_HANDLE session_ = 0;
    CK_RV result_;
};

bool SideSession::holds(const std::string& modulus) {
    CK_ATTRIBUTE wanted = entry_of(CKA_MODULUS, modulus);
    CK_OBJECT_HANDLE found = 0;
    CK_ULONG count = 0;
    if (hsm().C_FindObjectsInit(session_, &wanted, 1) != CKR_OK) return false;
    hsm().C_FindObjects(session_, &found, 1, &count);
    hsm().C_FindObjectsFinal(session_);
    return count != 0;
}

bool SideSession::read_part(CK_OBJECT_HANDLE key, CK_ATTRIBUTE_TYPE type, std::string& number) {
    number.resize(1024);
    CK_ATTRIBUTE entry = entry_of(type, number);
    if (hsm().C_GetAttributeValue(session_, key, &entry, 1) != CKR_OK) return false;
    number.resize(entry.ulValueLen);
    return true;
}

// Makes a key pair that ends with its PKCS#11 session, open to be read.
std::optional<RsaKey> SideSession::generate(CK_ULONG bits) {
    CK_BBOOL yes = CK_TRUE;
    CK_BBOOL no = CK_FALSE;
    CK_MECHANISM mechanism{CKM_RSA_PKCS_KEY_PAIR_GEN, nullptr, 0};
    std::string exponent(USUAL_EXPONENT);
    CK_ATTRIBUTE open[] = {entry_for(CKA_MODULUS_BITS, bits), entry_of(CKA_PUBLIC_EXPONENT, exponent)};
    CK_ATTRIBUTE secret[] = {entry_for(CKA_PRIVATE, no), entry_for(CKA_SENSITIVE, no),
                             entry_for(CKA_EXTRACTABLE, yes)};
    CK_OBJECT_HANDLE public_key = 0;
    CK_OBJECT_HANDLE private_key = 0;
    if (hsm().C_GenerateKeyPair(session_, &mechanism, open, 2, secret, 3, &public_key, &private_key) !=
        CKR_OK)
        return std::nullopt;
    RsaKey key;
    for (std::size_t part = 0; part < RsaKey::PARTS; ++part)
        if (!read_part(private_key, PART_TYPES[part], key.numbers[part])) return std::nullopt;
    return key;
}

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

// A template for C_CreateObject out of one for the generation: the caller's entries, what the key is, its
// numbers.
class Creation {
  public:
    Creation(const CK_ATTRIBUTE* attributes, CK_ULONG count, CK_OBJECT_CLASS object_class, bool is_private)
        : object_class_(object_class), is_private_(is_private) {
        std::copy_if(attributes, attributes + count, std::back_inserter(entries_),
                     [](const CK_ATTRIBUTE& entry) {
                         return entry.type != CKA_MODULUS_BITS && entry.type != CKA_PUBLIC_EXPONENT;
                     });
        add_unless_given(entry_for(CKA_CLASS, object_class_));
        add_unless_given(entry_for(CKA_KEY_TYPE, key_type_));
        add_unless_given(entry_for(CKA_PRIVATE, is_private_));
    }
    Creation(const Creation&) = delete;
    Creation& operator=(const Creation&) = delete;

    [[nodiscard]] CK_RV create(CK_SESSION_HANDLE session, const RsaKey& key, std::size_t parts,
                               CK_OBJECT_HANDLE* handle) {
        for (std::size_t part = 0; part < parts; ++part)
            entries_.push_back(entry_of(PART_TYPES[part], key.numbers[part]));
        return forward<Function::C_CreateObject>(session, entries_.data(), CK_ULONG{entries_.size()}, handle);
    }

  private:
    void add_unless_given(const CK_ATTRIBUTE& entry) {
        const auto same = [&](const CK_ATTRIBUTE& given) { return given.type == entry.type; };
        if (std::none_of(entries_.begin(), entries_.end(), same)) entries_.push_back(entry);
    }

    CK_OBJECT_CLASS object_class_;
    CK_KEY_TYPE key_type_ = CKK_RSA;
    CK_BBOOL is_private_;
    std::vector<CK_ATTRIBUTE> entries_;
};

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
    static CK_BBOOL yes = CK_TRUE;
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
