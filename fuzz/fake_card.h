#ifndef ZV_FUZZ_FAKE_CARD_H
#define ZV_FUZZ_FAKE_CARD_H

#include <vector>

#include "input.h"
#include "pkcs11.h"

/// A PKCS#11 module with a card in it whose answers the input spoils: each call takes a byte, and below 0xC0, or
/// once the input is used up, it is a good card's.
namespace fuzz {

struct FakeObject {
    CK_OBJECT_CLASS objectClass;
    std::string id, label, value;
    bool destroyed = false;
};

struct FakeCard {
    Input* answers = nullptr;
    std::vector<FakeObject> objects;
    std::string reader, serial;
    int refusedPins = 0;
    bool endless = false; ///< the open search never ends
};

extern FakeCard card;

/// The certificate of the one RSA key that all keys of the card are.
const std::string& ownCertificate();

} // namespace fuzz

extern "C" __attribute__((visibility("default"))) CK_RV fakeFunctionList(CK_FUNCTION_LIST_PTR_PTR list);

#endif
