#include "fuzz/fake_card.h"

#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

namespace fuzz {

FakeCard card;

namespace {

constexpr CK_RV CODES[] = {CKR_CANCEL,
                           CKR_HOST_MEMORY,
                           CKR_SLOT_ID_INVALID,
                           CKR_GENERAL_ERROR,
                           CKR_FUNCTION_FAILED,
                           CKR_ARGUMENTS_BAD,
                           CKR_ATTRIBUTE_READ_ONLY,
                           CKR_ATTRIBUTE_SENSITIVE,
                           CKR_ATTRIBUTE_TYPE_INVALID,
                           CKR_DEVICE_ERROR,
                           CKR_DEVICE_MEMORY,
                           CKR_DEVICE_REMOVED,
                           CKR_FUNCTION_NOT_SUPPORTED,
                           CKR_OPERATION_ACTIVE,
                           CKR_OPERATION_NOT_INITIALIZED,
                           CKR_PIN_INCORRECT,
                           CKR_PIN_EXPIRED,
                           CKR_PIN_LOCKED,
                           CKR_SESSION_CLOSED,
                           CKR_SESSION_HANDLE_INVALID,
                           CKR_TEMPLATE_INCONSISTENT,
                           CKR_TOKEN_NOT_PRESENT,
                           CKR_TOKEN_NOT_RECOGNIZED,
                           CKR_USER_ALREADY_LOGGED_IN,
                           CKR_USER_NOT_LOGGED_IN,
                           CKR_BUFFER_TOO_SMALL,
                           CKR_CRYPTOKI_NOT_INITIALIZED,
                           CKR_CRYPTOKI_ALREADY_INITIALIZED,
                           CKR_OBJECT_HANDLE_INVALID,
                           CKR_VENDOR_DEFINED,
                           0x1FF,
                           ~CK_RV{0}};
constexpr CK_ULONG ABSURD[] = {~CK_ULONG{0}, ~CK_ULONG{0} - 1, 1UL << 31, 1UL << 32, 100000, 17, 1, 0};

// One answer: a code and nothing done; done, and a code all the same; done with absurd data; or as it should be.
template <class Act> CK_RV answered(Act act) {
    const unsigned char byte = card.answers->byte();
    if (byte >= 0xC0 && byte < 0xE0) return CODES[byte - 0xC0];
    const CK_RV result = act(byte >= 0xF0 ? byte - 0xEF : 0);
    return byte >= 0xE0 && byte < 0xF0 ? CODES[2 * (byte - 0xE0)] : result;
}

EVP_PKEY* own_key() {
    static EVP_PKEY* const key = EVP_RSA_gen(1024);
    return key;
}

std::string number(const char* name) {
    BIGNUM* value = nullptr;
    HOLDS(EVP_PKEY_get_bn_param(own_key(), name, &value) == 1);
    std::string bytes(static_cast<std::size_t>(BN_num_bytes(value)), '\0');
    BN_bn2bin(value, reinterpret_cast<unsigned char*>(bytes.data()));
    BN_free(value);
    return bytes;
}

std::string bytes_of(const CK_ATTRIBUTE& entry) {
    return {static_cast<const char*>(entry.pValue), entry.ulValueLen};
}

FakeObject* object_of(CK_OBJECT_HANDLE handle) {
    FakeObject* object = handle >= 1 && handle <= card.objects.size() ? &card.objects[handle - 1] : nullptr;
    return object == nullptr || object->destroyed ? nullptr : object;
}

bool value_of(const FakeObject& object, CK_ATTRIBUTE_TYPE type, std::string& value) {
    static const std::string modulus = number(OSSL_PKEY_PARAM_RSA_N),
                             exponent = number(OSSL_PKEY_PARAM_RSA_E);
    const bool is_key = object.object_class == CKO_PUBLIC_KEY || object.object_class == CKO_PRIVATE_KEY;
    const CK_ULONG numbers[] = {object.object_class, CKK_RSA};
    if (type == CKA_CLASS)
        value.assign(reinterpret_cast<const char*>(&numbers[0]), sizeof numbers[0]);
    else if (type == CKA_KEY_TYPE && is_key)
        value.assign(reinterpret_cast<const char*>(&numbers[1]), sizeof numbers[1]);
    else if (type == CKA_ID)
        value = object.id;
    else if (type == CKA_LABEL)
        value = object.label;
    else if (type == CKA_VALUE && !is_key)
        value = object.value;
    else if (type == CKA_MODULUS && is_key)
        value = modulus;
    else if (type == CKA_PUBLIC_EXPONENT && is_key)
        value = exponent;
    else
        return false;
    return true;
}

void change(FakeObject& object, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    for (const CK_ATTRIBUTE* entry = tmpl; entry != tmpl + count; ++entry) {
        if (entry->type == CKA_CLASS)
            std::memcpy(&object.object_class, entry->pValue, sizeof object.object_class);
        if (entry->type == CKA_ID) object.id = bytes_of(*entry);
        if (entry->type == CKA_LABEL) object.label = bytes_of(*entry);
        if (entry->type == CKA_VALUE) object.value = bytes_of(*entry);
    }
}

CK_OBJECT_HANDLE add(CK_OBJECT_CLASS object_class, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    change(card.objects.emplace_back(FakeObject{object_class, {}, {}, {}}), tmpl, count);
    return card.objects.size();
}

template <std::size_t N> void pad(unsigned char (&field)[N], const std::string& text, int absurd) {
    std::memset(field, absurd != 0 ? 'A' : ' ', N);
    if (absurd == 0) text.copy(reinterpret_cast<char*>(field), N);
}

CK_RV list_slots(CK_BBOOL, CK_SLOT_ID_PTR slots, CK_ULONG_PTR count) {
    return answered([&](int absurd) {
        if (slots != nullptr && *count >= 1) slots[0] = 3;
        *count = absurd != 0 ? ABSURD[absurd % 8] : 1;
        return CKR_OK;
    });
}

CK_RV slot_info(CK_SLOT_ID, CK_SLOT_INFO_PTR info) {
    return answered([&](int absurd) {
        pad(info->slotDescription, card.reader, absurd);
        pad(info->manufacturerID, "Fuzz", absurd);
        info->flags = CKF_TOKEN_PRESENT;
        return CKR_OK;
    });
}

CK_RV token_info(CK_SLOT_ID, CK_TOKEN_INFO_PTR info) {
    return answered([&](int absurd) {
        pad(info->label, "Carta", absurd);
        pad(info->manufacturerID, "Fuzz", absurd);
        pad(info->model, "1", absurd);
        pad(info->serialNumber, card.serial, absurd);
        return CKR_OK;
    });
}

CK_RV open_session(CK_SLOT_ID, CK_FLAGS, CK_VOID_PTR, CK_NOTIFY, CK_SESSION_HANDLE_PTR session) {
    return answered([&](int absurd) {
        *session = absurd != 0 ? ABSURD[absurd % 8] : 9;
        return CKR_OK;
    });
}

CK_RV login(CK_SESSION_HANDLE, CK_USER_TYPE, CK_UTF8CHAR_PTR, CK_ULONG) {
    const CK_RV result = answered([](int) { return CKR_OK; });
    if (result == CKR_PIN_INCORRECT) ++card.refused_pins;
    return result;
}

CK_RV done(CK_SESSION_HANDLE) {
    return answered([](int) { return CKR_OK; });
}

CK_RV done_at_all(CK_VOID_PTR) {
    return answered([](int) { return CKR_OK; });
}

std::vector<CK_OBJECT_HANDLE> found_objects;
std::size_t next_found;

CK_RV start_search(CK_SESSION_HANDLE, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    return answered([&](int) {
        found_objects.clear();
        next_found = 0;
        card.endless = false;
        for (CK_OBJECT_HANDLE handle = 1; handle <= card.objects.size(); ++handle) {
            bool fits = object_of(handle) != nullptr;
            for (CK_ULONG i = 0; fits && i < count; ++i) {
                std::string value;
                // What the card does not know of an object it does not compare.
                if (value_of(*object_of(handle), tmpl[i].type, value)) fits = value == bytes_of(tmpl[i]);
            }
            if (fits) found_objects.push_back(handle);
        }
        return CKR_OK;
    });
}

CK_RV next_objects(CK_SESSION_HANDLE, CK_OBJECT_HANDLE_PTR handles, CK_ULONG room, CK_ULONG_PTR count) {
    return answered([&](int absurd) {
        // Takes as long as a thousand others: once, and only when two bytes say so.
        if (absurd == 16 && !card.was_endless && card.answers->byte() == 0xFF)
            card.endless = card.was_endless = true;
        if (card.endless && next_found == found_objects.size()) next_found = 0;
        for (*count = 0; *count < room && next_found < found_objects.size(); ++*count)
            handles[*count] = found_objects[next_found++];
        if (absurd != 0 && absurd != 16) *count = ABSURD[absurd % 8];
        return CKR_OK;
    });
}

// A length that is a lie, or a value that fills its room.
void spoil(CK_ATTRIBUTE& entry, CK_ULONG room, int absurd) {
    if (absurd > 8) std::memset(entry.pValue, absurd > 12 ? 'A' : 0xFF, room);
    entry.ulValueLen = absurd > 8 ? room : absurd == 1 ? room + 1 : ABSURD[absurd - 1];
}

CK_RV read_attributes(CK_SESSION_HANDLE, CK_OBJECT_HANDLE handle, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    return answered([&](int absurd) {
        const FakeObject* object = object_of(handle);
        if (object == nullptr) return CKR_OBJECT_HANDLE_INVALID;
        CK_RV result = CKR_OK;
        for (CK_ATTRIBUTE* entry = tmpl; entry != tmpl + count; ++entry) {
            std::string value;
            const CK_ULONG room = entry->ulValueLen;
            const bool has = value_of(*object, entry->type, value);
            if (!has || value.size() > room) {
                entry->ulValueLen = CK_UNAVAILABLE_INFORMATION;
                result = has ? CKR_BUFFER_TOO_SMALL : CKR_ATTRIBUTE_TYPE_INVALID;
            } else {
                entry->ulValueLen = value.copy(static_cast<char*>(entry->pValue), room);
            }
            if (absurd != 0) spoil(*entry, room, absurd);
        }
        return absurd != 0 ? CKR_OK : result;
    });
}

CK_RV write_attributes(CK_SESSION_HANDLE, CK_OBJECT_HANDLE handle, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    return answered([&](int) {
        FakeObject* object = object_of(handle);
        if (object == nullptr) return CKR_OBJECT_HANDLE_INVALID;
        change(*object, tmpl, count);
        return CKR_OK;
    });
}

CK_RV create_object(CK_SESSION_HANDLE, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count, CK_OBJECT_HANDLE_PTR handle) {
    return answered([&](int) {
        *handle = add(CKO_DATA, tmpl, count);
        return CKR_OK;
    });
}

CK_RV destroy_object(CK_SESSION_HANDLE, CK_OBJECT_HANDLE handle) {
    return answered([&](int) {
        FakeObject* object = object_of(handle);
        if (object == nullptr) return CKR_OBJECT_HANDLE_INVALID;
        object->destroyed = true;
        return CKR_OK;
    });
}

CK_RV generate_pair(CK_SESSION_HANDLE, CK_MECHANISM_PTR, CK_ATTRIBUTE_PTR public_template,
                    CK_ULONG public_count, CK_ATTRIBUTE_PTR private_template, CK_ULONG private_count,
                    CK_OBJECT_HANDLE_PTR public_key, CK_OBJECT_HANDLE_PTR private_key) {
    return answered([&](int absurd) {
        *public_key = add(CKO_PUBLIC_KEY, public_template, public_count);
        *private_key = add(CKO_PRIVATE_KEY, private_template, private_count);
        if (absurd != 0) *private_key = ABSURD[absurd % 8];
        return CKR_OK;
    });
}

CK_RV start_signature(CK_SESSION_HANDLE, CK_MECHANISM_PTR, CK_OBJECT_HANDLE handle) {
    return answered([&](int) { return object_of(handle) != nullptr ? CKR_OK : CKR_KEY_HANDLE_INVALID; });
}

CK_RV sign(CK_SESSION_HANDLE, CK_BYTE_PTR data, CK_ULONG length, CK_BYTE_PTR signature, CK_ULONG_PTR room) {
    return answered([&](int absurd) {
        static EVP_PKEY_CTX* const context = EVP_PKEY_CTX_new(own_key(), nullptr);
        HOLDS(EVP_PKEY_sign_init(context) == 1 &&
              EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PADDING) == 1);
        std::size_t size = *room;
        if (EVP_PKEY_sign(context, signature, &size, data, length) != 1) return CKR_DATA_LEN_RANGE;
        *room = absurd > 8 ? *room : absurd != 0 ? ABSURD[absurd - 1] : size;
        return CKR_OK;
    });
}

} // namespace

const std::string& own_certificate() {
    static const std::string der = [] {
        X509* certificate = X509_new();
        X509_set_version(certificate, X509_VERSION_3);
        ASN1_INTEGER_set(X509_get_serialNumber(certificate), 5);
        X509_NAME* name = X509_get_subject_name(certificate);
        const auto* text = reinterpret_cast<const unsigned char*>("RSSMRA70A01H501S/7");
        X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_UTF8, text, -1, -1, 0);
        X509_set_issuer_name(certificate, name);
        ASN1_TIME_set(X509_getm_notBefore(certificate), 0);
        ASN1_TIME_set(X509_getm_notAfter(certificate), 4000000000);
        X509_set_pubkey(certificate, own_key());
        HOLDS(X509_sign(certificate, own_key(), EVP_sha256()) != 0);
        unsigned char* bytes = nullptr;
        const int length = i2d_X509(certificate, &bytes);
        std::string result(reinterpret_cast<char*>(bytes), static_cast<std::size_t>(length));
        OPENSSL_free(bytes);
        X509_free(certificate);
        return result;
    }();
    return der;
}

} // namespace fuzz

CK_RV fake_function_list(CK_FUNCTION_LIST_PTR_PTR list) {
    using namespace fuzz;
    static CK_FUNCTION_LIST functions = [] {
        CK_FUNCTION_LIST entries{};
        entries.C_Initialize = entries.C_Finalize = done_at_all;
        entries.C_GetSlotList = list_slots;
        entries.C_GetSlotInfo = slot_info;
        entries.C_GetTokenInfo = token_info;
        entries.C_OpenSession = open_session;
        entries.C_CloseSession = entries.C_Logout = entries.C_FindObjectsFinal = done;
        entries.C_Login = login;
        entries.C_FindObjectsInit = start_search;
        entries.C_FindObjects = next_objects;
        entries.C_GetAttributeValue = read_attributes;
        entries.C_SetAttributeValue = write_attributes;
        entries.C_CreateObject = create_object;
        entries.C_DestroyObject = destroy_object;
        entries.C_GenerateKeyPair = generate_pair;
        entries.C_SignInit = start_signature;
        entries.C_Sign = sign;
        return entries;
    }();
    *list = &functions;
    return CKR_OK;
}
