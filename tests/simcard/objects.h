#pragma once

#include "tests/support/card.h"
#include "tests/support/module.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A card and its objects, in few words.
namespace zvtest {

// A card without objects, and a session that its user is logged in to.
class EmptyCard : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_EQ(module->C_Initialize(nullptr), CKR_OK);
        session = module.open();
        ASSERT_EQ(module.login(session, USER_PIN), CKR_OK);
    }
    void restart() {
        ASSERT_EQ(module->C_Finalize(nullptr), CKR_OK);
        SetUp();
    }

    EmptyCards cards;
    simcard::Card card = cards.add();
    Module module;
    CK_SESSION_HANDLE session = 0;
};

template <class T> CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, T& value) {
    return {type, &value, sizeof value};
}
inline CK_ATTRIBUTE attribute(CK_ATTRIBUTE_TYPE type, std::string& value) {
    return {type, value.data(), value.size()};
}

// Stores a public data object under a label; its handle, or 0.
inline CK_OBJECT_HANDLE store(Module& module, CK_SESSION_HANDLE session, std::string label,
                              CK_RV* result = nullptr) {
    CK_OBJECT_CLASS data = CKO_DATA;
    CK_BBOOL yes = CK_TRUE, no = CK_FALSE;
    CK_ATTRIBUTE entries[] = {attribute(CKA_CLASS, data), attribute(CKA_TOKEN, yes),
                              attribute(CKA_LABEL, label), attribute(CKA_PRIVATE, no)};
    CK_OBJECT_HANDLE handle = 0;
    const CK_RV answer = module->C_CreateObject(session, entries, 4, &handle);
    if (result) *result = answer;
    return handle;
}

inline CK_RV relabel(Module& module, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object, std::string label) {
    CK_ATTRIBUTE entry = attribute(CKA_LABEL, label);
    return module->C_SetAttributeValue(session, object, &entry, 1);
}

inline std::string read(Module& module, CK_SESSION_HANDLE session, CK_OBJECT_HANDLE object,
                        CK_ATTRIBUTE_TYPE type, std::size_t room = 512) {
    std::string value(room, '\0');
    CK_ATTRIBUTE entry = attribute(type, value);
    if (module->C_GetAttributeValue(session, object, &entry, 1) != CKR_OK) return "?";
    value.resize(entry.ulValueLen);
    return value;
}

// All objects, three at a time.
inline std::vector<CK_OBJECT_HANDLE> find_all(Module& module, CK_SESSION_HANDLE session) {
    std::vector<CK_OBJECT_HANDLE> found;
    CK_OBJECT_HANDLE some[3];
    CK_ULONG count = 3;
    if (module->C_FindObjectsInit(session, nullptr, 0) != CKR_OK) return found;
    while (count == 3 && module->C_FindObjects(session, some, 3, &count) == CKR_OK)
        found.insert(found.end(), some, some + count);
    module->C_FindObjectsFinal(session);
    return found;
}

// The labels of all objects, each followed by a blank.
inline std::string labels(Module& module, CK_SESSION_HANDLE session) {
    std::string text;
    for (const CK_OBJECT_HANDLE object : find_all(module, session))
        text += read(module, session, object, CKA_LABEL) + " ";
    return text;
}

struct Pair {
    CK_OBJECT_HANDLE open = 0;
    CK_OBJECT_HANDLE secret = 0;
};

// Asks for an RSA key pair of 1,024 bits under an identifier.
inline CK_RV generate(Module& module, CK_SESSION_HANDLE session, std::string id, Pair& pair) {
    CK_BBOOL yes = CK_TRUE;
    CK_ULONG bits = 1024;
    CK_MECHANISM mechanism{CKM_RSA_PKCS_KEY_PAIR_GEN, nullptr, 0};
    CK_ATTRIBUTE open[] = {attribute(CKA_MODULUS_BITS, bits), attribute(CKA_TOKEN, yes),
                           attribute(CKA_ID, id)};
    CK_ATTRIBUTE secret[] = {attribute(CKA_TOKEN, yes), attribute(CKA_ID, id)};
    return module->C_GenerateKeyPair(session, &mechanism, open, 3, secret, 2, &pair.open, &pair.secret);
}

} // namespace zvtest
