#include "fake_card.h"

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

EVP_PKEY* ownKey() {
    static EVP_PKEY* const key = EVP_RSA_gen(1024);
    return key;
}

std::string number(const char* name) {
    BIGNUM* value = nullptr;
    HOLDS(EVP_PKEY_get_bn_param(ownKey(), name, &value) == 1);
    std::string bytes(static_cast<std::size_t>(BN_num_bytes(value)), '\0');
    BN_bn2bin(value, reinterpret_cast<unsigned char*>(bytes.data()));
    BN_free(value);
    return bytes;
}

std::string bytesOf(const CK_ATTRIBUTE& entry) {
    return {static_cast<const char*>(entry.pValue), entry.ulValueLen};
}

FakeObject* objectOf(CK_OBJECT_HANDLE handle) {
    FakeObject* object = handle >= 1 && handle <= card.objects.size() ? &card.objects[handle - 1] : nullptr;
    return object == nullptr || object->destroyed ? nullptr : object;
}

bool valueOf(const FakeObject& object, CK_ATTRIBUTE_TYPE type, std::string& value) {
    static const std::string modulus = number(OSSL_PKEY_PARAM_RSA_N),
                             exponent = number(OSSL_PKEY_PARAM_RSA_E);
    const bool isKey = object.objectClass == CKO_PUBLIC_KEY || object.objectClass == CKO_PRIVATE_KEY;
    const CK_ULONG numbers[] = {object.objectClass, CKK_RSA};
    if (type == CKA_CLASS)
        value.assign(reinterpret_cast<const char*>(&numbers[0]), sizeof numbers[0]);
    else if (type == CKA_KEY_TYPE && isKey)
        value.assign(reinterpret_cast<const char*>(&numbers[1]), sizeof numbers[1]);
    else if (type == CKA_ID)
        value = object.id;
    else if (type == CKA_LABEL)
        value = object.label;
    else if (type == CKA_VALUE && !isKey)
        value = object.value;
    else if (type == CKA_MODULUS && isKey)
        value = modulus;
    else if (type == CKA_PUBLIC_EXPONENT && isKey)
        value = exponent;
    else
        return false;
    return true;
}

void change(FakeObject& object, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    for (const CK_ATTRIBUTE* entry = tmpl; entry != tmpl + count; ++entry) {
        if (entry->type == CKA_CLASS)
            std::memcpy(&object.objectClass, entry->pValue, sizeof object.objectClass);
        if (entry->type == CKA_ID) object.id = bytesOf(*entry);
        if (entry->type == CKA_LABEL) object.label = bytesOf(*entry);
        if (entry->type == CKA_VALUE) object.value = bytesOf(*entry);
    }
}

CK_OBJECT_HANDLE add(CK_OBJECT_CLASS objectClass, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    change(card.objects.emplace_back(FakeObject{objectClass, {}, {}, {}}), tmpl, count);
    return card.objects.size();
}

template <std::size_t N> void pad(unsigned char (&field)[N], const std::string& text, int absurd) {
    std::memset(field, absurd != 0 ? 'A' : ' ', N);
    if (absurd == 0) text.copy(reinterpret_cast<char*>(field), N);
}

CK_RV listSlots(CK_BBOOL, CK_SLOT_ID_PTR slots, CK_ULONG_PTR count) {
    return answered([&](int absurd) {
        if (slots != nullptr && *count >= 1) slots[0] = 3;
        *count = absurd != 0 ? ABSURD[absurd % 8] : 1;
        return CKR_OK;
    });
}

CK_RV slotInfo(CK_SLOT_ID, CK_SLOT_INFO_PTR info) {
    return answered([&](int absurd) {
        pad(info->slotDescription, card.reader, absurd);
        pad(info->manufacturerID, "Fuzz", absurd);
        info->flags = CKF_TOKEN_PRESENT;
        return CKR_OK;
    });
}

CK_RV tokenInfo(CK_SLOT_ID, CK_TOKEN_INFO_PTR info) {
    return answered([&](int absurd) {
        pad(info->label, "Carta", absurd);
        pad(info->manufacturerID, "Fuzz", absurd);
        pad(info->model, "1", absurd);
        pad(info->serialNumber, card.serial, absurd);
        return CKR_OK;
    });
}

CK_RV openSession(CK_SLOT_ID, CK_FLAGS, CK_VOID_PTR, CK_NOTIFY, CK_SESSION_HANDLE_PTR session) {
    return answered([&](int absurd) {
        *session = absurd != 0 ? ABSURD[absurd % 8] : 9;
        return CKR_OK;
    });
}

CK_RV login(CK_SESSION_HANDLE, CK_USER_TYPE, CK_UTF8CHAR_PTR, CK_ULONG) {
    const CK_RV result = answered([](int) { return CKR_OK; });
    if (result == CKR_PIN_INCORRECT) ++card.refusedPins;
    return result;
}

CK_RV done(CK_SESSION_HANDLE) {
    return answered([](int) { return CKR_OK; });
}

CK_RV doneAtAll(CK_VOID_PTR) {
    return answered([](int) { return CKR_OK; });
}

std::vector<CK_OBJECT_HANDLE> foundObjects;
std::size_t nextFound;

CK_RV startSearch(CK_SESSION_HANDLE, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    return answered([&](int) {
        foundObjects.clear();
        nextFound = 0;
        card.endless = false;
        for (CK_OBJECT_HANDLE handle = 1; handle <= card.objects.size(); ++handle) {
            bool fits = objectOf(handle) != nullptr;
            for (CK_ULONG i = 0; fits && i < count; ++i) {
                std::string value;
                // What the card does not know of an object it does not compare.
                if (valueOf(*objectOf(handle), tmpl[i].type, value)) fits = value == bytesOf(tmpl[i]);
            }
            if (fits) foundObjects.push_back(handle);
        }
        return CKR_OK;
    });
}

CK_RV nextObjects(CK_SESSION_HANDLE, CK_OBJECT_HANDLE_PTR handles, CK_ULONG room, CK_ULONG_PTR count) {
    return answered([&](int absurd) {
        if (absurd == 16) card.endless = true;
        if (card.endless && nextFound == foundObjects.size()) nextFound = 0;
        for (*count = 0; *count < room && nextFound < foundObjects.size(); ++*count)
            handles[*count] = foundObjects[nextFound++];
        if (absurd != 0 && absurd != 16) *count = ABSURD[absurd % 8];
        return CKR_OK;
    });
}

// A length that is a lie, or a value that fills its room.
void spoil(CK_ATTRIBUTE& entry, CK_ULONG room, int absurd) {
    if (absurd > 8) std::memset(entry.pValue, absurd > 12 ? 'A' : 0xFF, room);
    entry.ulValueLen = absurd > 8 ? room : absurd == 1 ? room + 1 : ABSURD[absurd - 1];
}

CK_RV readAttributes(CK_SESSION_HANDLE, CK_OBJECT_HANDLE handle, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    return answered([&](int absurd) {
        const FakeObject* object = objectOf(handle);
        if (object == nullptr) return CKR_OBJECT_HANDLE_INVALID;
        CK_RV result = CKR_OK;
        for (CK_ATTRIBUTE* entry = tmpl; entry != tmpl + count; ++entry) {
            std::string value;
            const CK_ULONG room = entry->ulValueLen;
            const bool has = valueOf(*object, entry->type, value);
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

CK_RV writeAttributes(CK_SESSION_HANDLE, CK_OBJECT_HANDLE handle, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count) {
    return answered([&](int) {
        FakeObject* object = objectOf(handle);
        if (object == nullptr) return CKR_OBJECT_HANDLE_INVALID;
        change(*object, tmpl, count);
        return CKR_OK;
    });
}

CK_RV createObject(CK_SESSION_HANDLE, CK_ATTRIBUTE_PTR tmpl, CK_ULONG count, CK_OBJECT_HANDLE_PTR handle) {
    return answered([&](int) {
        *handle = add(CKO_DATA, tmpl, count);
        return CKR_OK;
    });
}

CK_RV destroyObject(CK_SESSION_HANDLE, CK_OBJECT_HANDLE handle) {
    return answered([&](int) {
        FakeObject* object = objectOf(handle);
        if (object == nullptr) return CKR_OBJECT_HANDLE_INVALID;
        object->destroyed = true;
        return CKR_OK;
    });
}

CK_RV generatePair(CK_SESSION_HANDLE, CK_MECHANISM_PTR, CK_ATTRIBUTE_PTR publicTemplate, CK_ULONG publicCount,
                   CK_ATTRIBUTE_PTR privateTemplate, CK_ULONG privateCount, CK_OBJECT_HANDLE_PTR publicKey,
                   CK_OBJECT_HANDLE_PTR privateKey) {
    return answered([&](int absurd) {
        *publicKey = add(CKO_PUBLIC_KEY, publicTemplate, publicCount);
        *privateKey = add(CKO_PRIVATE_KEY, privateTemplate, privateCount);
        if (absurd != 0) *privateKey = ABSURD[absurd % 8];
        return CKR_OK;
    });
}

CK_RV startSignature(CK_SESSION_HANDLE, CK_MECHANISM_PTR, CK_OBJECT_HANDLE handle) {
    return answered([&](int) { return objectOf(handle) != nullptr ? CKR_OK : CKR_KEY_HANDLE_INVALID; });
}

CK_RV sign(CK_SESSION_HANDLE, CK_BYTE_PTR data, CK_ULONG length, CK_BYTE_PTR signature, CK_ULONG_PTR room) {
    return answered([&](int absurd) {
        static EVP_PKEY_CTX* const context = EVP_PKEY_CTX_new(ownKey(), nullptr);
        HOLDS(EVP_PKEY_sign_init(context) == 1 &&
              EVP_PKEY_CTX_set_rsa_padding(context, RSA_PKCS1_PADDING) == 1);
        std::size_t size = *room;
        if (EVP_PKEY_sign(context, signature, &size, data, length) != 1) return CKR_DATA_LEN_RANGE;
        *room = absurd > 8 ? *room : absurd != 0 ? ABSURD[absurd - 1] : size;
        return CKR_OK;
    });
}

} // namespace

const std::string& ownCertificate() {
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
        X509_set_pubkey(certificate, ownKey());
        HOLDS(X509_sign(certificate, ownKey(), EVP_sha256()) != 0);
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

CK_RV fakeFunctionList(CK_FUNCTION_LIST_PTR_PTR list) {
    using namespace fuzz;
    static CK_FUNCTION_LIST functions = [] {
        CK_FUNCTION_LIST entries{};
        entries.C_Initialize = entries.C_Finalize = doneAtAll;
        entries.C_GetSlotList = listSlots;
        entries.C_GetSlotInfo = slotInfo;
        entries.C_GetTokenInfo = tokenInfo;
        entries.C_OpenSession = openSession;
        entries.C_CloseSession = entries.C_Logout = entries.C_FindObjectsFinal = done;
        entries.C_Login = login;
        entries.C_FindObjectsInit = startSearch;
        entries.C_FindObjects = nextObjects;
        entries.C_GetAttributeValue = readAttributes;
        entries.C_SetAttributeValue = writeAttributes;
        entries.C_CreateObject = createObject;
        entries.C_DestroyObject = destroyObject;
        entries.C_GenerateKeyPair = generatePair;
        entries.C_SignInit = startSignature;
        entries.C_Sign = sign;
        return entries;
    }();
    *list = &functions;
    return CKR_OK;
}
